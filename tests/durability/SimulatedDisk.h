#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace notlet {

/// A disk in memory below SQLite, which keeps apart what was written and what was synced.
///
/// While it exists, every database that is opened lies on it. A power cut loses a random choice of the
/// 512-byte sectors that were written and of the shortenings that were made since the last sync, and new
/// files whose folder was not synced.
class SimulatedDisk {
 public:
  SimulatedDisk();
  SimulatedDisk(const SimulatedDisk&) = delete;
  SimulatedDisk& operator=(const SimulatedDisk&) = delete;
  ~SimulatedDisk();

  /// Puts a file of the real disk here, synced.
  void copyIn(const std::filesystem::path& path);
  /// What a sync only pretends to do.
  enum class Lie { None, AnySync, FolderSync };
  void setLie(Lie lie) { m_lie = lie; }

  /// Opens of new files, writes, shortenings and syncs since the last call of one of the following.
  [[nodiscard]] int operationCount() const { return m_operationCount; }
  void forgetFaults();
  /// From the n-th operation on nothing works any more.
  void cutPowerAt(int operation);
  [[nodiscard]] bool isOff() const { return m_isOff; }
  /// Loses what was not synced and works again. No file may be open.
  void restart(std::mt19937& random);

  enum class Fault {
    /// The operation reports an error and has done nothing; half of the bytes in case of a write.
    NotDone,
    /// The operation is done and reports an error nevertheless.
    Done,
    /// As NotDone, because the disk is full. Syncs do not fail.
    Full,
  };
  /// The n-th operation fails, once.
  void failAt(int operation, Fault fault);
  [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

 private:
  struct Change {
    std::size_t offset = 0;
    std::string bytes;
    bool shortens = false;
  };
  struct File {
    std::string current;
    std::string synced;
    std::vector<Change> unsynced;
    bool isInFolder = false;
  };
  struct Handle;
  struct Calls;
  enum class Verdict { Normal, Nothing, Half, AllTheSame };

  Verdict beginOperation(bool isSync);
  static void lose(File& file, std::mt19937& random, int chancePercent);

  std::map<std::string, std::shared_ptr<File>> m_files;
  std::unique_ptr<sqlite3_vfs> m_vfs;
  sqlite3_vfs* m_real = nullptr;
  Lie m_lie = Lie::None;
  bool m_isOff = false;
  bool m_hasFailed = false;
  int m_operationCount = 0;
  int m_powerCut = 0;
  int m_failing = 0;
  Fault m_fault = Fault::NotDone;
};

} // namespace notlet
