#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "core/Error.h"

namespace notlet {

/// Parses JSON that others may have written: UTF-8 of at most `largest` bytes, not nested deeply. The message
/// of a failure tells the reason and the place in at most a few hundred characters, for somebody who edits
/// the file.
[[nodiscard]] Result<nlohmann::json> parseJsonText(std::string_view json, std::size_t largest);

/// "line 3, column 7", counted in characters from 1; the position is in bytes.
[[nodiscard]] std::string placeInText(std::string_view text, std::size_t position);

} // namespace notlet
