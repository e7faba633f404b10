#include "cli/NotletImport.h"

#include <gmock/gmock.h>

#include "RandomNotlets.h"
#include "cli/NotletPrinter.h"

namespace notlet {
namespace {

using ::testing::HasSubstr;

constexpr const char* idText = "11111111-1111-4111-8111-111111111111";

std::string object(const std::string& rest) {
  return std::string("{\"id\":\"") + idText + "\",\"createdAt\":\"2026-01-01T00:00:00Z\"" + rest + "}";
}

TEST(NotletImportTest, readsBackWhatIsPrinted) {
  const std::vector<NotletEntry> notlets = randomNotlets(500, 7);
  std::string lines = "[";
  std::string pretty = "[";
  for (const NotletEntry& notlet : notlets) {
    lines += (lines.size() > 1 ? "," : "") + NotletPrinter::jsonLine(notlet);
    pretty += (pretty.size() > 1 ? ",\n" : "\n") + NotletPrinter::jsonElement(notlet);
  }
  for (const std::string& text : {lines + "]", pretty + "\n]\n", "\xEF\xBB\xBF" + lines + "]"}) {
    const CommandResult<std::vector<NotletEntry>> read = parseNotlets(text);
    ASSERT_TRUE(read) << read.error().message;
    EXPECT_EQ(*read, notlets);
  }
}

TEST(NotletImportTest, takesWordsFromTheContentAlone) {
  const auto read = parseNotlets(
      "[" +
      object(R"(,"content":"  Plan #Q3 \n","hashtags":["wrong",["x"]],"keywords":{"no":[1,true,null]},)"
             R"("updatedAt":null,"extra":{"id":5,"content":[2.5]})") +
      "]");
  ASSERT_TRUE(read) << read.error().message;
  ASSERT_EQ(read->size(), 1U);
  EXPECT_EQ(read->front().content, "Plan #Q3");
  EXPECT_EQ(read->front().hashtags, WordList({"Q3"}));
  EXPECT_EQ(read->front().keywords, WordList({"Plan"}));
  EXPECT_EQ(read->front().updatedAt, std::nullopt);
  EXPECT_EQ(parseNotlets(" [ ] ").value(), std::vector<NotletEntry>());
}

TEST(NotletImportTest, refusesAndTellsWhere) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", "ends too early, at line 1, column 1"},
      {" \n ", "ends too early, at line 2, column 2"},
      {"[\n", "ends too early, at line 2, column 1"},
      {"[" + object(R"(,"content":"é)"), "ends too early, at line 1"},
      {"[" + object(R"(,"content":"é)") + "\xff\"}]", "not UTF-8 at line 1"},
      {"[\xc3\x28]", "not UTF-8 at line 1, column 2"},
      {"[" + object(R"(,"content":"\ud800")") + "]", "not JSON at line 1"},
      {"[\n  nothing]", "not JSON at line 2, column 4"},
      {"[" + object(R"(,"content":"x")") + ",]", "not JSON"},
      {"[] []", "not JSON at line 1, column 4"},
      {"[" + object(R"(,"content":"x")") + "\n" + object("") + "]", "not JSON at line 2, column 1"},
      {"{}", "not an array of notlets, at line 1, column 1"},
      {"\"x\"", "not an array of notlets"},
      {"7", "not an array of notlets"},
      {"[1]", "not a notlet"},
      {"[[]]", "not a notlet, at line 1, column 2"},
      {"[null]", "not a notlet"},
      {"[{}]", "must have an id"},
      {"[" + object("") + "]", "must have an id, a content"},
      {"[" + object(R"(,"content":"")") + "]", "no text"},
      {"[" + object(R"(,"content":" \n\u2003")") + "]", "no text"},
      {"[" + object(R"(,"content":5)") + "]", "A text is expected"},
      {"[" + object(R"(,"content":null)") + "]", "A text is expected"},
      {"[" + object(R"(,"content":["x"])") + "]", "A text is expected"},
      {"[" + object(R"(,"content":"x","content":"y")") + "]", "appears twice"},
      {"[" + object(R"(,"content":"x","updatedAt":"yesterday")") + "]", "The time of the last edit"},
      {"[" + object(R"(,"content":"x","updatedAt":5)") + "]", "A text is expected"},
      {R"([{"id":"111"}])", "The id is not one, at line 1, column 12"},
      {R"([{"createdAt":""}])", "The time of creation"},
      {"[" + object(",\"x\":" + std::string(1'000'000, '[')) + "]", "nested too deeply"},
      {std::string(1'000'000, '['), "not a notlet"},
      {"[" + object(R"(,"content":"x","y":1e999)") + "]", "not JSON"},
  };
  for (const auto& [text, complaint] : cases) {
    const auto read = parseNotlets(text);
    ASSERT_FALSE(read) << text.substr(0, 200);
    EXPECT_EQ(read.error().status, 1);
    EXPECT_THAT(read.error().message, HasSubstr(complaint)) << text.substr(0, 200);
  }
}

TEST(NotletImportTest, survivesTruncationAnywhere) {
  std::string text = "[";
  for (const NotletEntry& notlet : randomNotlets(3, 11))
    text += (text.size() > 1 ? ",\n" : "") + NotletPrinter::jsonLine(notlet);
  for (std::size_t length = 0; length < text.size(); ++length)
    EXPECT_FALSE(parseNotlets(std::string_view(text).substr(0, length))) << length;
}

} // namespace
} // namespace notlet
