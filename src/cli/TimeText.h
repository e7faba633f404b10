#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/Timestamp.h"

namespace notlet {

/// RFC 3339 in UTC with six decimals and "Z": "2026-11-22T21:04:05.000678Z". Times outside the years 0 to
/// 9999, which that form cannot tell, become the nearest one that it can.
[[nodiscard]] std::string utcText(Timestamp time);

/// Reads any RFC 3339 time, also with an offset and with other decimals; what is finer than a microsecond is
/// cut. Nothing for any other text.
[[nodiscard]] std::optional<Timestamp> parseTime(std::string_view text);

/// Day and minute in the user's time zone: "2026-11-22 22:04".
[[nodiscard]] std::string localText(Timestamp time);

} // namespace notlet
