#include "core/HashtagParser.h"

#include <gmock/gmock.h>
#include <unicode/regex.h>

#include "core/RandomText.h"
#include "core/Text.h"

namespace notlet {

namespace {

TEST(HashtagParserTest, FindsTagsAfterWhiteSpaceOnly) {
  struct {
    std::string_view text;
    WordList expected;
  } const cases[] = {
      {"Meet #team about #Q3-plan.", {"team", "Q3-plan"}},
      {"a#b (#tag) ##tag #", {}},
      {"#Work and #work and #WORK", {"Work"}},
      {"#日本 #café", {"日本", "café"}},
      {"#cafe\u0301", {"cafe"}},
      {"first\n#tag\u00A0#next\u3000#last", {"tag", "next", "last"}},
      {"#2024 #to-do #_x #- #Ⅷ½", {"2024", "to-do", "_x", "-", "Ⅷ½"}},
      {"#İx #i\u0307x #ΟΔΟΣ #οδος", {"İx", "i", "ΟΔΟΣ"}},
      {"#a#b #c", {"a", "c"}},
      {"#👍 #no\u200Bjoin", {"no"}},
      {"\xFF#a \xC2\xA0#b #c\xFFz", {"b", "c"}},
      {std::string_view("#a\0b #c", 7), {"a", "c"}},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(HashtagParser::parse(text), expected) << text;
}

TEST(HashtagParserTest, CompletesTheTagBeingTyped) {
  struct {
    std::string_view text;
    std::optional<std::string> inProgress;
    std::string_view completed;
  } const cases[] = {
      {"Meeting #wo", "wo", "Meeting #work "},
      {"Meeting #", "", "Meeting #work "},
      {"", std::nullopt, "#work "},
      {std::string_view(), std::nullopt, "#work "},
      {"Meeting", std::nullopt, "Meeting#work "},
      {"Meeting #wo ", std::nullopt, "Meeting #wo #work "},
      {"#wo\n", std::nullopt, "#wo\n#work "},
      {"#wo\u2028", std::nullopt, "#wo\u2028#work "},
      {"line\n#", "", "line\n#work "},
      {"#a#b", std::nullopt, "#a#b#work "},
      {"#wo!", std::nullopt, "#wo!#work "},
      {"#日本", "日本", "#work "},
      {"#ก\u0E33", "ก\u0E33", "#work "},
      {"keep \u0E33#\u0E33", std::nullopt, "keep \u0E33#\u0E33#work "},
      {"keep this #\u0E33", "\u0E33", "keep this #work "},
  };
  for (const auto& [text, inProgress, completed] : cases) {
    EXPECT_EQ(HashtagParser::inProgressHashtag(text), inProgress) << text;
    EXPECT_EQ(HashtagParser::completingHashtag("work", text), completed) << text;
  }
}

/// The patterns matched against the whole text, with nothing done to be quick.
class WholeTextRule {
 public:
  WordList parse(const std::string& text) {
    const icu::UnicodeString wide = icu::UnicodeString::fromUTF8(text);
    WordList::Builder tags;
    std::vector<std::string> seen;
    m_tag.reset(wide);
    while (m_tag.find(m_status)) {
      const std::string tag = utf8(wide, m_tag.start(m_status) + 1, m_tag.end(m_status));
      if (std::ranges::find(seen, folded(tag)) != seen.end())
        continue;
      seen.push_back(folded(tag));
      tags.append(tag);
    }
    return tags.list();
  }

  std::optional<std::string> inProgress(const std::string& text) {
    const icu::UnicodeString wide = icu::UnicodeString::fromUTF8(text);
    m_completion.reset(wide);
    while (m_completion.find(m_status)) {
      // A line break at the end would let "$" match before it; the tag must reach the very end.
      if (m_completion.end(m_status) == wide.length())
        return utf8(wide, m_completion.start(1, m_status), m_completion.end(1, m_status));
    }
    return std::nullopt;
  }

 private:
  static std::string utf8(const icu::UnicodeString& text, int32_t begin, int32_t end) {
    std::string result;
    return text.tempSubStringBetween(begin, end).toUTF8String(result);
  }

  UErrorCode m_status = U_ZERO_ERROR;
  icu::RegexMatcher m_tag{uR"((?<!\S)#[\p{L}\p{N}_-]+)", 0, m_status};
  icu::RegexMatcher m_completion{uR"((?<!\S)#([\p{L}\p{N}_-]*)$)", 0, m_status};
};

TEST(HashtagParserTest, AgreesWithThePatternsOnTheWholeText) {
  RandomText random(2);
  WholeTextRule rule;
  int tagged = 0;
  int inProgress = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string text = random.text(8);
    if (random.oneIn(3))
      text.append("#").append(random.word());
    const auto expected = rule.inProgress(text);
    const WordList tags = rule.parse(text);
    ASSERT_EQ(HashtagParser::parse(text), tags) << text;
    ASSERT_EQ(HashtagParser::inProgressHashtag(text), expected) << text;
    const std::string kept = expected ? text.substr(0, text.size() - expected->size() - 1) : text;
    ASSERT_EQ(HashtagParser::completingHashtag("Tag", text), kept + "#Tag ") << text;
    tagged += tags.empty() ? 0 : 1;
    inProgress += expected ? 1 : 0;
  }
  EXPECT_GT(tagged, 5000);
  EXPECT_GT(inProgress, 500);
}

} // namespace

} // namespace notlet
