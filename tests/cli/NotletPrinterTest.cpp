#include "cli/NotletPrinter.h"

#include <gtest/gtest.h>

#include <clocale>

#include "cli/TerminalText.h"
#include "core/Uuid.h"

namespace notlet {
namespace {

NotletEntry notletOf(std::string content) {
  NotletEntry notlet;
  notlet.id = Uuid::parse("0123ABCD-0000-4000-8000-000000000000").value();
  notlet.content = std::move(content);
  return notlet;
}

/// What stands behind id and time.
std::string printed(const std::string& content, std::size_t room) {
  constexpr std::size_t before = 8 + 2 + 16 + 2;
  return NotletPrinter::terminalLine(notletOf(content), before + room).substr(before);
}

TEST(NotletPrinterTest, fitsTheFirstLineIntoTheTerminal) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  const std::vector<std::pair<std::string, std::string>> cases{
      {"short", "short"},
      {"exactly twenty cells", "exactly twenty cells"},
      {"exactly twenty cells!", "exactly twenty cell…"},
      {"two\nlines", "two…"},
      {"two\r\nlines", "two…"},
      {"exactly twenty cells\nand a line", "exactly twenty cell…"},
      {"日本語日本語日本語日", "日本語日本語日本語日"},
      {"日本語日本語日本語日本", "日本語日本語日本語…"},
      {"tab\tesc\x1b[31mdel\x7f nel\u0085", "tab esc [31mdel  ne…"},
      {"e\u0301e\u0301e\u0301", "e\u0301e\u0301e\u0301"},
      {"a\u2028b", "a b"},
  };
  for (const auto& [content, expected] : cases)
    EXPECT_EQ(printed(content, 20), expected) << content;
  // Rather break the line than show nothing.
  EXPECT_EQ(NotletPrinter::terminalLine(notletOf("exactly twenty cells"), 1).substr(28),
            "exactly twenty cells");
}

TEST(NotletPrinterTest, keepsEveryPipeLineOnOneLineOfThreeFields) {
  for (const char* content :
       {"plain", "a\tb", "first\nsecond", "first\rsecond", "a\vb\fc\u0085d\u2028e\u2029f"}) {
    const std::string line = NotletPrinter::pipeLine(notletOf(content));
    EXPECT_EQ(std::ranges::count(line, '\t'), 2) << line;
    for (const char* breaking : {"\n", "\r", "\v", "\f", "\u0085", "\u2028", "\u2029"})
      EXPECT_EQ(line.find(breaking), std::string::npos) << line;
    EXPECT_TRUE(line.starts_with("0123ABCD\t"));
  }
}

TEST(NotletPrinterTest, disarmsTextForTheTerminal) {
  EXPECT_EQ(harmless("a\tb\nc \x1b]0;title\x07 \u009b2J \rx é\u2028日"),
            "a\tb\nc \uFFFD]0;title\uFFFD \uFFFD2J \uFFFDx é\u2028日");
  EXPECT_EQ(harmless("\x9b\xc2"), "\uFFFD\uFFFD");
  EXPECT_EQ(harmless("a \u202Eb\nc \u2067d \u202Ae"), "a \u202Eb\u202C\nc \u2067d \u202Ae\u202C\u2069");
  EXPECT_EQ(harmless("\u202Ea\u202C \u2067\u202E\u2069 \u2067\u202C\u2069"),
            "\u202Ea\u202C \u2067\u202E\u2069 \u2067\u202C\u2069");
}

TEST(NotletPrinterTest, keepsHashtagsAndLinesInMarkdown) {
  const std::string section = NotletPrinter::markdown(notletOf("#work first\nsecond\n\nthird #x"));
  EXPECT_TRUE(section.starts_with("## ")) << section;
  EXPECT_TRUE(section.ends_with("\n\n\\#work first  \nsecond\n\nthird #x\n\n")) << section;
}

} // namespace
} // namespace notlet
