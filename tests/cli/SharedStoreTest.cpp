#include <gmock/gmock.h>

#include <set>
#include <thread>

#include "NotletProcess.h"
#include "storage/SqliteConnection.h"

namespace notlet {
namespace {

using ::testing::HasSubstr;

/// Several programs on one store.
class SharedStoreTest : public ::testing::Test {
 protected:
  [[nodiscard]] SqliteConnection holdStore() const {
    constexpr int readWrite = 2;
    StoreResult<SqliteConnection> connection = SqliteConnection::open(notlet.store(), readWrite);
    EXPECT_TRUE(connection && connection->execute("BEGIN EXCLUSIVE"));
    return std::move(*connection);
  }

  NotletProcess notlet;
};

TEST_F(SharedStoreTest, losesNothingWhenSeveralAddAtOnce) {
  constexpr int writers = 3;
  constexpr int notesEach = 12;
  std::vector<std::vector<std::string>> ids(writers);
  {
    std::vector<std::jthread> threads;
    for (std::vector<std::string>& own : ids)
      threads.emplace_back([this, &own] {
        for (int number = 0; number < notesEach; ++number)
          own.push_back(notlet.add("note " + std::to_string(number)));
      });
  }
  std::set<std::string> distinct;
  for (const std::vector<std::string>& own : ids)
    distinct.insert(own.begin(), own.end());
  EXPECT_EQ(distinct.size(), static_cast<std::size_t>(writers * notesEach));
  for (const std::string& id : distinct)
    EXPECT_THAT(notlet.succeed({"show", id}).output, ::testing::StartsWith("note "));
}

// A search goes through the store in portions of the numbers of its writes.
TEST_F(SharedStoreTest, findsWhatWasWrittenAfterAnyNumberOfOthers) {
  const std::string first = notlet.add("first #word");
  for (const char* count : {"60000", "9000000000000000000"}) {
    constexpr int readWrite = 2;
    auto connection = SqliteConnection::open(notlet.store(), readWrite);
    ASSERT_TRUE(connection->execute((std::string("UPDATE sqlite_sequence SET seq = ") + count).c_str()));
    connection = std::unexpected(StoreError(StoreError::Kind::Other, ""));
    static_cast<void>(notlet.add(std::string("written after ") + count + " #word"));
  }
  static_cast<void>(notlet.succeed({"edit", first, "edited last #word"}));
  for (const NotletProcess::Words& words : std::vector<NotletProcess::Words>{
           {"search", "word"}, {"list", "--tag", "word"}, {"search", "word", "--limit", "3"}}) {
    const std::vector<std::string> lines = notlet.succeed(words).lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_THAT(lines[0], HasSubstr("9000000000000000000"));
    EXPECT_THAT(lines[2], HasSubstr("edited last"));
  }
}

TEST_F(SharedStoreTest, waitsForAProgramThatIsWriting) {
  static_cast<void>(notlet.add("first"));
  std::optional<SqliteConnection> holder = holdStore();
  std::jthread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    holder.reset();
  });
  static_cast<void>(notlet.add("second"));
  EXPECT_EQ(notlet.succeed({"list"}).lines().size(), 2U);
}

TEST_F(SharedStoreTest, saysWhenAnotherProgramKeepsTheStore) {
  static_cast<void>(notlet.add("first"));
  {
    const SqliteConnection holder = holdStore();
    for (const NotletProcess::Words& words : std::vector<NotletProcess::Words>{{"add", "second"}, {"list"}}) {
      const Finished finished = notlet.run(words);
      EXPECT_EQ(finished.status, 1);
      EXPECT_EQ(finished.output, "");
      EXPECT_THAT(finished.errors, ::testing::StartsWith("notlet: "));
      EXPECT_THAT(finished.errors, HasSubstr("another program"));
    }
  }
  EXPECT_EQ(notlet.succeed({"list"}).lines().size(), 1U);
}

} // namespace
} // namespace notlet
