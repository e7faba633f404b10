#include "platform/Defaults.h"

#include <QTemporaryDir>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace notlet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class JsonFileDefaultsTest : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path folder() const { return m_directory.path().toStdString(); }
  [[nodiscard]] std::filesystem::path file() const { return folder() / "state" / "defaults.json"; }

  void writeFile(std::string_view text) const {
    std::filesystem::create_directories(file().parent_path());
    std::ofstream(file(), std::ios::binary) << text;
  }

  /// The contents of all files that were set aside.
  [[nodiscard]] std::vector<std::string> setAside() const {
    std::vector<std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(file().parent_path())) {
      if (!entry.path().filename().string().starts_with("defaults.json.unreadable-"))
        continue;
      std::ifstream stream(entry.path(), std::ios::binary);
      contents.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    std::ranges::sort(contents);
    return contents;
  }

 private:
  QTemporaryDir m_directory;
};

TEST_F(JsonFileDefaultsTest, EveryKindOfValueSurvivesARestart) {
  const std::string bytes("\0\xff[{\"id\":1}]\n", 13);
  const std::string text = "Ros\u00e9 \"Pine\"/\n";
  {
    JsonFileDefaults defaults(file());
    EXPECT_TRUE(defaults.setString("text", text));
    EXPECT_TRUE(defaults.setInteger("integer", std::numeric_limits<std::int64_t>::min()));
    EXPECT_TRUE(defaults.setNumber("number", 0.1 + 0.2));
    EXPECT_TRUE(defaults.setBinary("binary", bytes));
    EXPECT_TRUE(defaults.setBinary("empty", ""));
    EXPECT_TRUE(defaults.setString("gone", "x"));
    EXPECT_TRUE(defaults.remove("gone"));
  }
  const JsonFileDefaults defaults(file());
  EXPECT_EQ(defaults.string("text"), text);
  EXPECT_EQ(defaults.integer("integer"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(defaults.number("number"), 0.1 + 0.2);
  EXPECT_EQ(defaults.binary("binary"), bytes);
  EXPECT_EQ(defaults.binary("empty"), "");
  EXPECT_EQ(defaults.string("gone"), std::nullopt);
  struct stat status{};
  ASSERT_EQ(stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(JsonFileDefaultsTest, ValuesOfAnotherKindAreAbsentAndKeptWhenReplaced) {
  writeFile(R"({"id": 5, "themes": {"base64": "not base64!"}, "count": "seven", "other": [1, 2]})");
  JsonFileDefaults defaults(file());
  EXPECT_EQ(defaults.string("id"), std::nullopt);
  EXPECT_EQ(defaults.number("id"), 5.0);
  EXPECT_EQ(defaults.binary("themes"), std::nullopt);
  EXPECT_EQ(defaults.integer("count"), std::nullopt);
  ASSERT_TRUE(defaults.setBinary("themes", "[]"));
  ASSERT_TRUE(defaults.setInteger("count", 8));

  std::ifstream stream(file());
  const std::string written(std::istreambuf_iterator<char>(stream), {});
  EXPECT_THAT(written, testing::HasSubstr("not base64!"));
  EXPECT_THAT(written, testing::HasSubstr("\"seven\""));
  EXPECT_THAT(written, testing::HasSubstr("\"other\""));
  EXPECT_EQ(JsonFileDefaults(file()).integer("count"), 8);
}

TEST_F(JsonFileDefaultsTest, AFileThatCannotBeReadIsSetAsideBeforeItIsOverwritten) {
  const std::vector<std::string> damaged = {"", "[1, 2]", R"({"id": "dracula")", "\xff\xfe"};
  for (const std::string& text : damaged) {
    writeFile(text);
    JsonFileDefaults defaults(file());
    EXPECT_EQ(defaults.string("id"), std::nullopt);
    EXPECT_TRUE(std::filesystem::exists(file())) << "reading alone moves nothing";
    EXPECT_TRUE(defaults.setString("id", "nord"));
    EXPECT_TRUE(defaults.setString("id", "ink"));
    EXPECT_EQ(JsonFileDefaults(file()).string("id"), "ink");
  }
  auto expected = damaged;
  std::ranges::sort(expected);
  EXPECT_EQ(setAside(), expected);
}

TEST_F(JsonFileDefaultsTest, AFailedWriteKeepsTheValueAndTheNextWriteBringsItToTheDisk) {
  const std::vector<std::pair<const char*, std::filesystem::path>> obstacles = {
      {"where the folder belongs", folder() / "state"},
      {"where the file belongs", file() / "occupied"},
  };
  for (const auto& [where, obstacle] : obstacles) {
    SCOPED_TRACE(where);
    std::filesystem::remove_all(folder() / "state");
    JsonFileDefaults defaults(file());
    std::filesystem::create_directories(obstacle.parent_path());
    std::ofstream(obstacle) << "in the way";
    const auto failed = defaults.setString("id", "nord");
    ASSERT_FALSE(failed);
    EXPECT_THAT(failed.error().message, testing::EndsWith("."));
    EXPECT_EQ(defaults.string("id"), "nord");
    EXPECT_FALSE(defaults.setString("id", "nord")) << "still not on the disk";

    std::filesystem::remove_all(folder() / "state");
    EXPECT_TRUE(defaults.setString("id", "nord"));
    EXPECT_EQ(JsonFileDefaults(file()).string("id"), "nord");
  }
}

TEST_F(JsonFileDefaultsTest, WithoutAFolderValuesLastForTheRun) {
  JsonFileDefaults defaults{std::filesystem::path()};
  EXPECT_FALSE(defaults.setString("id", "nord"));
  EXPECT_EQ(defaults.string("id"), "nord");
}

TEST_F(JsonFileDefaultsTest, WritingWhatIsThereTouchesNothing) {
  writeFile(R"({"id":"nord"})");
  JsonFileDefaults defaults(file());
  EXPECT_TRUE(defaults.setString("id", "nord"));
  EXPECT_EQ(std::filesystem::file_size(file()), 13U);
}

} // namespace
} // namespace notlet
