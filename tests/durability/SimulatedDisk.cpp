#include "durability/SimulatedDisk.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>

namespace notlet {
namespace {

constexpr std::size_t sector = 512;

void put(std::string& contents, std::size_t offset, std::string_view bytes) {
  if (contents.size() < offset + bytes.size())
    contents.resize(offset + bytes.size(), '\0');
  contents.replace(offset, bytes.size(), bytes);
}

} // namespace

/// What SQLite knows as an open file.
struct SimulatedDisk::Handle : sqlite3_file {
  SimulatedDisk* disk = nullptr;
  std::shared_ptr<File> file;
};

/// The functions that SQLite calls.
struct SimulatedDisk::Calls {
  static Handle& handle(sqlite3_file* file) { return *static_cast<Handle*>(file); }
  static SimulatedDisk& disk(sqlite3_vfs* vfs) { return *static_cast<SimulatedDisk*>(vfs->pAppData); }

  static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* place, int flags, int* outFlags);
  static int remove(sqlite3_vfs* vfs, const char* name, int /*syncsFolder*/) {
    return disk(vfs).m_files.erase(name) > 0 ? SQLITE_OK : SQLITE_IOERR_DELETE_NOENT;
  }
  static int access(sqlite3_vfs* vfs, const char* name, int /*kind*/, int* result) {
    *result = disk(vfs).m_files.contains(name) ? 1 : 0;
    return SQLITE_OK;
  }
  static int fullPath(sqlite3_vfs* /*vfs*/, const char* name, int size, char* result) {
    sqlite3_snprintf(size, result, "%s", name);
    return SQLITE_OK;
  }
  static int randomness(sqlite3_vfs* vfs, int size, char* bytes) {
    return disk(vfs).m_real->xRandomness(disk(vfs).m_real, size, bytes);
  }
  static int sleep(sqlite3_vfs* /*vfs*/, int microseconds) { return microseconds; }
  static int currentTime(sqlite3_vfs* vfs, double* time) {
    return disk(vfs).m_real->xCurrentTime(disk(vfs).m_real, time);
  }

  static int close(sqlite3_file* file) {
    handle(file).~Handle();
    return SQLITE_OK;
  }
  static int read(sqlite3_file* file, void* buffer, int amount, sqlite3_int64 offset);
  static int write(sqlite3_file* file, const void* buffer, int amount, sqlite3_int64 offset);
  static int truncate(sqlite3_file* file, sqlite3_int64 size);
  static int sync(sqlite3_file* file, int flags);
  static int size(sqlite3_file* file, sqlite3_int64* result) {
    *result = static_cast<sqlite3_int64>(handle(file).file->current.size());
    return handle(file).disk->m_isOff ? SQLITE_IOERR_FSTAT : SQLITE_OK;
  }
  static int lock(sqlite3_file* /*file*/, int /*level*/) { return SQLITE_OK; }
  static int checkReservedLock(sqlite3_file* /*file*/, int* result) {
    *result = 0;
    return SQLITE_OK;
  }
  static int control(sqlite3_file* /*file*/, int /*operation*/, void* /*argument*/) {
    return SQLITE_NOTFOUND;
  }
  // As the real disk's.
  static int sectorSize(sqlite3_file* /*file*/) { return 4096; }
  static int characteristics(sqlite3_file* /*file*/) { return SQLITE_IOCAP_POWERSAFE_OVERWRITE; }
};

int SimulatedDisk::Calls::open(sqlite3_vfs* vfs, const char* name, sqlite3_file* place, int flags,
                               int* outFlags) {
  static const sqlite3_io_methods methods = {
      1,          close,           read, write, truncate, sync, size, lock, lock, checkReservedLock, control,
      sectorSize, characteristics, {},   {},    {},       {},   {},   {}};
  SimulatedDisk& disk = Calls::disk(vfs);
  place->pMethods = nullptr;
  std::shared_ptr<File> file;
  if (!name) {
    file = std::make_shared<File>();
  } else if (const auto found = disk.m_files.find(name); found != disk.m_files.end()) {
    file = found->second;
  } else if ((flags & SQLITE_OPEN_CREATE) == 0 || disk.beginOperation(false) != Verdict::Normal) {
    return SQLITE_CANTOPEN;
  } else {
    file = disk.m_files[name] = std::make_shared<File>();
  }
  auto* handle = new (place) Handle;
  handle->pMethods = &methods;
  handle->disk = &disk;
  handle->file = std::move(file);
  if (outFlags)
    *outFlags = flags;
  return SQLITE_OK;
}

int SimulatedDisk::Calls::read(sqlite3_file* file, void* buffer, int amount, sqlite3_int64 offset) {
  if (handle(file).disk->m_isOff)
    return SQLITE_IOERR_READ;
  const std::string& contents = handle(file).file->current;
  const auto start = std::min(static_cast<std::size_t>(offset), contents.size());
  const auto count = std::min(static_cast<std::size_t>(amount), contents.size() - start);
  std::memset(buffer, 0, static_cast<std::size_t>(amount));
  std::memcpy(buffer, contents.data() + start, count);
  return count == static_cast<std::size_t>(amount) ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
}

int SimulatedDisk::Calls::write(sqlite3_file* file, const void* buffer, int amount, sqlite3_int64 offset) {
  SimulatedDisk& disk = *handle(file).disk;
  std::string_view bytes(static_cast<const char*>(buffer), static_cast<std::size_t>(amount));
  const Verdict verdict = disk.beginOperation(false);
  if (verdict == Verdict::Half)
    bytes = bytes.substr(0, bytes.size() / 2);
  if (verdict != Verdict::Nothing) {
    put(handle(file).file->current, static_cast<std::size_t>(offset), bytes);
    handle(file).file->unsynced.push_back({static_cast<std::size_t>(offset), std::string(bytes), false});
  }
  if (verdict == Verdict::Normal)
    return SQLITE_OK;
  return disk.m_fault == Fault::Full ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}

int SimulatedDisk::Calls::truncate(sqlite3_file* file, sqlite3_int64 size) {
  const Verdict verdict = handle(file).disk->beginOperation(false);
  if (verdict == Verdict::Normal || verdict == Verdict::AllTheSame) {
    handle(file).file->current.resize(static_cast<std::size_t>(size), '\0');
    handle(file).file->unsynced.push_back({static_cast<std::size_t>(size), {}, true});
  }
  return verdict == Verdict::Normal ? SQLITE_OK : SQLITE_IOERR_TRUNCATE;
}

int SimulatedDisk::Calls::sync(sqlite3_file* file, int /*flags*/) {
  const Verdict verdict = handle(file).disk->beginOperation(true);
  if ((verdict == Verdict::Normal || verdict == Verdict::AllTheSame) &&
      handle(file).disk->m_lie != Lie::AnySync) {
    File& synced = *handle(file).file;
    synced.synced = synced.current;
    synced.unsynced.clear();
    // SQLite's own files sync the folder together with a new journal.
    synced.isInFolder = synced.isInFolder || handle(file).disk->m_lie == Lie::None;
  }
  return verdict == Verdict::Normal ? SQLITE_OK : SQLITE_IOERR_FSYNC;
}

SimulatedDisk::SimulatedDisk() : m_vfs(std::make_unique<sqlite3_vfs>()), m_real(sqlite3_vfs_find(nullptr)) {
  m_vfs->iVersion = 1;
  m_vfs->szOsFile = sizeof(Handle);
  m_vfs->mxPathname = m_real->mxPathname;
  m_vfs->zName = "simulated";
  m_vfs->pAppData = this;
  m_vfs->xOpen = Calls::open;
  m_vfs->xDelete = Calls::remove;
  m_vfs->xAccess = Calls::access;
  m_vfs->xFullPathname = Calls::fullPath;
  m_vfs->xRandomness = Calls::randomness;
  m_vfs->xSleep = Calls::sleep;
  m_vfs->xCurrentTime = Calls::currentTime;
  sqlite3_vfs_register(m_vfs.get(), 1);
}

SimulatedDisk::~SimulatedDisk() {
  sqlite3_vfs_unregister(m_vfs.get());
  sqlite3_vfs_register(m_real, 1);
}

void SimulatedDisk::copyIn(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  auto file = std::make_shared<File>();
  file->current.assign(std::istreambuf_iterator<char>(stream), {});
  file->synced = file->current;
  file->isInFolder = true;
  m_files[path.string()] = std::move(file);
}

void SimulatedDisk::forgetFaults() {
  m_operationCount = 0;
  m_powerCut = 0;
  m_failing = 0;
  m_hasFailed = false;
}

void SimulatedDisk::cutPowerAt(int operation) {
  forgetFaults();
  m_powerCut = operation;
}

void SimulatedDisk::failAt(int operation, Fault fault) {
  forgetFaults();
  m_failing = operation;
  m_fault = fault;
}

SimulatedDisk::Verdict SimulatedDisk::beginOperation(bool isSync) {
  if (m_isOff)
    return Verdict::Nothing;
  ++m_operationCount;
  if (m_operationCount == m_powerCut) {
    m_isOff = true;
    return Verdict::Nothing;
  }
  if (m_operationCount != m_failing || (isSync && m_fault == Fault::Full))
    return Verdict::Normal;
  m_hasFailed = true;
  return m_fault == Fault::Done ? Verdict::AllTheSame : Verdict::Half;
}

void SimulatedDisk::lose(File& file, std::mt19937& random, int chancePercent) {
  std::uniform_int_distribution<int> percent(0, 99);
  std::string survived = file.synced;
  for (const Change& change : file.unsynced) {
    if (change.shortens) {
      if (percent(random) >= chancePercent)
        survived.resize(change.offset, '\0');
      continue;
    }
    for (std::size_t done = 0; done < change.bytes.size();) {
      const std::size_t offset = change.offset + done;
      const std::size_t count = std::min(sector - offset % sector, change.bytes.size() - done);
      if (percent(random) >= chancePercent)
        put(survived, offset, std::string_view(change.bytes).substr(done, count));
      done += count;
    }
  }
  file.current = file.synced = survived;
  file.unsynced.clear();
}

void SimulatedDisk::restart(std::mt19937& random) {
  // Sometimes all is lost, sometimes nothing, mostly something.
  const int chancePercent = std::array{0, 10, 50, 50, 90, 100}[random() % 6];
  for (auto entry = m_files.begin(); entry != m_files.end();) {
    File& file = *entry->second;
    lose(file, random, chancePercent);
    const bool isLost = !file.isInFolder && static_cast<int>(random() % 100) < chancePercent;
    file.isInFolder = true;
    entry = isLost ? m_files.erase(entry) : std::next(entry);
  }
  m_isOff = false;
  forgetFaults();
}

} // namespace notlet
