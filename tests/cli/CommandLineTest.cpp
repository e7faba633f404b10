#include "cli/CommandLine.h"

#include <gtest/gtest.h>

namespace notlet {
namespace {

using Words = std::vector<std::string_view>;

CommandLine line(Verb verb, std::vector<std::string> words = {}) {
  CommandLine result;
  result.verb = verb;
  result.words = std::move(words);
  return result;
}

template<typename Change>
CommandLine with(CommandLine result, const Change& change) {
  change(result);
  return result;
}

TEST(CommandLineTest, readsVerbsOptionsAndWordsInAnyOrder) {
  const std::vector<std::pair<Words, CommandLine>> cases{
      {{}, line(Verb::Start)},
      {{"add"}, line(Verb::Add)},
      {{"add", "two", "words"}, line(Verb::Add, {"two", "words"})},
      {{"add", "-"}, line(Verb::Add, {"-"})},
      {{"add", ""}, line(Verb::Add, {""})},
      {{"add", "--", "--json", "-5"}, line(Verb::Add, {"--json", "-5"})},
      {{"--json", "add", "x"}, with(line(Verb::Add, {"x"}), [](auto& it) { it.json = true; })},
      {{"add", "--tag", "a", "x", "--tag=b"},
       with(line(Verb::Add, {"x"}), [](auto& it) { it.tags = {"a", "b"}; })},
      {{"add", "--tag", "--", "x"}, with(line(Verb::Add, {"x"}), [](auto& it) { it.tags = {"--"}; })},
      {{"list", "--limit", "0"}, with(line(Verb::List), [](auto& it) { it.limit = 0; })},
      {{"tags", "--limit=7", "w"}, with(line(Verb::Tags, {"w"}), [](auto& it) { it.limit = 7; })},
      {{"export", "--format=markdown", "f"},
       with(line(Verb::Export, {"f"}), [](auto& it) { it.format = ExportFormat::Markdown; })},
      {{"delete", "a", "b"}, line(Verb::Delete, {"a", "b"})},
      {{"--help"}, line(Verb::Help)},
      {{"help", "add"}, line(Verb::Help, {"add"})},
      {{"list", "too", "many", "-h"}, line(Verb::Help, {"too", "many"})},
      {{"--version"}, line(Verb::Version)},
      {{"version"}, line(Verb::Version)},
  };
  for (const auto& [arguments, expected] : cases) {
    const CommandResult<CommandLine> parsed = CommandLine::parse(arguments);
    ASSERT_TRUE(parsed) << parsed.error().message;
    EXPECT_EQ(*parsed, expected) << ::testing::PrintToString(arguments);
  }
}

TEST(CommandLineTest, refusesWrongUsage) {
  const std::vector<Words> cases{
      {"nonsense"},
      {""},
      {"-"},
      {"--"},
      {"--json"},
      {"Add", "x"},
      {"add", "--unknown"},
      {"add", "-x"},
      {"add", "--json=yes", "x"},
      {"add", "--limit", "1", "x"},
      {"list", "word"},
      {"list", "--limit"},
      {"list", "--limit", "-1"},
      {"list", "--limit", "1x"},
      {"list", "--limit="},
      {"list", "--limit", "99999999999999999999"},
      {"list", "--format", "json"},
      {"search"},
      {"show"},
      {"show", "a", "b"},
      {"edit"},
      {"edit", "a", "--tag", "b"},
      {"delete"},
      {"delete", "a", "--json"},
      {"tags", "a", "b"},
      {"export", "a", "b"},
      {"export", "--format", "xml"},
      {"export", "--json"},
      {"import"},
      {"import", "a", "b"},
      {"path", "x"},
      {"version", "x"},
  };
  for (const Words& arguments : cases) {
    const CommandResult<CommandLine> parsed = CommandLine::parse(arguments);
    ASSERT_FALSE(parsed) << ::testing::PrintToString(arguments);
    EXPECT_EQ(parsed.error().status, 2);
    EXPECT_FALSE(parsed.error().message.empty());
  }
}

} // namespace
} // namespace notlet
