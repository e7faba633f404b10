#include "core/TextSieve.h"

#include <gmock/gmock.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "core/RandomText.h"
#include "core/Text.h"

namespace notlet {

namespace {

using Verdict = TextSieve::Verdict;

void agrees(std::string_view text, const std::string& needle) {
  const Verdict verdict = TextSieve(needle).inText(text);
  const bool contains = containsCanonically(folded(text), needle);
  ASSERT_TRUE(verdict == Verdict::Maybe || contains == (verdict == Verdict::Yes))
      << needle << " in " << text << ": " << static_cast<int>(verdict);
}

// A character that the sieve does not know of would hide a notlet.
TEST(TextSieveTest, NoCharacterThatFoldsToAnotherIsMissed) {
  int folding = 0;
  for (UChar32 character = 0; character <= UCHAR_MAX_VALUE; ++character) {
    if (u_charType(character) == U_UNASSIGNED || U_IS_SURROGATE(character))
      continue;
    std::string text;
    icu::UnicodeString(character).toUTF8String(text);
    const std::string needle = folded(text);
    if (needle == text)
      continue;
    ++folding;
    agrees(text, needle);
    for (const std::string_view around : {"x", "\u0301", "σ", "한"}) {
      const std::string longer = std::string(around).append(text).append(around);
      agrees(longer, needle);
      agrees(longer, folded(longer));
    }
  }
  EXPECT_GT(folding, 2000);
}

TEST(TextSieveTest, AgreesWithTheRuleInEveryScript) {
  RandomText random(11);
  int ruledOut = 0;
  for (int round = 0; round < 30'000; ++round) {
    const std::string text = random.text(4);
    const std::string needle =
        folded(random.oneIn(3) && !text.empty() ? text.substr(random.below(text.size()))
                                                : std::string(random.word()));
    agrees(text, needle);
    ruledOut += TextSieve(needle).inText(text) == Verdict::No ? 1 : 0;
  }
  EXPECT_GT(ruledOut, 15'000);
}

TEST(TextSieveTest, AWordIsFoundAmongWordsAsAWhole) {
  struct {
    std::string_view words, needle;
    Verdict expected;
  } const cases[] = {
      {"Work\nhome\n", "work", Verdict::Yes},
      {"Work\nhome\n", "home", Verdict::Yes},
      {"homework\nwork-1\n", "work", Verdict::No},
      {"wor\u212A\n", "work", Verdict::Maybe},
      {"ПРИВЕТ\n", "привет", Verdict::Yes},
      {"ΟΔΟΣ\n", "οδος", Verdict::Maybe},
      {"", "work", Verdict::No},
  };
  for (const auto& [words, needle, expected] : cases)
    EXPECT_EQ(TextSieve(needle).amongWords(words), expected) << needle << " among " << words;
}

} // namespace

} // namespace notlet
