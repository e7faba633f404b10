#pragma once

#include <string>
#include <string_view>

namespace notlet {

/// What a terminal would obey: the controls of both ranges and the separators of lines and paragraphs.
[[nodiscard]] bool isControl(char32_t character);
/// Begins or ends a stretch of text written in a direction of its own.
[[nodiscard]] bool isBidirectionalControl(char32_t character);

/// The text without what a terminal would obey, but for its newlines and tabs; bytes that are not UTF-8 are
/// such, too. A direction that a line turns writing to ends with the line.
[[nodiscard]] std::string harmless(std::string_view text);

} // namespace notlet
