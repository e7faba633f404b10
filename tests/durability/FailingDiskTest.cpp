#include <gmock/gmock.h>
#include <sys/mount.h>

#include "durability/SimulatedDisk.h"
#include "storage/ModelContext.h"
#include "storage/StoreFixture.h"

namespace notlet {
namespace {

using Fault = SimulatedDisk::Fault;

/// One save, begun with two notlets in the store: inserts a third, edits the first and deletes the second.
class FailingDiskTest : public StoreFixture {
 protected:
  void SetUp() override {
    storeElsewhere({m_edited, m_deleted});
    m_changed.content = std::string(9000, 'c');
    m_changed.updatedAt = m_changed.createdAt + std::chrono::seconds(1);
  }

  std::vector<NotletEntry> before() const { return {m_deleted, m_edited}; }
  std::vector<NotletEntry> after() const { return {m_inserted, m_changed}; }

  void change(ModelContext& context) const {
    context.insert(m_inserted);
    context.replace(m_changed);
    context.remove(m_deleted.id);
  }
  static std::vector<NotletEntry> listed(const ModelContext& context) {
    std::vector<NotletEntry> entries;
    for (std::size_t index = 0; index < context.size(); ++index)
      entries.push_back(context.at(index));
    return entries;
  }
  static std::vector<NotletEntry> stored(const std::filesystem::path& file) {
    const auto database = NotletDatabase::open(file, Access::ReadWrite);
    EXPECT_TRUE(database) << database.error().message;
    auto entries = database ? (*database)->newest(100).value() : std::vector<NotletEntry>();
    for (NotletEntry& entry : entries)
      entry.keywords = keywordsBeyondText(entry);
    return entries;
  }
  std::vector<NotletEntry> stored() const { return stored(store()); }

  /// Lets the save's n-th operation fail; false when it has fewer.
  bool tryFailure(int operation, Fault fault, bool retries) {
    SimulatedDisk disk;
    disk.copyIn(store());
    auto context = std::make_unique<ModelContext>(openStore());
    change(*context);
    disk.failAt(operation, fault);
    const bool saved = context->save().has_value();
    const bool hasFailed = disk.hasFailed();
    disk.forgetFaults();
    m_reported += saved ? 0 : 1;
    m_recovered += saved && hasFailed ? 1 : 0;
    EXPECT_EQ(stored(), saved ? after() : before()) << "as another program finds it";
    EXPECT_EQ(listed(*context), after()) << "what was typed is still there";
    if (!saved && retries) {
      const Result<void> again = context->save();
      EXPECT_TRUE(again) << again.error().message;
    } else if (!saved) {
      context->rollback();
      EXPECT_EQ(listed(*context), before());
    }
    const bool isStored = saved || retries;
    EXPECT_EQ(stored(), isStored ? after() : before());
    EXPECT_EQ(listed(*context), stored());
    context.reset();
    // A save that was confirmed is proof against a power cut, however it came about.
    std::mt19937 random(static_cast<unsigned>(operation));
    disk.restart(random);
    EXPECT_EQ(stored(), isStored ? after() : before()) << "after a power cut";
    return hasFailed;
  }

  NotletEntry m_edited = notletAt(1, "edited");
  NotletEntry m_deleted = notletAt(2, "deleted");
  NotletEntry m_inserted = notletAt(3, std::string(20'000, 'i'));
  NotletEntry m_changed = m_edited;
  int m_reported = 0;
  int m_recovered = 0;
};

TEST_F(FailingDiskTest, eachFailingOperationIsReportedOrOvercome) {
  for (const Fault fault : {Fault::NotDone, Fault::Done, Fault::Full}) {
    for (const bool retries : {true, false}) {
      m_reported = m_recovered = 0;
      int operation = 1;
      while (tryFailure(operation, fault, retries) && !HasFailure())
        ++operation;
      SCOPED_TRACE(operation);
      EXPECT_GT(operation, 15) << "a save takes more operations than that";
      EXPECT_GT(m_reported, 5);
      if (fault == Fault::Done) {
        EXPECT_GE(m_recovered, 1) << "the commit whose last sync failed is in the store";
      }
    }
  }
}

TEST_F(FailingDiskTest, aFullDiskRefusesAndLosesNothing) {
  const std::filesystem::path mountPoint = folder() / "small";
  std::filesystem::create_directory(mountPoint);
  if (::mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=256k,mode=0700") != 0)
    GTEST_SKIP() << "no file system may be mounted here";
  {
    auto database = NotletDatabase::open(mountPoint / "Notlet.store", Access::ReadWrite);
    ASSERT_TRUE(database) << database.error().message;
    ModelContext context(std::move(*database));
    context.insert(m_edited);
    ASSERT_TRUE(context.save());
    context.insert(notletAt(9, std::string(400'000, 'x')));
    const Result<void> saved = context.save();
    ASSERT_FALSE(saved);
    EXPECT_THAT(saved.error().message, testing::HasSubstr("full"));
    EXPECT_EQ(context.size(), 2) << "what was typed is still there";
    context.rollback();
    context.insert(m_inserted);
    EXPECT_TRUE(context.save()) << "there is room for a smaller one";
    EXPECT_EQ(stored(mountPoint / "Notlet.store"), (std::vector{m_inserted, m_edited}));
  }
  ::umount(mountPoint.c_str());
}

} // namespace
} // namespace notlet
