#include "core/Text.h"

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "core/ByteSearch.h"

namespace notlet {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;
/// No mark begins with a smaller byte: the first one is U+0300.
constexpr unsigned char smallestMarkByte = 0xCC;

bool isAscii(std::string_view text) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  std::uint64_t seen = 0;
  std::size_t index = 0;
  for (; index + sizeof seen <= text.size(); index += sizeof seen) {
    std::uint64_t chunk = 0;
    std::memcpy(&chunk, text.data() + index, sizeof chunk);
    seen |= chunk;
  }
  return (seen & highBits) == 0 &&
         std::ranges::all_of(text.substr(index), [](char byte) { return (byte & 0x80) == 0; });
}

// The macro narrows on purpose.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
/// The code point at `index`, which moves behind it; negative for bytes that are not UTF-8.
UChar32 decodeNext(std::string_view text, std::size_t& index) {
  UChar32 value = 0;
  U8_NEXT(text.data(), index, text.size(), value); // NOLINT(bugprone-inc-dec-in-conditions)
  return value;
}
#pragma GCC diagnostic pop

char asciiLowercase(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

icu::StringPiece piece(std::string_view text) {
  return {text.data(), static_cast<int32_t>(text.size())};
}

/// Every sequence of bytes that is not UTF-8 becomes U+FFFD, so that no later step meets such bytes.
std::string wellFormed(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    std::size_t length = 0;
    const bool isValid = decodeNext(text, length) >= 0;
    result.append(isValid ? text.substr(0, length) : std::string_view("\uFFFD"));
    text.remove_prefix(length);
  }
  return result;
}

std::string canonicalForm(std::string text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* form = icu::Normalizer2::getNFCInstance(status);
  if (U_FAILURE(status) || form->isNormalizedUTF8(piece(text), status))
    return text;
  std::string result;
  icu::StringByteSink<std::string> sink(&result, static_cast<int32_t>(text.size()));
  form->normalizeUTF8(0, piece(text), sink, nullptr, status);
  return U_SUCCESS(status) ? result : text;
}

bool isMark(char32_t character) {
  return (U_GET_GC_MASK(static_cast<UChar32>(character)) & U_GC_M_MASK) != 0;
}

bool isVariationSelector(char32_t character) {
  return u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_VARIATION_SELECTOR) != 0;
}

bool beginsWithMark(std::string_view text) {
  if (text.empty() || static_cast<unsigned char>(text.front()) < smallestMarkByte)
    return false;
  return isMark(firstCodePoint(text).value);
}

/// Whether the character before this text goes on in it: marks follow, perhaps after variation selectors.
bool continuesCharacter(std::string_view rest) {
  while (beginsWithMark(rest)) {
    const CodePoint next = firstCodePoint(rest);
    if (!isVariationSelector(next.value))
      return true;
    rest.remove_prefix(next.length);
  }
  return false;
}

/// Hands each character's end (a byte offset) to `visit`, from left to right.
template<typename Visit>
void forEachGraphemeEnd(std::string_view text, Visit visit) {
  UErrorCode status = U_ZERO_ERROR;
  thread_local const std::unique_ptr<icu::BreakIterator> characters(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  UText source = UTEXT_INITIALIZER;
  utext_openUTF8(&source, text.data(), static_cast<int64_t>(text.size()), &status);
  if (characters != nullptr && U_SUCCESS(status)) {
    characters->setText(&source, status);
    characters->first();
    for (int32_t end = characters->next(); end != icu::BreakIterator::DONE; end = characters->next())
      visit(static_cast<std::size_t>(end));
  }
  utext_close(&source);
}

} // namespace

CodePoint firstCodePoint(std::string_view text) {
  std::size_t length = 0;
  const UChar32 value = decodeNext(text, length);
  return {value < 0 ? replacementCharacter : static_cast<char32_t>(value), length};
}

CodePoint lastCodePoint(std::string_view text) {
  const std::string_view tail = text.substr(text.size() - std::min<std::size_t>(text.size(), U8_MAX_LENGTH));
  auto begin = static_cast<int32_t>(tail.size());
  UChar32 value = 0;
  U8_PREV(tail.data(), 0, begin, value);
  return {value < 0 ? replacementCharacter : static_cast<char32_t>(value),
          tail.size() - static_cast<std::size_t>(begin)};
}

bool isWhiteSpace(char32_t character) {
  // The property White_Space is the same set of characters, and is what \s means in a pattern.
  return u_isUWhiteSpace(static_cast<UChar32>(character)) != 0;
}

bool isLetterOrDigit(char32_t character) {
  const auto value = static_cast<UChar32>(character);
  return u_hasBinaryProperty(value, UCHAR_ALPHABETIC) != 0 ||
         u_getIntPropertyValue(value, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty()) {
    const CodePoint first = firstCodePoint(text);
    if (!isWhiteSpace(first.value))
      break;
    text.remove_prefix(first.length);
  }
  while (!text.empty()) {
    const CodePoint last = lastCodePoint(text);
    if (!isWhiteSpace(last.value))
      break;
    text.remove_suffix(last.length);
  }
  return text;
}

std::size_t findWhiteSpace(std::string_view text, std::size_t from) {
  while (from < text.size()) {
    const CodePoint next = firstCodePoint(text.substr(from));
    if (isWhiteSpace(next.value))
      break;
    from += next.length;
  }
  return from;
}

bool isValidUtf8(std::string_view text) {
  if (isAscii(text))
    return true;
  std::size_t index = 0;
  while (index < text.size()) {
    if (decodeNext(text, index) < 0)
      return false;
  }
  return true;
}

std::string lowercased(std::string_view text) {
  std::string result;
  if (isAscii(text)) {
    result.resize(text.size());
    std::ranges::transform(text, result.begin(), asciiLowercase);
    return result;
  }
  if (!isValidUtf8(text))
    return lowercased(wellFormed(text));
  UErrorCode status = U_ZERO_ERROR;
  icu::StringByteSink<std::string> sink(&result, static_cast<int32_t>(text.size()));
  icu::CaseMap::utf8ToLower("", 0, piece(text), sink, nullptr, status);
  return U_SUCCESS(status) ? result : std::string(text);
}

std::string folded(std::string_view text) {
  if (isAscii(text))
    return lowercased(text);
  return canonicalForm(lowercased(text));
}

std::vector<std::string_view> graphemes(std::string_view text) {
  std::vector<std::string_view> result;
  std::size_t begin = 0;
  forEachGraphemeEnd(text, [&](std::size_t end) {
    result.push_back(text.substr(begin, end - begin));
    begin = end;
  });
  return result;
}

std::size_t graphemeCount(std::string_view text) {
  if (isAscii(text) && text.find('\r') == std::string_view::npos)
    return text.size();
  std::size_t count = 0;
  forEachGraphemeEnd(text, [&](std::size_t) { ++count; });
  return count;
}

bool standsOnWholeCharacters(std::string_view foldedText, std::size_t position, std::size_t length) {
  if (position > 0 && beginsWithMark(foldedText.substr(position)))
    return false;
  return !continuesCharacter(foldedText.substr(position + length));
}

bool containsCanonically(std::string_view foldedText, std::string_view foldedNeedle) {
  if (foldedNeedle.empty())
    return true;
  std::size_t position = findBytes(foldedText, foldedNeedle);
  while (position != std::string_view::npos) {
    if (standsOnWholeCharacters(foldedText, position, foldedNeedle.size()))
      return true;
    position = findBytes(foldedText, foldedNeedle, position + 1);
  }
  return false;
}

bool startsWithCanonically(std::string_view foldedText, std::string_view foldedPrefix) {
  if (foldedPrefix.empty())
    return true;
  return foldedText.starts_with(foldedPrefix) && standsOnWholeCharacters(foldedText, 0, foldedPrefix.size());
}

} // namespace notlet
