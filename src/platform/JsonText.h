#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "core/Error.h"

namespace notlet {

/// Parses JSON that others may have written: UTF-8 of at most `largest` bytes, not nested deeply. The message
/// of a failure tells the reason and the place (line and column) in at most a few hundred characters.
[[nodiscard]] Result<nlohmann::json> parseJsonText(std::string_view json, std::size_t largest);

} // namespace notlet
