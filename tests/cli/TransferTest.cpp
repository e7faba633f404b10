#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "NotletProcess.h"
#include "RandomNotlets.h"
#include "storage/NotletDatabase.h"

namespace notlet {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class TransferTest : public ::testing::Test {
 protected:
  static void store(const NotletProcess& process, const std::vector<NotletEntry>& notlets) {
    const auto database = NotletDatabase::open(process.store(), Access::ReadWrite);
    ASSERT_TRUE(database) << database.error().message;
    ChangeSet changes;
    for (const NotletEntry& notlet : notlets)
      changes.upserts.push_back(&notlet);
    ASSERT_TRUE((*database)->apply(changes));
  }
  static std::vector<NotletEntry> stored(const NotletProcess& process) {
    const auto database = NotletDatabase::open(process.store(), Access::ReadOnly);
    return (*database)->newest(100'000).value();
  }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
      result.push_back(entry.path().filename().string());
    return result;
  }

  TemporaryDirectory folder;
  std::filesystem::path file = folder.path() / "archive.json";
  NotletProcess here;
  NotletProcess there;
};

TEST_F(TransferTest, carriesEveryByteToAnotherStore) {
  store(here, randomNotlets(400, 3));
  EXPECT_EQ(here.succeed({"export", file.string()}).output, "");
  EXPECT_EQ(here.succeed({"export"}).output, fileContents(file));
  EXPECT_EQ(there.succeed({"import", file.string()}).output, "Imported 400, skipped 0.\n");
  EXPECT_EQ(stored(there), stored(here));
  EXPECT_EQ(there.succeed({"export", "--format", "json"}).output, fileContents(file));
  EXPECT_EQ(names(), std::vector<std::string>{"archive.json"});
  for (const NotletEntry& notlet : randomNotlets(5, 4)) {
    store(there, {notlet});
    EXPECT_EQ(there.succeed({"show", notlet.id.text()}).output, notlet.content.str() + "\n");
  }
}

TEST_F(TransferTest, importsOnceAndLeavesWhatIsThere) {
  const std::string id = here.add("original #a");
  static_cast<void>(here.add("other"));
  static_cast<void>(here.succeed({"export", file.string()}));
  static_cast<void>(here.succeed({"edit", id, "edited since"}));
  EXPECT_EQ(here.succeed({"import", file.string()}).output, "Imported 0, skipped 2.\n");
  EXPECT_EQ(here.succeed({"show", id}).output, "edited since\n");

  json doubled = json::parse(fileContents(file));
  json namesake = doubled.front();
  namesake["content"] = "of the same id";
  doubled.push_back(namesake);
  EXPECT_EQ(there.succeed({"import", "-"}, doubled.dump()).output, "Imported 2, skipped 1.\n");
  EXPECT_EQ(there.succeed({"export"}).output, fileContents(file));
}

TEST_F(TransferTest, importsNothingOfABadFile) {
  static_cast<void>(here.add("good"));
  json bad = json::parse(here.succeed({"export"}).output);
  bad.push_back({{"id", "x"}, {"content", "bad"}, {"createdAt", "2026-01-01T00:00:00Z"}});
  writeFile(file, bad.dump());
  const Finished refused = there.run({"import", file.string()});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.errors, ::testing::StartsWith("notlet: “" + file.string() + "”"));
  EXPECT_THAT(refused.errors, HasSubstr("line 1, column "));
  EXPECT_EQ(there.succeed({"list"}).output, "");
  for (const std::string& absent : {folder.path().string(), (folder.path() / "absent").string()}) {
    const Finished failed = there.run({"import", absent});
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.errors, HasSubstr(absent));
  }
}

TEST_F(TransferTest, exportsASelection) {
  for (const char* text : {"one #a", "two #b", "three #a"})
    static_cast<void>(here.add(text));
  EXPECT_EQ(json::parse(here.succeed({"export", "--tag", "a"}).output).size(), 2U);
  EXPECT_EQ(json::parse(here.succeed({"export", "--tag", "a", "--limit", "1"}).output)[0]["content"],
            "three #a");
  EXPECT_EQ(here.succeed({"export", "--tag", "none"}).output, "[]\n");
  EXPECT_THAT(here.succeed({"export", "--format", "markdown", "--limit", "1"}).output,
              ::testing::MatchesRegex("## [^\n]*\n\nthree #a\n\n"));
}

TEST_F(TransferTest, replacesAFileWholeOrNotAtAll) {
  store(here, randomNotlets(100, 5));
  writeFile(file, "the former contents");
  writeFile(folder.path() / ".notlet-export-0123456789abcdef", "what a killed export left");
  // More than the process may write.
  const std::string limited = "ulimit -f 8; exec \"$0\" export \"$1\"";
  NotletProcess shell;
  shell.program = "/bin/sh";
  shell.environment["HOME"] = here.home().string();
  const Finished failed = shell.run({"-c", limited, NOTLET_PROGRAM, file.string()});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.errors, HasSubstr(file.string() + "” could not be written: File too large"));
  EXPECT_EQ(fileContents(file), "the former contents");
  EXPECT_EQ(names(), std::vector<std::string>{"archive.json"});

  static_cast<void>(here.succeed({"export", file.string()}));
  EXPECT_EQ(fileContents(file), here.succeed({"export"}).output);
  struct stat status{};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(TransferTest, writesThroughLinksAndIntoDevices) {
  static_cast<void>(here.add("text"));
  const std::filesystem::path link = folder.path() / "link";
  writeFile(file, "old");
  std::filesystem::create_symlink("archive.json", link);
  static_cast<void>(here.succeed({"export", link.string()}));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(fileContents(file), here.succeed({"export"}).output);
  EXPECT_EQ(here.succeed({"export", "/dev/stdout"}).output, fileContents(file));
  for (const std::string& place :
       {std::string("/dev/full"), folder.path().string(), (folder.path() / "absent/file").string()}) {
    const Finished failed = here.run({"export", place});
    EXPECT_EQ(failed.status, 1) << place;
    EXPECT_THAT(failed.errors, HasSubstr(place + "” could not be written"));
  }
}

} // namespace
} // namespace notlet
