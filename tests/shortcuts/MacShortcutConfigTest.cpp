#include "shortcuts/MacShortcutConfig.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <iterator>
#include <limits>

#include "fuzz/ShortcutFileCheck.h"

namespace notlet {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::Eq;
using testing::HasSubstr;
using testing::Optional;
using testing::SizeIs;

constexpr std::string_view defaultFile = R"({
  "archiveNavigation": {
    "next": "down",
    "nextAlternate": "j",
    "previous": "up",
    "previousAlternate": "k"
  },
  "commands": {
    "archive": "a",
    "delete": "d",
    "edit": "e",
    "notlet": "j",
    "search": "/"
  },
  "configurationVersion": 3,
  "leader": "control+s",
  "leaderTimeoutMilliseconds": 1200
}
)";

/// The file of the defaults with one part replaced by another.
std::string fileWith(std::string_view part, std::string_view replacement) {
  std::string file(defaultFile);
  const std::size_t at = file.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return file.replace(at, part.size(), replacement);
}

TEST(MacShortcutConfig, EveryKeyIsWrittenInOrder) {
  EXPECT_EQ(MacShortcutConfig::defaults().encode(), defaultFile);
}

TEST(MacShortcutConfig, AnyTextComesBackAsItWas) {
  MacShortcutConfig config;
  config.leader = "cmd+\"\\\n";
  config.commands = {"Ä", "", "\xF0\x9F\x98\x80", "/", "\u2028"};
  config.archiveNavigation = {"1", "2", "3", "4"};
  config.leaderTimeoutMilliseconds = std::numeric_limits<std::int64_t>::max();
  config.configurationVersion = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(MacShortcutConfig::decode(config.encode()), config);
}

TEST(MacShortcutConfig, OlderFilesAreReadAndUpgraded) {
  using Change = std::function<void(MacShortcutConfig&)>;
  const Change nothing = [](MacShortcutConfig&) {};
  struct Case {
    std::string name;
    std::string file;
    /// What is read that differs from the defaults, and what of it is left after the upgrade.
    Change read;
    Change upgraded;
    bool mustBeRewritten;
  };
  const std::vector<Case> cases = {
      {"current", std::string(defaultFile), nothing, nothing, false},
      {"unknown keys", fileWith("{", R"({"edit": 1, "theme": {"deep": [[[]]]},)"), nothing, nothing, false},
      {"no edit", fileWith(R"("edit": "e",)", ""), nothing, nothing, true},
      {"no delete", fileWith(R"("delete": "d",)", ""), nothing, nothing, true},
      {"null edit and delete",
       fileWith(R"("delete": "d",
    "edit": "e",)",
                R"("delete": null, "edit": null,)"),
       nothing, nothing, false},
      {"no version", fileWith(R"("configurationVersion": 3,)", ""),
       [](MacShortcutConfig& config) { config.configurationVersion = 1; }, nothing, true},
      {"null version, other keys",
       fileWith(R"("delete": "d",
    "edit": "e",
    "notlet": "j",
    "search": "/"
  },
  "configurationVersion": 3)",
                R"("delete": "x", "edit": "y", "notlet": "z", "search": "s"}, "configurationVersion": null)"),
       [](MacShortcutConfig& config) {
         config.commands = {"z", "a", "s", "y", "x"};
         config.configurationVersion = 1;
       },
       [](MacShortcutConfig& config) { config.commands = {"z", "a", "/", "y", "d"}; }, true},
      {"version 2 keeps delete",
       fileWith(R"("delete": "d",
    "edit": "e",
    "notlet": "j",
    "search": "/"
  },
  "configurationVersion": 3)",
                R"("delete": "x", "edit": "e", "notlet": "j", "search": "s"},
  "configurationVersion": 2)"),
       [](MacShortcutConfig& config) {
         config.commands.search = "s";
         config.commands.remove = "x";
         config.configurationVersion = 2;
       },
       [](MacShortcutConfig& config) { config.commands.remove = "x"; }, true},
      {"negative version", fileWith("Version\": 3", "Version\": -9223372036854775808"),
       [](MacShortcutConfig& config) {
         config.configurationVersion = std::numeric_limits<std::int64_t>::min();
       },
       nothing, true},
      {"later version", fileWith("Version\": 3", "Version\": 7"),
       [](MacShortcutConfig& config) { config.configurationVersion = 7; },
       [](MacShortcutConfig& config) { config.configurationVersion = 7; }, false},
      {"later version without delete", fileWith(R"("delete": "d",)", R"("delet": 7,)"), nothing, nothing,
       true},
      {"a leader that is none", fileWith("control+s", "hyper+s"),
       [](MacShortcutConfig& config) { config.leader = "hyper+s"; },
       [](MacShortcutConfig& config) { config.leader = "hyper+s"; }, false},
      {"a timeout too short to save", fileWith("1200", "-5"),
       [](MacShortcutConfig& config) { config.leaderTimeoutMilliseconds = -5; },
       [](MacShortcutConfig& config) { config.leaderTimeoutMilliseconds = -5; }, false},
  };
  for (const Case& old : cases) {
    SCOPED_TRACE(old.name);
    MacShortcutConfig expected;
    old.read(expected);
    const auto read = MacShortcutConfig::decode(old.file);
    ASSERT_TRUE(read) << read.error().message;
    EXPECT_EQ(*read, expected);
    MacShortcutConfig expectedUpgrade;
    old.upgraded(expectedUpgrade);
    const auto upgrade = upgraded(*read, old.file);
    ASSERT_TRUE(upgrade);
    EXPECT_EQ(upgrade->config, expectedUpgrade);
    EXPECT_EQ(upgrade->mustBeRewritten, old.mustBeRewritten);
  }
}

TEST(MacShortcutConfig, WhatIsNotThisFormatIsRefusedWithTheReason) {
  struct Case {
    std::string file;
    std::string reason;
  };
  std::vector<Case> cases = {
      {"", "The file ends too early, in line 1, column 1."},
      {"{\"é\":\n", "The file ends too early, in line 2, column 1."},
      {"{\"leader\": \"control+s\",}",
       "In line 1, column 24, “}” is not expected: the comma before it is one"},
      {"{\"a\": 1\n \"b\": 2}",
       "In line 2, column 2, “\"b\"” is not expected: a comma or a colon may be missing"},
      {"{\"é\": nul }", "In line 1, column 7, “nul” is not expected."},
      {"// no comments\n{}", "“/” is not expected: there is no room for comments."},
      {"{'leader': 1}", "“'” is not expected: texts stand between double quotation marks."},
      {"{\n \"leader\": \"control+s,\n}", "The text that begins in line 2, column 12 has no quotation mark"},
      {"{\"lea\tder\"", "In line 1, column 6 stands a character that must be written with a backslash."},
      {std::string(defaultFile) + "{}",
       "In line 19, column 1, “{” is not expected: the file should end before"},
      {std::string(defaultFile) + std::string(1, '\0'), "not valid UTF-8 text, in line 19, column 1."},
      {"null", "one group in braces"},
      {"\"control+s\"", "one group in braces"},
      {"{}", "“leader” is missing"},
      {fileWith("control+s", "\xFF"), "not valid UTF-8 text, in line 16, column 14."},
      {fileWith("control+s", "\\ud800"), "The backslash before line 16, column 20"},
      {fileWith("\"control+s\"", "null"), "“leader” must be a text"},
      {fileWith("\"control+s\"", "[\"s\"]"), "“leader” must be a text"},
      {fileWith("1200", "1200.5"), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "1.2e3"), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "\"1200\""), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "true"), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "null"), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "9223372036854775808"), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "-9223372036854775809"), "“leaderTimeoutMilliseconds” must be a whole number"},
      {fileWith("1200", "1e999"), "A number in the file is too large."},
      {fileWith("Version\": 3", "Version\": \"3\""), "“configurationVersion” must be a whole number"},
      {fileWith("Version\": 3", "Version\": 18446744073709551615"), "“configurationVersion” must be a whole"},
      {fileWith("\"d\"", "4"), "“commands.delete” must be a text"},
      {fileWith("\"e\"", "{}"), "“commands.edit” must be a text"},
      {fileWith("\"/\"", "null"), "“commands.search” must be a text"},
      {R"({"leader": "s", "commands": []})", "“commands” must be a group in braces"},
      {R"({"leader": "s", "commands": null})", "“commands” must be a group in braces"},
  };
  for (const char* required : {"next", "nextAlternate", "previous", "previousAlternate"})
    cases.push_back({fileWith("\"" + std::string(required) + "\"", "\"other\""),
                     "“archiveNavigation." + std::string(required) + "” is missing"});
  for (const char* required : {"notlet", "archive", "search"})
    cases.push_back({fileWith("\"" + std::string(required) + "\"", "\"other\""),
                     "“commands." + std::string(required) + "” is missing"});
  for (const char* required : {"leader", "commands", "archiveNavigation", "leaderTimeoutMilliseconds"})
    cases.push_back({fileWith("\"" + std::string(required) + "\"", "\"other\""),
                     "“" + std::string(required) + "” is missing"});
  for (const Case& wrong : cases) {
    const auto read = MacShortcutConfig::decode(wrong.file);
    ASSERT_FALSE(read) << wrong.file;
    EXPECT_THAT(read.error().message, AllOf(HasSubstr(wrong.reason), EndsWith("."))) << wrong.file;
  }
}

// A hostile or mistaken file must neither exhaust the stack nor fill the screen with its contents.
TEST(MacShortcutConfig, FilesOfAbsurdSizeOrDepthAreRefused) {
  for (const char* bracket : {"[", "{\"a\":"}) {
    std::string nested;
    while (nested.size() < 500'000)
      nested += bracket;
    const auto read = MacShortcutConfig::decode(nested);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().message, "The file is nested too deeply.");
    EXPECT_FALSE(upgraded({}, nested));
  }
  const auto large = MacShortcutConfig::decode(std::string(MacShortcutConfig::largestFile + 1, ' '));
  EXPECT_EQ(large.error().message, "The file is too large.");
  const auto longWord = MacShortcutConfig::decode("\"" + std::string(900'000, 'x'));
  ASSERT_FALSE(longWord);
  EXPECT_THAT(longWord.error().message, SizeIs(testing::Lt(400U)));
  // Brackets in texts are no nesting, after quotation marks neither.
  const auto brackets = MacShortcutConfig::decode(fileWith("control+s", "\\\"" + std::string(1000, '[')));
  EXPECT_TRUE(brackets);
}

TEST(MacShortcutConfig, Validation) {
  constexpr const char* noKey = "The leader must include a key, for example control+s.";
  constexpr const char* tooShort = "The leader timeout must be at least 100 milliseconds.";
  struct Case {
    std::string leader;
    std::int64_t timeout;
    std::optional<std::string> message;
  };
  const std::vector<Case> cases = {
      {"control+s", 1200, std::nullopt},
      {"s", 100, std::nullopt},
      {"control+", 100, std::nullopt},
      {"control+s", std::numeric_limits<std::int64_t>::max(), std::nullopt},
      {"control+s", 99, tooShort},
      {"control+s", -1, tooShort},
      {"", 1200, noKey},
      {" + ", 1200, noKey},
      {"hyper+s", 0, noKey},
  };
  for (const Case& edited : cases) {
    MacShortcutConfig config;
    config.leader = edited.leader;
    config.leaderTimeoutMilliseconds = edited.timeout;
    config.commands = {"", "", "", "", ""};
    EXPECT_EQ(config.validationMessage(), edited.message) << edited.leader << " " << edited.timeout;
  }
}

TEST(MacShortcutConfig, TheFuzzersCorpusKeepsItsPromises) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(NOTLET_SHORTCUT_CORPUS)) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    EXPECT_THAT(complaintAboutShortcutFile(bytes), Eq(std::nullopt)) << entry.path();
    ++files;
  }
  EXPECT_GE(files, 10);
}

} // namespace
} // namespace notlet
