#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Unicode rules on UTF-8 texts. Bytes that are not UTF-8 count as U+FFFD everywhere; nothing here fails.
namespace notlet {

/// One code point at the start or the end of a text, with the number of bytes it takes there.
struct CodePoint {
  char32_t value = 0;
  std::size_t length = 0;
};

/// The text must not be empty.
[[nodiscard]] CodePoint firstCodePoint(std::string_view text);
[[nodiscard]] CodePoint lastCodePoint(std::string_view text);

/// White space and newlines: the space separators (Zs, Zl, Zp), U+0009 to U+000D and U+0085.
[[nodiscard]] bool isWhiteSpace(char32_t character);

/// What words are made of: alphabetic characters and those with a numeric value.
[[nodiscard]] bool isLetterOrDigit(char32_t character);

/// The text without white space and newlines at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Where the first white space at or after `from` begins, or the text's end.
[[nodiscard]] std::size_t findWhiteSpace(std::string_view text, std::size_t from);

[[nodiscard]] bool isValidUtf8(std::string_view text);

/// The full Unicode lowercase mapping, independent of the user's language.
[[nodiscard]] std::string lowercased(std::string_view text);

/// The form in which texts are compared: the lowercase in canonical form (NFC). Texts that differ only in
/// letter case or in how their accents are encoded fold to the same bytes.
[[nodiscard]] std::string folded(std::string_view text);

/// The user-perceived characters (extended grapheme clusters), as views into the text.
[[nodiscard]] std::vector<std::string_view> graphemes(std::string_view text);
[[nodiscard]] std::size_t graphemeCount(std::string_view text);

/// Whether the bytes found at `position` of a folded text are whole characters: "cafe" does not stand in
/// "café" whatever the accent is made of. A variation selector after the match does not part a character.
[[nodiscard]] bool standsOnWholeCharacters(std::string_view foldedText, std::size_t position,
                                           std::size_t length);

/// Whether a folded text contains a folded needle, in whole characters.
[[nodiscard]] bool containsCanonically(std::string_view foldedText, std::string_view foldedNeedle);
[[nodiscard]] bool startsWithCanonically(std::string_view foldedText, std::string_view foldedPrefix);

/// Lets a hash container of strings be asked with a view.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};

} // namespace notlet
