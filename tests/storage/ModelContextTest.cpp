#include "storage/ModelContext.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QSignalSpy>
#include <fstream>
#include <random>
#include <sqlite3.h>

#include "core/HashtagSuggestionService.h"
#include "storage/StoreFixture.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;
using Kind = ListChange::Kind;

/// A list kept by nothing but the announced changes; it must always agree with the context's.
class Mirror {
 public:
  explicit Mirror(ModelContext& context) : m_context(context) {
    for (std::size_t index = 0; index < context.size(); ++index)
      m_ids.push_back(context.at(index).id);
    QObject::connect(&context, &ModelContext::listChanged, &context,
                     [this](const ListChange& change) { take(change); });
  }

  int updates = 0;

 private:
  void take(const ListChange& change) {
    const auto first = m_ids.begin() + static_cast<std::ptrdiff_t>(change.first);
    if (change.kind == Kind::Removed)
      m_ids.erase(first, first + static_cast<std::ptrdiff_t>(change.count));
    else if (change.kind == Kind::Updated)
      ++updates;
    else
      insert(change);
    ASSERT_EQ(m_ids.size(), m_context.size());
    if (m_ids.size() < 2000) {
      for (std::size_t index = 0; index < m_ids.size(); ++index)
        ASSERT_EQ(m_ids[index], m_context.at(index).id);
    }
  }

  void insert(const ListChange& change) {
    ASSERT_LE(change.first, m_ids.size());
    for (std::size_t index = change.first; index < change.first + change.count; ++index)
      m_ids.insert(m_ids.begin() + static_cast<std::ptrdiff_t>(index), m_context.at(index).id);
    if (change.kind == Kind::Appended) {
      ASSERT_EQ(change.first + change.count, m_ids.size());
    }
  }

  ModelContext& m_context;
  std::vector<Uuid> m_ids;
};

class ModelContextTest : public StoreFixture {
 protected:
  std::unique_ptr<ModelContext> open() { return std::make_unique<ModelContext>(openStore()); }

  static bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds patience = 30s) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition() && std::chrono::steady_clock::now() < end)
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    return condition();
  }

  /// What the list should be: sorted newest first and the same as in the store.
  void expectAgreesWithStore(const ModelContext& context) {
    auto stored = openStore()->newest(1'000'000);
    ASSERT_TRUE(stored);
    ASSERT_EQ(context.size(), stored->size());
    for (std::size_t index = 0; index < stored->size(); ++index) {
      (*stored)[index].keywords = keywordsBeyondText((*stored)[index]);
      ASSERT_EQ(context.at(index), (*stored)[index]) << index;
      ASSERT_EQ(context.indexOf((*stored)[index].id), index);
    }
  }

  std::vector<NotletEntry> fill(int count) {
    std::vector<NotletEntry> entries;
    for (int number = 0; number < count; ++number)
      entries.push_back(notletAt(number, "Notlet " + std::to_string(number)));
    storeElsewhere(entries);
    return entries;
  }
};

TEST_F(ModelContextTest, savedChangesAreInTheStoreAndRolledBackOnesAreNot) {
  const NotletEntry old = notletAt(1, "old");
  const NotletEntry edited = notletAt(2, "edited");
  storeElsewhere({old, edited});
  const auto context = open();
  const Mirror mirror(*context);
  const NotletEntry fresh = notletAt(3, "fresh");
  NotletEntry changed = edited;
  changed.content = "changed";
  changed.hashtags = {"other"};
  const auto change = [&] {
    context->insert(fresh);
    context->replace(changed);
    context->remove(old.id);
    EXPECT_EQ(context->size(), 2);
    EXPECT_EQ(context->at(0), fresh);
    EXPECT_EQ(context->at(1), changed);
    EXPECT_EQ(context->find(old.id), nullptr);
  };
  const NotletEntry* address = context->find(edited.id);
  change();
  context->rollback();
  EXPECT_FALSE(context->hasUnsavedChanges());
  expectAgreesWithStore(*context);
  EXPECT_EQ(context->tallies().usedHashtags(), std::vector<std::string>{"work"});

  change();
  ASSERT_TRUE(context->save());
  expectAgreesWithStore(*context);
  EXPECT_EQ(context->find(edited.id), address) << "an edit must not move the notlet";
  EXPECT_EQ(openStore()->find(edited.id).value()->keywords, WordList{"changed"});
  context->rollback();
  expectAgreesWithStore(*context);
}

TEST_F(ModelContextTest, notletsTakeTheirPlaceByCreationWhateverTheOrderOfInsertion) {
  const auto context = open();
  const Mirror mirror(*context);
  std::vector<NotletEntry> entries;
  for (const int second : {5, 9, 1, 5, 7, 5, 0})
    entries.push_back(notletAt(second));
  for (const NotletEntry& entry : entries)
    context->insert(entry);
  std::ranges::sort(entries, listedBefore);
  for (std::size_t index = 0; index < entries.size(); ++index)
    EXPECT_EQ(context->at(index), entries[index]);
  // Inserting what is there already changes it, and never makes two of it.
  entries[3].content = "again";
  context->insert(entries[3]);
  EXPECT_EQ(context->size(), entries.size());
  ASSERT_TRUE(context->save());
  expectAgreesWithStore(*context);
}

TEST_F(ModelContextTest, anEditThatIsTakenBackLeavesNothingToSave) {
  const std::vector<NotletEntry> entries = fill(1);
  const auto context = open();
  NotletEntry edited = entries[0];
  edited.content = "edited";
  context->replace(edited);
  EXPECT_TRUE(context->hasUnsavedChanges());
  context->replace(entries[0]);
  EXPECT_FALSE(context->hasUnsavedChanges());
  context->insert(edited = notletAt(2));
  context->remove(edited.id);
  EXPECT_FALSE(context->hasUnsavedChanges());
  const auto before = std::filesystem::last_write_time(store());
  EXPECT_TRUE(context->save());
  EXPECT_EQ(std::filesystem::last_write_time(store()), before);
}

TEST_F(ModelContextTest, theNewestAreThereAtOnceAndTheRestFollows) {
  const std::vector<NotletEntry> entries = fill(5000);
  const auto context = open();
  EXPECT_EQ(context->size(), 200);
  EXPECT_EQ(context->at(0), entries.back());
  const NotletEntry* address = &context->at(150);
  const Mirror mirror(*context);
  const QSignalSpy finished(context.get(), &ModelContext::loadingFinished);
  context->setLoadingPaused(true);
  QCoreApplication::processEvents();
  EXPECT_EQ(context->size(), 200);
  context->setLoadingPaused(false);
  ASSERT_TRUE(waitFor([&] { return context->isComplete(); }));
  EXPECT_EQ(finished.count(), 1);
  EXPECT_EQ(&context->at(150), address);
  expectAgreesWithStore(*context);
  EXPECT_EQ(context->tallies().usedHashtags(), HashtagSuggestionService::usedHashtags(entries));
}

TEST_F(ModelContextTest, nothingWakesWhileNothingHappens) {
  fill(300);
  const auto context = open();
  ASSERT_TRUE(waitFor([&] { return context->isComplete(); }));
  context->insert(notletAt(1000));
  ASSERT_TRUE(context->save());
  QEventLoop loop;
  // The watch has its say about the save first.
  QTimer::singleShot(200ms, &loop, &QEventLoop::quit);
  loop.exec();
  int awakenings = 0;
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &loop,
                   [&] { ++awakenings; });
  QTimer::singleShot(300ms, &loop, &QEventLoop::quit);
  loop.exec();
  EXPECT_LE(awakenings, 3);
}

TEST_F(ModelContextTest, whatOthersWriteAppearsByItself) {
  const std::vector<NotletEntry> entries = fill(10);
  const auto context = open();
  const Mirror mirror(*context);
  NotletEntry edited = entries[3];
  edited.content = "edited elsewhere";
  storeElsewhere({notletAt(20), notletAt(-5), edited}, {entries[7].id});
  EXPECT_TRUE(waitFor([&] { return context->size() == 11 && !context->find(entries[7].id); }));
  EXPECT_EQ(mirror.updates, 1);
  expectAgreesWithStore(*context);
  // As many come as go.
  storeElsewhere({notletAt(30)}, {entries[2].id});
  EXPECT_TRUE(waitFor([&] { return !context->find(entries[2].id); }));
  expectAgreesWithStore(*context);
  std::vector<NotletEntry> many;
  for (int number = 0; number < 7000; ++number)
    many.push_back(notletAt(100 + number));
  storeElsewhere(many);
  EXPECT_TRUE(waitFor([&] { return context->size() == 7011; }));
  expectAgreesWithStore(*context);
  // The ends of the slices in which the list is compared are the places to go wrong.
  std::vector<Uuid> deletions;
  for (const std::size_t index : {0, 1998, 1999, 2000, 2001, 2002, 3999, 4000, 4001, 5000, 7010})
    deletions.push_back(context->at(index).id);
  storeElsewhere({}, deletions);
  EXPECT_TRUE(waitFor([&] { return context->size() == 7000; }));
  expectAgreesWithStore(*context);
}

TEST_F(ModelContextTest, unsavedChangesStandAgainstOthersUntilSavedOrUndone) {
  for (const bool saves : {true, false}) {
    std::filesystem::remove(store());
    std::filesystem::remove(journal());
    const std::vector<NotletEntry> entries = fill(4);
    const auto context = open();
    const Mirror mirror(*context);
    const auto with = [](NotletEntry entry, const char* content) {
      entry.content = content;
      return entry;
    };
    context->replace(with(entries[0], "ours"));
    context->replace(with(entries[1], "ours"));
    context->remove(entries[2].id);
    context->remove(entries[3].id);
    const NotletEntry signal = notletAt(9);
    storeElsewhere({with(entries[0], "theirs"), with(entries[2], "theirs"), signal},
                   {entries[1].id, entries[3].id});
    ASSERT_TRUE(waitFor([&] { return context->find(signal.id) != nullptr; }));
    EXPECT_EQ(context->find(entries[0].id)->content, "ours");
    EXPECT_EQ(context->find(entries[1].id)->content, "ours");
    EXPECT_EQ(context->size(), 3);
    if (saves) {
      ASSERT_TRUE(context->save());
    } else {
      context->rollback();
      EXPECT_EQ(context->find(entries[0].id)->content, "theirs");
      EXPECT_EQ(context->find(entries[2].id)->content, "theirs");
    }
    EXPECT_EQ(context->size(), 3);
    expectAgreesWithStore(*context);
  }
}

TEST_F(ModelContextTest, aLockedStoreIsReadWhenItIsFree) {
  fill(1000);
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(store().c_str(), &other), SQLITE_OK);
  auto database = openStore();
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  ModelContext context(std::move(database));
  const QSignalSpy failed(&context, &ModelContext::storeFailed);
  EXPECT_FALSE(waitFor([&] { return context.size() > 0; }, 150ms));
  context.insert(notletAt(5000));
  const Result<void> saved = context.save();
  ASSERT_FALSE(saved);
  EXPECT_THAT(saved.error().message, testing::HasSubstr("in use by another program"));
  sqlite3_close(other);
  EXPECT_TRUE(waitFor([&] { return context.isComplete(); }));
  EXPECT_TRUE(context.save());
  EXPECT_EQ(failed.count(), 0);
  expectAgreesWithStore(context);
}

TEST_F(ModelContextTest, aStoreThatCannotBeOpenedYetIsOpenedWhenItCan) {
  const auto expectOpensAfter = [&](const char* reason, const std::function<void()>& mend) {
    ModelContext context(store(), Access::ReadWrite);
    const QSignalSpy failed(&context, &ModelContext::storeFailed);
    context.insert(notletAt(5000));
    const Result<void> saved = context.save();
    ASSERT_FALSE(saved);
    EXPECT_THAT(saved.error().message, testing::HasSubstr(reason));
    EXPECT_EQ(context.obstacle()->message, saved.error().message);
    mend();
    EXPECT_TRUE(waitFor([&] { return context.isOpen() && context.isComplete(); }));
    EXPECT_EQ(failed.count(), 0);
    EXPECT_FALSE(context.obstacle());
    EXPECT_TRUE(context.save());
    expectAgreesWithStore(context);
  };
  fill(300);
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(store().c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  expectOpensAfter("in use by another program", [&] { sqlite3_close(other); });
  // As where a disk is still to be mounted.
  const std::filesystem::path place = folder();
  const std::filesystem::path away = place.string() + "-away";
  std::filesystem::rename(place, away);
  std::ofstream(place) << "in the way";
  expectOpensAfter("Not a directory", [&] {
    std::filesystem::remove(place);
    std::filesystem::rename(away, place);
  });
}

class ReplacedStoreTest : public ModelContextTest {
 protected:
  void SetUp() override {
    m_old = fill(300);
    std::filesystem::copy_file(store(), m_backup);
    storeElsewhere({m_late}, {m_old[5].id});
    m_context = open();
    ASSERT_TRUE(waitFor([&] { return m_context->isComplete(); }));
  }

  const std::filesystem::path m_backup = folder() / "backup";
  const NotletEntry m_late = notletAt(900);
  std::vector<NotletEntry> m_old;
  std::unique_ptr<ModelContext> m_context;
};

TEST_F(ReplacedStoreTest, theListBecomesWhatIsThereNow) {
  namespace fs = std::filesystem;
  const Mirror mirror(*m_context);
  NotletEntry edited = m_old[7];
  edited.content = "not saved yet";
  m_context->replace(edited);
  const auto putAside = [&](const fs::path& what) { fs::rename(what, folder().string() + "-aside"); };
  for (const auto& [name, restore] : std::initializer_list<std::pair<const char*, std::function<void()>>>{
           {"by another file",
            [&] { fs::copy_file(m_backup, folder() / "new"), fs::rename(folder() / "new", store()); }},
           {"in place", [&] { fs::copy_file(m_backup, store(), fs::copy_options::overwrite_existing); }},
           {"after a while",
            [&] {
              fs::remove(store());
              waitFor([] { return false; }, 100ms);
              fs::copy_file(m_backup, store());
            }},
           {"with its folder", [&] {
              putAside(folder());
              fs::create_directory(folder());
              fs::rename(folder().string() + "-aside/backup", store());
              fs::remove_all(folder().string() + "-aside");
            }}}) {
    SCOPED_TRACE(name);
    restore();
    // A folder is not seen to change place; the next save finds out.
    const bool isSeen = name != std::string("with its folder");
    EXPECT_TRUE(isSeen || m_context->save());
    EXPECT_TRUE(waitFor([&] { return m_context->find(m_old[5].id) && !m_context->find(m_late.id); }));
    EXPECT_EQ(*m_context->find(edited.id), edited);
    EXPECT_TRUE(m_context->save());
    expectAgreesWithStore(*m_context);
    EXPECT_EQ(m_context->size(), 300);
    storeElsewhere({m_late}, {m_old[5].id});
    EXPECT_TRUE(waitFor([&] { return m_context->find(m_late.id) && !m_context->find(m_old[5].id); }));
    edited.content = name;
    m_context->replace(edited);
  }
}

TEST_F(ReplacedStoreTest, savingGoesIntoTheNewStoreAndNeverMakesOne) {
  const NotletEntry typed = notletAt(1000, "typed");
  m_context->insert(typed);
  std::filesystem::remove(store());
  for (const char* reason : {"is no longer there. Put it back", "another kind"}) {
    const Result<void> saved = m_context->save();
    ASSERT_FALSE(saved);
    EXPECT_THAT(saved.error().message, testing::HasSubstr(store().string()));
    EXPECT_THAT(saved.error().message, testing::HasSubstr(reason));
    EXPECT_EQ(std::filesystem::exists(store()), reason == std::string("another kind"));
    EXPECT_EQ(m_context->at(0), typed);
    EXPECT_EQ(m_context->size(), 301);
    std::ofstream(store()) << "something of another kind";
  }
  std::filesystem::rename(m_backup, store());
  const Result<void> saved = m_context->save();
  EXPECT_TRUE(saved) << saved.error().message;
  EXPECT_TRUE(openStore()->find(typed.id).value());
  EXPECT_TRUE(waitFor([&] { return !m_context->find(m_late.id); }));
  expectAgreesWithStore(*m_context);
}

TEST_F(ModelContextTest, damageMetLaterIsToldAndEndsSaving) {
  std::vector<NotletEntry> entries;
  for (int number = 0; number < 3000; ++number)
    entries.push_back(notletAt(number, std::string(1000, 'c')));
  storeElsewhere(entries);
  {
    std::fstream file(store(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(1'000'000);
    file << std::string(300'000, 'Z');
  }
  const auto context = open();
  const QSignalSpy failed(context.get(), &ModelContext::storeFailed);
  ASSERT_TRUE(waitFor([&] { return failed.count() > 0; }));
  EXPECT_THAT(failed[0][0].toString().toStdString(), testing::HasSubstr("damaged"));
  EXPECT_GE(context->size(), 200);
  EXPECT_FALSE(context->isComplete());
  context->insert(notletAt(5000, "typed"));
  EXPECT_FALSE(context->save());
  EXPECT_EQ(context->at(0).content, "typed");
  std::filesystem::remove(store());
  storeElsewhere({notletAt(1)});
  EXPECT_TRUE(context->save()) << "with a healthy one in its place";
  EXPECT_TRUE(waitFor([&] { return context->isComplete() && context->size() == 2; }));
  expectAgreesWithStore(*context);
}

/// Changes here and elsewhere in any order, from the first moments of loading on.
class RandomChanges {
 public:
  RandomChanges(ModelContext& context, NotletDatabase& elsewhere, unsigned seed)
      : m_context(context), m_elsewhere(elsewhere), m_random(seed) {}

  void step() {
    switch (m_random() % 12) {
    case 0:
    case 1:
      return m_context.insert(anyNotlet());
    case 2:
      if (const NotletEntry* entry = anyListed())
        m_context.replace(edited(*entry));
      return;
    case 3:
      if (const NotletEntry* entry = anyListed())
        m_context.remove(entry->id);
      return;
    case 4:
      EXPECT_TRUE(m_context.save());
      return;
    case 5:
      return m_context.rollback();
    case 6:
    case 7:
      return writeElsewhere();
    default:
      QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
  }

 private:
  NotletEntry anyNotlet() {
    NotletEntry entry = notletAt(static_cast<int>(m_random() % 4000) - 500, "new");
    if (m_random() % 2 == 0)
      entry.hashtags = {"tag" + std::to_string(m_random() % 5)};
    return entry;
  }
  const NotletEntry* anyListed() {
    return m_context.size() == 0 ? nullptr : &m_context.at(m_random() % m_context.size());
  }
  NotletEntry edited(NotletEntry entry) {
    entry.content = "edit " + std::to_string(m_random());
    entry.hashtags = {"tag" + std::to_string(m_random() % 5)};
    return entry;
  }
  void writeElsewhere() {
    const std::vector<Uuid> ids = m_elsewhere.allIds().value();
    std::vector<NotletEntry> entries{anyNotlet()};
    ChangeSet changes;
    if (!ids.empty()) {
      if (const auto stored = m_elsewhere.find(ids[m_random() % ids.size()]).value())
        entries.push_back(edited(*stored));
      changes.deletions.push_back(ids[m_random() % ids.size()]);
    }
    for (const NotletEntry& entry : entries)
      changes.upserts.push_back(&entry);
    EXPECT_TRUE(m_elsewhere.apply(changes));
  }

  ModelContext& m_context;
  NotletDatabase& m_elsewhere;
  std::mt19937 m_random;
};

TEST_F(ModelContextTest, listAndStoreAgreeAfterAnyChangesHereAndElsewhere) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(seed);
    std::filesystem::remove(store());
    std::filesystem::remove(journal());
    fill(seed % 2 == 0 ? 3000 : 20);
    const auto context = open();
    const Mirror mirror(*context);
    const auto elsewhere = openStore();
    RandomChanges changes(*context, *elsewhere, seed);
    for (int step = 0; step < 250 && !HasFailure(); ++step)
      changes.step();
    if (seed % 3 == 0)
      context->rollback();
    EXPECT_TRUE(context->save());
    const auto agrees = [&] {
      return context->isComplete() && context->size() == elsewhere->count().value();
    };
    EXPECT_TRUE(waitFor(agrees));
    // The last change elsewhere may have been an edit, which no number tells.
    waitFor([] { return false; }, 60ms);
    expectAgreesWithStore(*context);
    const std::vector<NotletEntry> stored = elsewhere->newest(100'000).value();
    EXPECT_EQ(context->tallies().usedHashtags(), HashtagSuggestionService::usedHashtags(stored));
  }
}

} // namespace
} // namespace notlet
