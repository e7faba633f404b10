#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <map>

#include "durability/SimulatedDisk.h"
#include "storage/StoreFixture.h"

namespace notlet {
namespace {

using Notlets = std::map<Uuid, NotletEntry>;

/// Saves, edits and deletes at random and remembers what the store has confirmed.
class Writer {
 public:
  explicit Writer(std::mt19937& random) : m_random(random) {}

  /// What the store must hold, and what it may hold instead because the last save was not answered.
  Notlets confirmed;
  Notlets attempted;

  /// Writes until the store fails.
  void writeUntilFailure(NotletDatabase& database) {
    do
      attempt(database);
    while (attempted == confirmed);
  }

 private:
  void attempt(NotletDatabase& database) {
    attempted = confirmed;
    ChangeSet changes;
    for (std::size_t remaining = 1 + m_random() % 3; remaining > 0; --remaining)
      change(changes);
    for (auto& [id, entry] : attempted) {
      const auto before = confirmed.find(id);
      if (before == confirmed.end() || before->second != entry)
        changes.upserts.push_back(&entry);
    }
    if (database.apply(changes))
      confirmed = attempted;
  }

  void change(ChangeSet& changes) {
    const std::size_t kind = m_random() % 10;
    if (attempted.size() < 5 || kind < 4) {
      NotletEntry entry = notletAt(++m_second, text());
      attempted.emplace(entry.id, entry);
      return;
    }
    const auto chosen =
        std::next(attempted.begin(), static_cast<std::ptrdiff_t>(m_random() % attempted.size()));
    if (kind < 7) {
      chosen->second.content = text();
    } else {
      changes.deletions.push_back(chosen->first);
      attempted.erase(chosen);
    }
  }

  std::string text() {
    // Mostly short; some fill pages of their own, a few are larger than SQLite's cache.
    const std::size_t kind = m_random() % 300;
    const std::size_t size = kind == 0 ? 3'000'000 : kind < 30 ? 20'000 : 10 + m_random() % 500;
    return std::string(size, static_cast<char>('a' + m_random() % 26));
  }

  std::mt19937& m_random;
  int m_second = 0;
};

struct Outcome {
  int losses = 0;
  int damages = 0;
};

class PowerCutTest : public StoreFixture {
 protected:
  static std::string integrity(const std::filesystem::path& store) {
    sqlite3* handle = nullptr;
    sqlite3_open(store.c_str(), &handle);
    std::string result = "no answer";
    const auto note = [](void* text, int, char** columns, char**) {
      *static_cast<std::string*>(text) = columns[0];
      return 0;
    };
    sqlite3_exec(handle, "PRAGMA integrity_check(1)", note, &result, nullptr);
    sqlite3_close(handle);
    return result;
  }

  /// What the store holds after the power has come back; nothing when it cannot be read.
  std::optional<Notlets> survivors(std::mt19937& random) const {
    const Access access = random() % 2 == 0 ? Access::ReadOnly : Access::ReadWrite;
    const auto database = NotletDatabase::open(store(), access);
    if (!database)
      return std::nullopt;
    const auto read = (*database)->newest(100'000);
    if (!read || integrity(store()) != "ok")
      return std::nullopt;
    Notlets notlets;
    for (const NotletEntry& entry : *read)
      notlets.emplace(entry.id, entry);
    return notlets;
  }

  /// The next start plays back the journal; that, too, may be cut short.
  void cutPowerDuringRecovery(SimulatedDisk& disk, std::mt19937& random) const {
    for (std::size_t cuts = random() % 3; cuts > 0; --cuts) {
      disk.cutPowerAt(1 + static_cast<int>(random() % 12));
      std::ignore = survivors(random);
      disk.restart(random);
    }
  }

  Outcome cutPower(int times, SimulatedDisk::Lie lie, unsigned seed) {
    std::mt19937 random(seed);
    std::ignore = openStore();
    SimulatedDisk disk;
    disk.copyIn(store());
    disk.setLie(lie);
    Writer writer(random);
    Outcome outcome;
    for (int cut = 0; cut < times; ++cut) {
      {
        const auto database = openStore();
        disk.cutPowerAt(1 + static_cast<int>(random() % 120));
        writer.writeUntilFailure(*database);
      }
      EXPECT_TRUE(disk.isOff()) << "the store failed while the power was on";
      disk.restart(random);
      cutPowerDuringRecovery(disk, random);
      const std::optional<Notlets> found = survivors(random);
      if (!found) {
        ++outcome.damages;
        return outcome;
      }
      if (*found != writer.confirmed && *found != writer.attempted)
        ++outcome.losses;
      writer.confirmed = *found;
    }
    return outcome;
  }
};

TEST_F(PowerCutTest, nothingConfirmedIsLostAndNothingDamaged) {
  for (const unsigned seed : {1U, 2U, 3U}) {
    SCOPED_TRACE(seed);
    const Outcome outcome = cutPower(200, SimulatedDisk::Lie::None, seed);
    EXPECT_EQ(outcome.losses, 0);
    EXPECT_EQ(outcome.damages, 0);
    std::filesystem::remove(store());
  }
}

TEST_F(PowerCutTest, lossesAreSeenOnADiskThatDoesNotSync) {
  int losses = 0;
  int damages = 0;
  for (unsigned seed = 1; seed <= 10; ++seed) {
    const Outcome outcome = cutPower(20, SimulatedDisk::Lie::AnySync, seed);
    losses += outcome.losses;
    damages += outcome.damages;
    std::filesystem::remove(store());
  }
  EXPECT_GT(losses, 0);
  EXPECT_GT(damages, 0);
}

TEST_F(PowerCutTest, theFirstSaveMakesSureOfItsJournal) {
  using Lie = SimulatedDisk::Lie;
  const auto harmed = [this](Lie lie) {
    int count = 0;
    for (unsigned seed = 1; seed <= 200; ++seed) {
      const Outcome outcome = cutPower(1, lie, seed);
      count += outcome.losses + outcome.damages;
      std::filesystem::remove(store());
    }
    return count;
  };
  EXPECT_EQ(harmed(Lie::None), 0);
  EXPECT_GT(harmed(Lie::FolderSync), 0) << "a disk that forgets new files does harm, and that is seen";
}

} // namespace
} // namespace notlet
