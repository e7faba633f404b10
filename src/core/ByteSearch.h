#pragma once

#include <cstddef>
#include <string_view>

namespace notlet {

/// The first position at or after `from` where the bytes of `needle` stand in `text`, or npos. Scans at
/// memory speed, which std::string_view::find and the C library do not.
[[nodiscard]] std::size_t findBytes(std::string_view text, std::string_view needle, std::size_t from = 0);

} // namespace notlet
