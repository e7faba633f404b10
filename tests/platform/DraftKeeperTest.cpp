#include "platform/DraftKeeper.h"

#include <gtest/gtest.h>

#include <QTest>
#include <fstream>

#include "support/FakeScheduler.h"
#include "support/NoThreads.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

namespace {

using namespace std::chrono_literals;

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class DraftKeeperTest : public testing::Test {
 protected:
  /// A new process that keeps its drafts in the same place.
  [[nodiscard]] std::unique_ptr<DraftKeeper> start() {
    return std::make_unique<DraftKeeper>(drafts, "main-window", scheduler);
  }

  TemporaryDirectory directory;
  std::filesystem::path drafts = directory.path() / "state" / "drafts";
  std::filesystem::path file = drafts / "main-window.txt";
  FakeScheduler scheduler;
};

} // namespace

TEST_F(DraftKeeperTest, BringsBackWhatWasTypedExactly) {
  const std::string text = "half a sentence \xC2\xA0\n #wo  ";
  start()->keep(text);
  EXPECT_EQ(start()->restore(), text);
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

// Steady typing must not push the writing ahead of itself.
TEST_F(DraftKeeperTest, IsOnDiskWithinASecondOfTheLastKeyAndDuringSteadyTyping) {
  const auto keeper = start();
  std::string text;
  for (int key = 0; key < 30; ++key) {
    text += 'x';
    keeper->keep(text);
    scheduler.advance(100ms);
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return contentsOf(file).size() >= 20; }));
  scheduler.advance(900ms);
  EXPECT_TRUE(QTest::qWaitFor([&] { return contentsOf(file) == text; }));
}

TEST_F(DraftKeeperTest, IsGoneOnceEmptied) {
  const auto keeper = start();
  keeper->keep("something");
  keeper->flush();
  ASSERT_TRUE(std::filesystem::exists(file));
  keeper->keep("");
  // Without any time passing: a saved text must not come back after a crash.
  EXPECT_TRUE(QTest::qWaitFor([&] { return !std::filesystem::exists(file); }));
  EXPECT_EQ(start()->restore(), "");
}

TEST_F(DraftKeeperTest, SetsAsideWhatItCannotReadAndNeverDeletesIt) {
  std::filesystem::create_directories(drafts);
  std::ofstream(file, std::ios::binary) << "caf\xE9";
  const auto keeper = start();
  const auto restored = keeper->restore();
  ASSERT_FALSE(restored);
  EXPECT_NE(restored.error().message.find("main-window.txt"), std::string::npos);
  keeper->keep("new text");
  keeper->flush();
  EXPECT_EQ(contentsOf(file), "new text");
  int kept = 0;
  for (const auto& entry : std::filesystem::directory_iterator(drafts))
    kept += contentsOf(entry.path()) == "caf\xE9" ? 1 : 0;
  EXPECT_EQ(kept, 1);
}

TEST_F(DraftKeeperTest, TriesAgainUntilTheDraftIsSafeAndSaysWhyItIsNot) {
  const auto obstruct = [&] { std::ofstream(drafts) << "a file where the directory should be"; };
  std::filesystem::create_directories(drafts.parent_path());
  obstruct();
  auto keeper = start();
  std::vector<std::string> reports;
  QObject::connect(keeper.get(), &DraftKeeper::reported,
                   [&](const std::string& reason) { reports.push_back(reason); });
  keeper->keep("text");
  scheduler.advance(1s);
  ASSERT_TRUE(QTest::qWaitFor([&] { return reports.size() == 1; }));
  EXPECT_NE(reports[0], "");
  std::filesystem::remove(drafts);
  scheduler.advance(5s);
  ASSERT_TRUE(QTest::qWaitFor([&] { return reports.size() == 2; }));
  EXPECT_EQ(reports[1], "");
  EXPECT_EQ(contentsOf(file), "text");
  EXPECT_TRUE(scheduler.isIdle());

  // An end does not wait for its turn, and a text that was emptied meanwhile does not come back.
  for (const std::string text : {"text at the end", ""}) {
    std::filesystem::remove_all(drafts);
    obstruct();
    keeper->keep("older text");
    keeper->keep(text);
    keeper->flush();
    EXPECT_EQ(keeper->isSafe(), text.empty());
    std::filesystem::remove(drafts);
    keeper.reset();
    EXPECT_EQ(contentsOf(file), text);
    keeper = start();
  }
}

TEST_F(DraftKeeperTest, WithoutAThreadItWritesAllTheSame) {
  const auto keeper = start();
  const NoThreads noThreads;
  for (const std::string text : {"one", "two"}) {
    keeper->keep(text);
    scheduler.advance(1s);
    EXPECT_EQ(contentsOf(file), text);
  }
}

TEST_F(DraftKeeperTest, WithoutADirectoryNothingIsKeptAndNothingFails) {
  DraftKeeper keeper(std::nullopt, "main-window", scheduler);
  keeper.keep("text");
  keeper.flush();
  EXPECT_FALSE(keeper.isSafe());
  EXPECT_EQ(keeper.restore(), "");
}

} // namespace notlet
