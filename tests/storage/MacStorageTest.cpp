#include "storage/MacStorage.h"

#include <QSignalSpy>
#include <fstream>
#include <sqlite3.h>
#include <sys/stat.h>

#include "storage/StoreFixture.h"

namespace notlet {
namespace {

using testing::HasSubstr;

class MacStorageTest : public StoreFixture {};

TEST_F(MacStorageTest, exactlyOneOfContainerAndErrorIsThere) {
  const std::filesystem::path directory = folder() / "data" / "notlet";
  {
    const MacStorage storage(directory);
    ASSERT_TRUE(storage.container());
    EXPECT_FALSE(storage.errorDescription());
    storage.container()->mainContext().insert(notletAt(1));
    EXPECT_TRUE(storage.container()->mainContext().save());
    struct stat status{};
    ASSERT_EQ(::stat(directory.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700);
  }
  EXPECT_EQ(MacStorage(directory).container()->mainContext().size(), 1);

  std::ofstream(directory / "Notlet.store") << "something else";
  for (const auto& [place, reason] : {std::pair{std::optional(directory), "another kind"},
                                      std::pair{std::optional<std::filesystem::path>(), "does not exist"},
                                      std::pair{std::optional(directory / "Notlet.store"), "folder"}}) {
    const MacStorage storage(place);
    EXPECT_FALSE(storage.container());
    ASSERT_TRUE(storage.errorDescription());
    EXPECT_THAT(*storage.errorDescription(), HasSubstr(reason));
  }
}

TEST_F(MacStorageTest, aStoreInUseIsAwaitedForAWhileAndTakenWheneverItIsFree) {
  storeElsewhere({notletAt(1)});
  for (const bool isFreeSoon : {true, false}) {
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(store().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const MacStorage storage(folder());
    QSignalSpy changed(&storage, &MacStorage::changed);
    EXPECT_TRUE(storage.isAwaited());
    if (!isFreeSoon) {
      EXPECT_TRUE(changed.wait());
      EXPECT_FALSE(storage.isAwaited());
      EXPECT_FALSE(storage.container());
      EXPECT_THAT(storage.errorDescription().value(), HasSubstr("in use by another program. Notlet goes on"));
    }
    sqlite3_close(other);
    EXPECT_TRUE(changed.wait());
    EXPECT_FALSE(storage.isAwaited());
    EXPECT_FALSE(storage.errorDescription());
    EXPECT_EQ(storage.container()->mainContext().size(), 1);
  }
}

TEST_F(MacStorageTest, theSharedStorageIsOpenedOnce) {
  MacStorage::setSharedDirectory(folder());
  MacStorage& first = MacStorage::shared();
  ASSERT_TRUE(first.container());
  MacStorage::setSharedDirectory(std::nullopt);
  EXPECT_EQ(&MacStorage::shared(), &first);
  EXPECT_TRUE(MacStorage::shared().container());
}

TEST_F(MacStorageTest, makingAContainerHonoursWhatIsAsked) {
  const auto here = [this] { return std::optional(folder()); };
  const auto mirrored = SharedModelContainer::make(here, true, true);
  ASSERT_FALSE(mirrored);
  EXPECT_THAT(mirrored.error().message, HasSubstr("not available"));
  EXPECT_FALSE(std::filesystem::exists(store()));
  EXPECT_FALSE(SharedModelContainer::make(here, false, false)) << "there is no store to read yet";
  EXPECT_FALSE(std::filesystem::exists(store()));

  storeElsewhere({notletAt(1)});
  const auto reading = SharedModelContainer::make(here, false, false);
  ASSERT_TRUE(reading) << reading.error().message;
  ModelContext& context = (*reading)->mainContext();
  EXPECT_EQ(context.size(), 1);
  context.insert(notletAt(2));
  EXPECT_FALSE(context.save());
  context.rollback();
  EXPECT_EQ(context.size(), 1);
}

} // namespace
} // namespace notlet
