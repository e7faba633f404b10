#include "core/Text.h"

#include <gmock/gmock.h>
#include <unicode/uchar.h>

#include "core/ByteSearch.h"
#include "core/RandomText.h"

namespace notlet {

namespace {

TEST(TextTest, WhiteSpaceIsTheSeparatorsTheControlsOfLinesAndNothingElse) {
  for (UChar32 value = 0; value <= UCHAR_MAX_VALUE; ++value) {
    const bool expected =
        (U_GET_GC_MASK(value) & U_GC_Z_MASK) != 0 || (value >= 0x09 && value <= 0x0D) || value == 0x85;
    ASSERT_EQ(isWhiteSpace(static_cast<char32_t>(value)), expected) << std::hex << value;
  }
}

TEST(TextTest, TrimmingTakesWhiteSpaceFromBothEndsOnly) {
  EXPECT_EQ(trimmed(" \t\u00A0\u1680\u2003\u2028\u2029\u202F\u205F\u3000\u0085\v\fa b\r\n"), "a b");
  EXPECT_EQ(trimmed("\u200Bzero width stays\uFEFF"), "\u200Bzero width stays\uFEFF");
  EXPECT_EQ(trimmed(" \xFF\xA0 "), "\xFF\xA0") << "half of a no-break space is no space";
  EXPECT_EQ(trimmed(std::string_view("\0 \0", 3)), std::string_view("\0 \0", 3));
  EXPECT_EQ(trimmed("\u3000\u3000"), "");
}

TEST(TextTest, FoldingMapsLetterCaseAndEncodingToOneForm) {
  struct {
    std::string_view text, expected;
  } const cases[] = {
      {"HeLLo", "hello"},
      {"CAFE\u0301", "café"},
      {"\u212B", "å"},
      {"İ", "i\u0307"},
      {"I", "i"},
      {"ΟΔΟΣ", "οδος"},
      {"STRAẞE", "straße"},
      {"\u1112\u1161\u11AB", "한"},
      {"e\u0301\u0323", "\u1EB9\u0301"},
      {"a\xC3z", "a\uFFFDz"},
      {std::string_view("A\0B", 3), std::string_view("a\0b", 3)},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(folded(text), expected) << text;
}

TEST(TextTest, CharactersAreCountedAsTheUserSeesThem) {
  struct {
    std::string_view text;
    std::size_t expected;
  } const cases[] = {{"", 0},
                     {"abc", 3},
                     {"a\r\nb", 3},
                     {"cafe\u0301", 4},
                     {"👨\u200D👩\u200D👧", 1},
                     {"हिन्दी", 2},
                     {"\u1112\u1161\u11AB", 1},
                     {"❤\uFE0F!", 2},
                     {"\xFFz", 2}};
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(graphemeCount(text), expected) << text;
    EXPECT_EQ(graphemes(text).size(), expected) << text;
  }
}

TEST(TextTest, OnlyWellFormedUtf8IsValid) {
  EXPECT_TRUE(isValidUtf8("日本 é 👨 plain"));
  for (const char* text :
       {"\xC3", "a\x80 and much plain text", "\xED\xA0\x80", "\xC0\xAF", "\xF4\x90\x80\x80"})
    EXPECT_FALSE(isValidUtf8(text));
}

TEST(TextTest, ANeedleIsFoundInWholeCharactersOnly) {
  struct {
    std::string_view text, needle;
    bool expected;
  } const cases[] = {
      {"Quarterly report", "REP", true},
      {"café", "cafe", false},
      {"cafe\u0301", "cafe", false},
      {"cafe\u0301", "CAFÉ", true},
      {"cafe\u0301 cafe", "cafe", true},
      {"q\u0323\u0301", "q\u0323", false},
      {"का", "क", false},
      {"का क", "क", true},
      {"e\u0301", "\u0301", false},
      {"\u0301 alone", "\u0301", true},
      {"❤\uFE0F", "❤", true},
      {"❤", "❤\uFE0F", false},
      {"1\uFE0F\u20E3", "1", false},
      {"👨\u200D👩", "👨", true},
      {"한국", "하", false},
      {"", "a", false},
      {"anything", "", true},
  };
  for (const auto& [text, needle, expected] : cases)
    EXPECT_EQ(containsCanonically(folded(text), folded(needle)), expected) << needle << " in " << text;
}

TEST(TextTest, APrefixIsOneOfWholeCharacters) {
  EXPECT_TRUE(startsWithCanonically("work", "wo"));
  EXPECT_FALSE(startsWithCanonically("work", "ork"));
  EXPECT_FALSE(startsWithCanonically(folded("q\u0301a"), "q"));
  EXPECT_TRUE(startsWithCanonically(folded("E\u0301a"), folded("é")));
  EXPECT_TRUE(startsWithCanonically("work", ""));
}

bool isOneOfEither(std::string_view text, std::string_view first, std::string_view second) {
  std::size_t index = 0;
  while (index < text.size() && (text[index] == first[index] || text[index] == second[index]))
    ++index;
  return index == text.size();
}

TEST(ByteSearchTest, FindsWhatThePlainSearchFindsAtEveryLengthAndOffset) {
  RandomText random(1);
  for (int round = 0; round < 4000; ++round) {
    std::string text(random.below(400), 'a');
    for (char& byte : text)
      byte = "aab\xFE"[random.below(4)];
    const std::size_t from = random.below(text.size() + 2);
    std::string needle =
        text.substr(random.below(text.size() + 1), 1 + random.below(random.oneIn(9) ? 350 : 12));
    if (random.oneIn(3) && !needle.empty())
      needle[random.below(needle.size())] = 'b';
    ASSERT_EQ(findBytes(text, needle, from), std::string_view(text).find(needle, from))
        << text << " / " << needle << " / " << from;

    std::string other = needle;
    for (char& byte : other)
      byte = random.oneIn(3) ? 'c' : byte;
    std::size_t place = std::min(from, text.size());
    while (place + needle.size() <= text.size() &&
           !isOneOfEither(text.substr(place, needle.size()), needle, other))
      ++place;
    const bool isFound = from <= text.size() && place + needle.size() <= text.size();
    ASSERT_EQ(findEither(text, needle, other, from), isFound ? place : std::string::npos)
        << text << " / " << needle << " or " << other << " / " << from;
  }
}

} // namespace

} // namespace notlet
