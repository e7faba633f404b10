#include "storage/NotletDatabase.h"

#include <fstream>
#include <set>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/DurableFile.h"
#include "storage/StoreFixture.h"

namespace notlet {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NotletDatabaseTest : public StoreFixture {
 protected:
  static std::string bytesOf(const fs::path& path) { return readWholeFile(path, 1U << 30).value().value(); }
  static void write(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  static mode_t modeOf(const fs::path& path) {
    struct stat status{};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  }
  /// Runs SQL of any kind, as a foreign program might.
  void meddle(const char* sql) const {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(store().c_str(), &handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
    sqlite3_close(handle);
  }
  /// What a program leaves behind that is killed while it saves.
  void cutShortASave() const {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(store().c_str(), &handle), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(handle,
                           "PRAGMA journal_mode=TRUNCATE; PRAGMA cache_size=1; BEGIN; UPDATE NotletEntry "
                           "SET content = hex(zeroblob(100000))",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    const std::string storeBytes = bytesOf(store());
    const std::string journalBytes = bytesOf(journal());
    sqlite3_close(handle);
    write(store(), storeBytes);
    write(journal(), journalBytes);
  }
  std::string refusal(Access access = Access::ReadWrite) const {
    const auto opened = NotletDatabase::open(store(), access);
    return opened ? "" : opened.error().message;
  }
  static ChangeSet upsert(const NotletEntry& entry) { return {.upserts = {&entry}, .deletions = {}}; }
};

TEST_F(NotletDatabaseTest, allFieldsComeBackExactly) {
  NotletEntry plain = notletAt(1);
  plain.keywords = {"Call", "Anna", "work"};
  NotletEntry odd =
      notletAt(2, "before\0after \xF0\x9F\x8E\x89\r\n\xE2\x80\xA8 \xC2\xA0 'quote\"; DROP TABLE"s);
  odd.updatedAt = odd.createdAt + std::chrono::microseconds(1);
  odd.hashtags = {};
  NotletEntry early = notletAt(0);
  early.createdAt = Timestamp(std::chrono::microseconds(-1));
  const NotletEntry large = notletAt(3, std::string(3'000'000, 'x'));
  storeElsewhere({plain, odd, early, large});
  const auto database = openStore();
  EXPECT_EQ(database->newest(10), (std::vector{large, odd, plain, early}));
  EXPECT_EQ(database->find(odd.id).value(), odd);
  EXPECT_EQ(database->find(Uuid::random()).value(), std::nullopt);
}

TEST_F(NotletDatabaseTest, pagesNeitherRepeatNorSkipEqualTimes) {
  std::vector<NotletEntry> entries;
  for (int number = 0; number < 50; ++number)
    entries.push_back(notletAt(number / 10, std::to_string(number)));
  storeElsewhere(entries);
  std::ranges::sort(entries, listedBefore);
  const auto database = openStore();
  std::vector<NotletEntry> read;
  std::optional<ListPosition> after;
  for (;;) {
    const auto page = database->newest(7, after);
    ASSERT_TRUE(page);
    if (page->empty())
      break;
    read.insert(read.end(), page->begin(), page->end());
    after = ListPosition{read.back().createdAt, read.back().id};
  }
  EXPECT_EQ(read, entries);
  EXPECT_FALSE(database->newest(50, {}, std::chrono::steady_clock::time_point::min())->empty())
      << "a slice makes headway however slow the machine";
}

TEST_F(NotletDatabaseTest, everyWriteGetsARevisionThatWasNeverUsed) {
  const auto database = openStore();
  NotletEntry first = notletAt(1);
  const NotletEntry second = notletAt(2);
  EXPECT_EQ(database->apply(upsert(first)), 0);
  EXPECT_EQ(database->apply(upsert(second)), 1);
  EXPECT_EQ(database->apply({.upserts = {}, .deletions = {second.id}}), 2);
  first.content = "changed";
  EXPECT_EQ(database->apply(upsert(first)), 2);
  EXPECT_EQ(database->lastRevision(), 3) << "not the number of the deleted row again";
  const auto changed = database->changedSince(2, 10);
  ASSERT_EQ(changed->size(), 1);
  EXPECT_EQ(changed->front().revision, 3);
  EXPECT_EQ(changed->front().entry, first);
  EXPECT_THAT(*database->changedSince(3, 10), IsEmpty());
  EXPECT_EQ(database->count(), 1);
}

TEST_F(NotletDatabaseTest, dataVersionTellsOtherWritersOnly) {
  const auto database = openStore();
  const auto before = database->dataVersion();
  ASSERT_TRUE(database->apply(upsert(notletAt(1))));
  EXPECT_EQ(database->dataVersion(), before);
  storeElsewhere({notletAt(2)});
  EXPECT_NE(database->dataVersion(), before);
}

TEST_F(NotletDatabaseTest, identifiersAreFoundByTheirBeginning) {
  std::vector<NotletEntry> entries;
  for (const char* text : {"0A000000-0000-4000-8000-000000000001", "0A0FFFFF-FFFF-4FFF-8FFF-FFFFFFFFFFFF",
                           "0A100000-0000-4000-8000-000000000003", "FF000000-0000-4000-8000-000000000004"}) {
    entries.push_back(notletAt(1));
    entries.back().id = Uuid::parse(text).value();
  }
  storeElsewhere(entries);
  const auto database = openStore();
  const auto found = [&](const char* prefix) {
    std::string indexes;
    const std::vector<Uuid> ids = database->idsBeginningWith(prefix).value();
    for (const Uuid& id : ids)
      indexes += std::to_string(std::ranges::find(entries, id, &NotletEntry::id) - entries.begin());
    return indexes;
  };
  for (const auto& [prefix, expected] : std::initializer_list<std::pair<const char*, const char*>>{
           {"0a0", "01"},
           {"0A", "012"},
           {"0a0fffff-ff", "1"},
           {"0a0fffffff", "1"},
           {"f", "3"},
           {"FF000000-0000-4000-8000-000000000004", "3"},
           {"FF000000-0000-4000-8000-0000000000045", ""},
           {"1", ""},
           {"0x", ""},
           {"", "0123"}})
    EXPECT_EQ(found(prefix), expected) << prefix;
  EXPECT_EQ(database->allIds()->size(), 4);
}

TEST_F(NotletDatabaseTest, filesArePrivateWhateverTheUmask) {
  for (const mode_t mask : {0000, 0777}) {
    const mode_t former = ::umask(mask);
    const fs::path file = folder() / std::to_string(mask) / "deep" / "Notlet.store";
    const auto database = NotletDatabase::open(file, Access::ReadWrite);
    ASSERT_TRUE(database) << database.error().message;
    ASSERT_TRUE((*database)->apply(upsert(notletAt(1))));
    ::umask(former);
    EXPECT_EQ(modeOf(file), 0600);
    EXPECT_EQ(modeOf(file.string() + "-journal"), 0600);
    EXPECT_EQ(modeOf(file.parent_path()), 0700);
    EXPECT_EQ(modeOf(file.parent_path().parent_path()), 0700);
    ::chmod(file.c_str(), 0644);
    ::chmod((file.string() + "-journal").c_str(), 0666);
    ASSERT_TRUE(NotletDatabase::open(file, Access::ReadWrite));
    EXPECT_EQ(modeOf(file), 0600);
    EXPECT_EQ(modeOf(file.string() + "-journal"), 0600);
  }
}

struct BadFile {
  const char* name;
  const char* reason;
  std::function<std::string(std::string healthy)> make;
};

TEST_F(NotletDatabaseTest, aFileThatIsNoHealthyStoreIsRefusedAndLeftAlone) {
  std::vector<NotletEntry> entries;
  for (int number = 0; number < 200; ++number)
    entries.push_back(notletAt(number, std::string(100, 'c')));
  storeElsewhere(entries);
  const std::string healthy = bytesOf(store());
  const auto changed = [](std::size_t offset, char value) {
    return [=](std::string bytes) {
      bytes[offset] = value;
      return bytes;
    };
  };
  const std::vector<BadFile> table = {
      {"empty", "is an empty file", [](auto) { return ""s; }},
      {"text", "file of another kind", [](auto) { return std::string(5000, 't'); }},
      {"short text", "file of another kind", [](auto) { return "hello"s; }},
      {"zeroes", "file of another kind", [](const auto& bytes) { return std::string(bytes.size(), '\0'); }},
      {"header only", "damaged", [](const auto& bytes) { return bytes.substr(0, 100); }},
      {"first page only", "damaged", [](const auto& bytes) { return bytes.substr(0, 4096); }},
      {"last page missing", "damaged",
       [](const auto& bytes) { return bytes.substr(0, bytes.size() - 4096); }},
      {"last byte missing", "damaged", [](const auto& bytes) { return bytes.substr(0, bytes.size() - 1); }},
      {"foreign application", "belongs to another program", changed(71, 'x')},
      {"newer format", "newer version", changed(63, 2)},
      {"write-ahead log", "does not write", changed(18, 2)},
      {"wild page type", "damaged", changed(100, 77)},
      {"page of zeroes", "damaged", [](std::string bytes) { return bytes.replace(8192, 4096, 4096, '\0'); }},
      {"page of noise", "damaged",
       [](std::string bytes) { return bytes.replace(12288, 4096, 4096, '\xA5'); }},
  };
  for (const BadFile& bad : table) {
    SCOPED_TRACE(bad.name);
    const std::string bytes = bad.make(healthy);
    write(store(), bytes);
    for (const Access access : {Access::ReadWrite, Access::ReadOnly}) {
      EXPECT_THAT(refusal(access), HasSubstr(store().string()));
      EXPECT_THAT(refusal(access), HasSubstr(bad.reason));
    }
    EXPECT_EQ(bytesOf(store()), bytes);
  }
  write(store(), healthy);
  EXPECT_EQ(refusal(), "");
}

TEST_F(NotletDatabaseTest, tablesOfAnotherKindAreRefused) {
  for (const char* sql :
       {"ALTER TABLE NotletEntry ADD COLUMN extra TEXT", "CREATE TABLE Other (a)",
        "DROP INDEX NotletEntryByCreation",
        "CREATE TRIGGER t AFTER INSERT ON NotletEntry BEGIN DELETE FROM NotletEntry; END"}) {
    fs::remove(store());
    std::ignore = openStore();
    meddle(sql);
    EXPECT_THAT(refusal(), HasSubstr("not those of notlets")) << sql;
  }
}

TEST_F(NotletDatabaseTest, aNotletThatAnIndexLeavesOutIsListed) {
  // While the index is out of sight, the table changes.
  const auto meddleBehind = [this](const std::string& index, const std::string& change) {
    meddle(
        ("PRAGMA writable_schema=ON; CREATE TEMP TABLE hidden AS SELECT * FROM sqlite_schema WHERE name = '" +
         index + "'; DELETE FROM sqlite_schema WHERE name = '" + index + "'; PRAGMA writable_schema=RESET; " +
         change + "; PRAGMA writable_schema=ON; INSERT INTO sqlite_schema SELECT * FROM hidden")
            .c_str());
  };
  const std::string oneMore = "INSERT INTO NotletEntry (id, content, createdAt, hashtags, keywords) VALUES "
                              "(randomblob(16), 'left out', 1, '', '')";
  for (const Access access : {Access::ReadOnly, Access::ReadWrite}) {
    fs::remove(store());
    storeElsewhere({notletAt(1)});
    meddleBehind("NotletEntryByCreation", oneMore);
    EXPECT_EQ(openStore(access)->newest(10)->size(), 2);
    EXPECT_EQ(openStore(access)->count(), 2);
    meddleBehind("NotletEntryByCreation", "DELETE FROM NotletEntry");
    EXPECT_THAT(refusal(access), HasSubstr("is damaged")) << "the notlets are gone from the table itself";
  }
}

TEST_F(NotletDatabaseTest, aForeignFilesJournalIsNotPlayedBack) {
  write(store(), "SQLite format 3\0"s + std::string(5000, 'f'));
  // The header of a hot journal for a database of one page.
  const std::string journalBytes = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7"s + std::string(8000, '\1');
  write(journal(), journalBytes);
  const std::string before = bytesOf(store());
  EXPECT_NE(refusal(), "");
  EXPECT_EQ(bytesOf(store()), before);
  EXPECT_EQ(bytesOf(journal()), journalBytes);
}

TEST_F(NotletDatabaseTest, whatIsNoFileIsRefused) {
  fs::create_directory(store());
  EXPECT_THAT(refusal(), HasSubstr("is a folder"));
  fs::remove(store());
  ASSERT_EQ(::mkfifo(store().c_str(), 0600), 0);
  EXPECT_THAT(refusal(), HasSubstr("not a regular file"));
  fs::remove(store());
  fs::create_symlink("nowhere", store());
  EXPECT_THAT(refusal(), HasSubstr("link to a file that does not exist"));
  fs::remove(store());
  const auto missing = NotletDatabase::open(store(), Access::ReadOnly);
  EXPECT_EQ(missing.error().kind, StoreError::Kind::Missing);
  EXPECT_FALSE(fs::exists(store())) << "reading creates nothing";
}

TEST_F(NotletDatabaseTest, missingPermissionsAreNamed) {
  storeElsewhere({notletAt(1)});
  // The super-user may do everything; what is asked here is an ordinary one.
  const fs::path shared = folder();
  const auto asNobody = [](const std::function<void()>& act) {
    const pid_t child = ::fork();
    if (child == 0) {
      if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
        ::_exit(2);
      act();
      ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status == 0;
  };
  ::chmod(shared.c_str(), 0755);
  ::chmod(store().c_str(), 0444);
  EXPECT_TRUE(asNobody([&] {
    EXPECT_THAT(refusal(), HasSubstr("read-only"));
    EXPECT_EQ(refusal(Access::ReadOnly), "");
  }));
  ::chmod(store().c_str(), 0666);
  ::chmod(shared.c_str(), 0555);
  EXPECT_TRUE(asNobody([&] { EXPECT_THAT(refusal(), HasSubstr("folder that is read-only")); }));
  ::chmod(store().c_str(), 0000);
  EXPECT_TRUE(asNobody([&] { EXPECT_THAT(refusal(Access::ReadOnly), HasSubstr("cannot be read")); }));
  ::chmod(shared.c_str(), 0700);
  ::chmod(store().c_str(), 0600);
  cutShortASave();
  ::chmod(shared.c_str(), 0555);
  for (const fs::path& file : {store(), journal()})
    ::chmod(file.c_str(), 0444);
  EXPECT_TRUE(asNobody([&] { EXPECT_THAT(refusal(Access::ReadOnly), HasSubstr("was cut short")); }));
  ::chmod(shared.c_str(), 0700);
  EXPECT_EQ(openStore(Access::ReadOnly)->newest(10)->front().content, "Call Anna");
}

TEST_F(NotletDatabaseTest, aStoreOpenedForReadingIsNotWritten) {
  storeElsewhere({notletAt(1)});
  const std::string before = bytesOf(store());
  const auto database = openStore(Access::ReadOnly);
  EXPECT_EQ(database->count(), 1);
  EXPECT_THAT(database->apply(upsert(notletAt(2))).error().message, HasSubstr("for reading only"));
  EXPECT_EQ(bytesOf(store()), before);
}

TEST_F(NotletDatabaseTest, aLockedStoreIsReportedSoon) {
  const auto database = openStore();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(store().c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  const auto start = std::chrono::steady_clock::now();
  const auto written = database->apply(upsert(notletAt(1)));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error().kind, StoreError::Kind::Busy);
  EXPECT_THAT(written.error().message, HasSubstr("in use by another program"));
  EXPECT_EQ(database->newest(1).error().kind, StoreError::Kind::Busy);
  sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
  // A reader, too, holds up the end of a save.
  ASSERT_EQ(sqlite3_exec(other, "BEGIN; SELECT * FROM NotletEntry", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_EQ(database->apply(upsert(notletAt(1))).error().kind, StoreError::Kind::Busy);
  sqlite3_close(other);
  EXPECT_EQ(database->count(), 0);
  EXPECT_TRUE(database->apply(upsert(notletAt(1))));
}

TEST_F(NotletDatabaseTest, aStoreThatIsNoLongerInPlaceIsNotWritten) {
  const fs::path away = folder() / "away";
  for (const char* event : {"moved", "replaced", "deleted"}) {
    SCOPED_TRACE(event);
    fs::remove(store());
    const auto database = openStore();
    ASSERT_TRUE(database->apply(upsert(notletAt(1))));
    if (event == "deleted"s)
      fs::remove(store());
    else
      fs::rename(store(), away);
    if (event == "replaced"s)
      std::ignore = openStore();
    const auto written = database->apply(upsert(notletAt(2)));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().kind, StoreError::Kind::Moved);
    EXPECT_THAT(written.error().message, HasSubstr("moved, replaced or deleted"));
    if (event == "replaced"s) {
      EXPECT_EQ(openStore()->count(), 0);
    } else {
      EXPECT_FALSE(fs::exists(store()));
    }
  }
}

TEST_F(NotletDatabaseTest, damageMetWhileReadingEndsAllWriting) {
  std::vector<NotletEntry> entries;
  for (int number = 0; number < 2000; ++number)
    entries.push_back(notletAt(number, std::string(1000, 'c')));
  storeElsewhere(entries);
  std::string bytes = bytesOf(store());
  ASSERT_GT(bytes.size(), 2U << 20) << "larger than what is checked as a whole on opening";
  bytes.replace(bytes.size() / 2, 200'000, 200'000, '\x5A');
  write(store(), bytes);
  const auto database = openStore();
  ASSERT_TRUE(database);
  const auto read = database->newest(5000);
  ASSERT_FALSE(read);
  EXPECT_EQ(read.error().kind, StoreError::Kind::Damaged);
  EXPECT_THAT(read.error().message, HasSubstr("damaged"));
  EXPECT_EQ(database->apply(upsert(notletAt(1))).error().kind, StoreError::Kind::Damaged);
  EXPECT_EQ(bytesOf(store()), bytes);
}

TEST_F(NotletDatabaseTest, processesThatCreateTheStoreAtOnceShareIt) {
  constexpr int processes = 8;
  std::vector<pid_t> children;
  for (int number = 0; number < processes; ++number) {
    children.push_back(::fork());
    if (children.back() != 0)
      continue;
    const auto database = NotletDatabase::open(store(), Access::ReadWrite);
    bool isStored = false;
    const NotletEntry entry = notletAt(number);
    for (int attempt = 0; database && !isStored && attempt < 40; ++attempt)
      isStored = (*database)->apply(upsert(entry)).has_value();
    ::_exit(isStored ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = 1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(openStore()->count(), processes);
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder()))
    names.insert(entry.path().filename());
  EXPECT_THAT(names, ElementsAre("Notlet.store", "Notlet.store-journal"));
}

} // namespace
} // namespace notlet
