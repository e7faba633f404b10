#include "core/TextSieve.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/usetiter.h>

#include <algorithm>
#include <array>
#include <limits>

#include "core/Text.h"
#include "core/Unfolding.h"

namespace notlet {

namespace {

/// Longer pieces rule out no more.
constexpr std::size_t longestPiece = 48;

bool isMark(char32_t character) {
  return (U_GET_GC_MASK(static_cast<UChar32>(character)) & U_GC_M_MASK) != 0;
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

icu::UnicodeString decomposed(char32_t character) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString parts;
  const icu::Normalizer2* form = icu::Normalizer2::getNFDInstance(status);
  if (U_FAILURE(status) || form->getDecomposition(static_cast<UChar32>(character), parts) == 0)
    parts = static_cast<UChar32>(character);
  return parts;
}

/// Whatever can stand in a text so that a part of a composed character, but not its first, comes from it.
void appendLaterParts(char32_t composed, std::vector<std::string>& found) {
  static const icu::UnicodeSet compositeMarks = [] {
    UErrorCode status = U_ZERO_ERROR;
    return icu::UnicodeSet(icu::UnicodeString(u"[[:NFD_Quick_Check=No:]&[:M:]]"), status);
  }();
  const icu::UnicodeString parts = decomposed(composed);
  for (int32_t index = parts.moveIndex32(0, 1); index < parts.length(); index = parts.moveIndex32(index, 1)) {
    const UChar32 part = parts.char32At(index);
    found.push_back(utf8(icu::UnicodeString(part)));
    icu::UnicodeSetIterator marks(compositeMarks);
    while (marks.next() != 0) {
      if (decomposed(static_cast<char32_t>(marks.getCodepoint())).indexOf(part) >= 0)
        found.push_back(utf8(icu::UnicodeString(marks.getCodepoint())));
    }
  }
}

/// All there are; their tables need not be asked for letters that are met every day.
constexpr std::array<std::pair<char32_t, std::string_view>, 3> strangersOfAscii{
    {{U'k', "\u212A"}, {U';', "\u037E"}, {U'`', "\u1FEF"}}};

/// Whether a character is a letter of a syllable, with which neighbours make one character.
bool isJamo(char32_t character) {
  return (character >= 0x1100 && character <= 0x11FF) || (character >= 0xA960 && character <= 0xA97F) ||
         (character >= 0xD7B0 && character <= 0xD7FF);
}

/// One character of the needle, which no mark follows there, with what it can come from.
struct Letter {
  std::string small;
  std::string capital;
  std::vector<std::string> strangers;

  explicit Letter(std::string_view character) : small(character), capital(character) {
    const char32_t value = firstCodePoint(character).value;
    const std::string upper = utf8(icu::UnicodeString(u_toupper(static_cast<UChar32>(value))));
    if (value < 0x80) {
      capital = upper;
      for (const auto& [ascii, stranger] : strangersOfAscii) {
        if (ascii == value)
          strangers.emplace_back(stranger);
      }
      return;
    }
    for (const std::string& other : Unfolding::charactersOf(character)) {
      if (other == upper && other.size() == small.size())
        capital = other;
      else
        strangers.push_back(other);
    }
    appendLaterParts(value, strangers);
  }
};

bool isAsciiLetterOrDigit(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z');
}

/// How often a byte stands in texts, roughly, in a thousand.
int frequency(char byte) {
  //                                        a   b   c   d    e   f   g   h   i  j  k   l   m
  static constexpr std::array<int, 26> letters{82, 15, 28, 43, 127, 22, 20, 61, 70, 2,  8, 40, 24,
                                               67, 75, 19, 1,  60,  63, 91, 28, 10, 24, 2, 20, 1};
  return byte >= 'a' && byte <= 'z' ? letters[static_cast<std::size_t>(byte - 'a')] : 5;
}

/// The rarest neighbours that are letters or digits of ASCII and come from nothing else.
std::optional<LetterPair> rarestPair(std::string_view small, std::string_view capital) {
  constexpr int atWordEnd = 30;
  std::optional<LetterPair> rarest;
  int lowest = std::numeric_limits<int>::max();
  for (std::size_t index = 0; index + 1 < small.size(); ++index) {
    const char first = small[index];
    const char second = small[index + 1];
    if (!isAsciiLetterOrDigit(first) || !isAsciiLetterOrDigit(second) || first == 'k' || second == 'k')
      continue;
    const int score = frequency(first) * (frequency(second) + atWordEnd);
    if (score < lowest)
      rarest = LetterPair{first, capital[index], second, capital[index + 1]};
    lowest = std::min(lowest, score);
  }
  return rarest;
}

} // namespace

TextSieve::TextSieve(std::string_view foldedNeedle) {
  std::string small;
  std::string capital;
  std::vector<std::string> strangers;
  const auto endPiece = [&] {
    if (small.size() > m_small.size()) {
      m_small = small;
      m_capital = capital;
      m_strangers = strangers;
    }
    small.clear();
    capital.clear();
    strangers.clear();
  };
  for (std::string_view rest = foldedNeedle; !rest.empty();) {
    const CodePoint first = firstCodePoint(rest);
    const std::string_view character = rest.substr(0, first.length);
    rest.remove_prefix(first.length);
    // A mark may be a part of what is one character elsewhere, and moves among others. Bytes that are not
    // UTF-8 fold to U+FFFD.
    const bool standsAlone = !isMark(first.value) && first.value != 0xFFFD &&
                             (rest.empty() || !isMark(firstCodePoint(rest).value));
    if (!standsAlone || small.size() + character.size() > longestPiece)
      endPiece();
    if (!standsAlone)
      continue;
    const Letter letter(character);
    small += letter.small;
    capital += letter.capital;
    strangers.insert(strangers.end(), letter.strangers.begin(), letter.strangers.end());
  }
  endPiece();
  std::ranges::sort(m_strangers);
  m_strangers.erase(std::ranges::unique(m_strangers).begin(), m_strangers.end());
  m_rarestPair = rarestPair(m_small, m_capital);
  m_isSure = m_small == foldedNeedle;
  for (std::string_view rest = foldedNeedle; m_isSure && !rest.empty();) {
    const CodePoint first = firstCodePoint(rest);
    m_isSure = !isJamo(first.value);
    rest.remove_prefix(first.length);
  }
}

bool TextSieve::holdsStranger(std::string_view text) const {
  return std::ranges::any_of(m_strangers, [&](const std::string& stranger) {
    return findBytes(text, stranger) != std::string_view::npos;
  });
}

bool TextSieve::holdsFirstLettersOrJoint(std::string_view text) const {
  const std::string_view small = m_small;
  const std::string_view capital = m_capital;
  const std::size_t first = small.empty() ? 0 : firstCodePoint(small).length;
  if (first == small.size())
    return true;
  const std::size_t second = firstCodePoint(small.substr(first)).length;
  std::size_t place = findEither(text, small.substr(0, first), capital.substr(0, first));
  for (; place != std::string_view::npos;
       place = findEither(text, small.substr(0, first), capital.substr(0, first), place + 1)) {
    const std::string_view behind = text.substr(place + first);
    if (behind.starts_with(small.substr(first, second)) || behind.starts_with(capital.substr(first, second)))
      return true;
    if (behind.empty())
      continue;
    const char32_t next = firstCodePoint(behind).value;
    if (!isWhiteSpace(next) && !isLetterOrDigit(next))
      return true;
  }
  return holdsStranger(text);
}

/// Whether every character found at the place is one of the needle's, and none is part of another.
bool TextSieve::standsForSure(std::string_view text, std::size_t place) const {
  if (!m_isSure)
    return false;
  for (std::size_t index = 0; index < m_small.size();) {
    const std::size_t length = firstCodePoint(std::string_view(m_small).substr(index)).length;
    const std::string_view found = text.substr(place + index, length);
    // What becomes of the capital sigma depends on the word.
    const bool isCapital = found == std::string_view(m_capital).substr(index, length) && found != "Σ";
    if (!isCapital && found != std::string_view(m_small).substr(index, length))
      return false;
    index += length;
  }
  const std::string_view behind = text.substr(place + m_small.size());
  if (behind.empty() || (behind.front() & 0x80) == 0)
    return true;
  const char32_t next = firstCodePoint(behind).value;
  return !isMark(next) && !isJamo(next);
}

TextSieve::Verdict TextSieve::inText(std::string_view text) const {
  if (m_small.empty())
    return Verdict::Maybe;
  std::size_t place = findEither(text, m_small, m_capital);
  if (place == std::string_view::npos)
    return holdsStranger(text) ? Verdict::Maybe : Verdict::No;
  if (standsForSure(text, place))
    return Verdict::Yes;
  return Verdict::Maybe;
}

TextSieve::Verdict TextSieve::amongWords(std::string_view packedWords) const {
  if (!m_isSure)
    return std::min(inText(packedWords), Verdict::Maybe);
  Verdict verdict = holdsStranger(packedWords) ? Verdict::Maybe : Verdict::No;
  for (std::size_t place = findEither(packedWords, m_small, m_capital); place != std::string_view::npos;
       place = findEither(packedWords, m_small, m_capital, place + 1)) {
    const std::size_t end = place + m_small.size();
    const bool isWord = (place == 0 || packedWords[place - 1] == '\n') &&
                        (end == packedWords.size() || packedWords[end] == '\n');
    if (isWord && standsForSure(packedWords, place))
      return Verdict::Yes;
    if (isWord)
      verdict = Verdict::Maybe;
  }
  return verdict;
}

} // namespace notlet
