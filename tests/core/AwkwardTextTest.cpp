#include <gmock/gmock.h>

#include "core/FoldedArchive.h"
#include "core/HashtagParser.h"
#include "core/SearchService.h"
#include "core/Text.h"

namespace notlet {

namespace {

constexpr std::size_t tenMegabytes = 10'000'000;

std::string repeated(std::string_view piece, std::size_t bytes) {
  std::string text;
  while (text.size() < bytes)
    text += piece;
  return text;
}

void goesThroughAllRules(const std::string& text) {
  auto notlet = makeNotlet(text, Timestamp{});
  ASSERT_TRUE(notlet);
  FoldedArchive archive;
  const auto slot = archive.add(*notlet);
  for (const std::string& query : {std::string("word"), std::string("#tag"), text.substr(0, 40), text}) {
    const SearchQuery parsed = SearchQuery::parse(query);
    EXPECT_EQ(archive.matches(slot, parsed), SearchService::matches(*notlet, parsed));
  }
  EXPECT_TRUE(SearchService::matches(*notlet, text)) << "a notlet is found by its own text";
  EXPECT_EQ(HashtagParser::completingHashtag("tag", text + " #t"), text + " #tag ");
  EXPECT_EQ(HashtagParser::inProgressHashtag("#" + text + "!"), std::nullopt);
  EXPECT_TRUE(applyEdit(*notlet, text + " #after", Timestamp{}));
}

TEST(AwkwardTextTest, LargeTextsGoThroughAllRules) {
  const std::string texts[] = {std::string(tenMegabytes, 'a'), "#" + std::string(1'000'000, 'a'),
                               std::string(1'000'000, '#'),    repeated("é", 1'000'000),
                               repeated("\u0301", 1'000'000),  repeated("日本語", 300'000),
                               repeated("ภาษา", 300'000),      repeated("👨\u200D", 300'000)};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 20));
    goesThroughAllRules(text);
  }
}

TEST(AwkwardTextTest, MalformedAndInvisibleTextsGoThroughAllRules) {
  const std::string texts[] = {std::string("\0", 1),
                               std::string("a\0#b\0 #c\0", 10),
                               "\u0301",
                               "\uFFFD",
                               "\u093E\u200D",
                               "\xFF",
                               "#\xC3",
                               "\xED\xA0\x80#\xF0\x9F",
                               "\uFEFF",
                               "#"};
  for (const std::string& text : texts) {
    SCOPED_TRACE(testing::PrintToString(text));
    goesThroughAllRules(text);
  }
}

TEST(ManyTagsTest, TenThousandTagsAreAllFound) {
  std::string text;
  for (int number = 0; number < 10'000; ++number)
    text += "#tag" + std::to_string(number) + (number % 2 == 0 ? " " : "\n");
  EXPECT_EQ(HashtagParser::parse(text + text).size(), 10'000U);
}

} // namespace

} // namespace notlet
