#include "storage/StoreFile.h"

#include <array>
#include <cerrno>
#include <span>
#include <sqlite3.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace notlet {
namespace {

namespace fs = std::filesystem;
using Kind = StoreError::Kind;

std::unexpected<StoreError> refusal(const fs::path& file, const std::string& complaint,
                                    Kind kind = Kind::Other) {
  return std::unexpected(StoreError(kind, "The notlet store “" + file.string() + "” " + complaint + "."));
}

std::string reasonOf(int number) {
  return std::generic_category().message(number);
}

std::int32_t bigEndian(std::span<const unsigned char> bytes) {
  std::uint32_t value = 0;
  for (const unsigned char byte : bytes)
    value = (value << 8) | byte;
  return static_cast<std::int32_t>(value);
}

sqlite3_file* fileOf(const SqliteConnection& connection) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection.handle(), "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
  return file;
}

} // namespace

StoreResult<bool> storeFileExists(const fs::path& file, Access access) {
  struct stat status{};
  if (::stat(file.c_str(), &status) != 0) {
    if (errno != ENOENT)
      return refusal(file, "cannot be opened: " + reasonOf(errno), Kind::Unreachable);
    std::error_code ignored;
    if (fs::is_symlink(file, ignored))
      return refusal(file, "is a link to a file that does not exist");
    return false;
  }
  if (!S_ISREG(status.st_mode))
    return refusal(file, S_ISDIR(status.st_mode) ? "is a folder" : "is not a regular file");
  if (status.st_size == 0)
    return refusal(file, "is an empty file", Kind::Damaged);
  if (::access(file.c_str(), R_OK) != 0)
    return refusal(file, "cannot be read: " + reasonOf(errno));
  if (access == Access::ReadOnly)
    return true;
  if (::access(file.c_str(), W_OK) != 0)
    return refusal(file, "is read-only: " + reasonOf(errno));
  // Each save needs a journal beside the store.
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  if (::access(folder.c_str(), W_OK | X_OK) != 0)
    return refusal(file, "lies in a folder that is read-only: " + reasonOf(errno));
  return true;
}

StoreResult<std::int64_t> storeFileSize(const SqliteConnection& connection) {
  sqlite3_int64 size = 0;
  sqlite3_file* file = fileOf(connection);
  if (file->pMethods->xFileSize(file, &size) != SQLITE_OK)
    return refusal(connection.file(), "cannot be read");
  return size;
}

StoreResult<void> checkStoreHeader(const SqliteConnection& connection) {
  constexpr std::string_view magic("SQLite format 3\0", 16);
  constexpr std::size_t versions = 18;
  constexpr std::size_t userVersion = 60;
  constexpr std::size_t applicationId = 68;
  std::array<unsigned char, 100> header{};
  sqlite3_file* file = fileOf(connection);
  const int code = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
  if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ)
    return refusal(connection.file(), "cannot be read: " + std::string(sqlite3_errstr(code)));

  const std::span<const unsigned char> bytes(header);
  const std::string_view beginning(reinterpret_cast<const char*>(header.data()), magic.size());
  if (code == SQLITE_IOERR_SHORT_READ || beginning != magic)
    return refusal(connection.file(), "is damaged, or a file of another kind", Kind::Damaged);
  if (bigEndian(bytes.subspan(applicationId, 4)) != storeApplicationId)
    return refusal(connection.file(), "belongs to another program");
  if (bigEndian(bytes.subspan(userVersion, 4)) > storeFormat)
    return refusal(connection.file(), "was written by a newer version of this program");
  // A write-ahead log would be folded in on opening; this program never makes one.
  if (bytes[versions] != 1 || bytes[versions + 1] != 1)
    return refusal(connection.file(), "is in a form that this program does not write");
  return {};
}

StoreResult<void> makeStorePrivate(const fs::path& file) {
  // The journal lies beside the file itself, not beside a link to it.
  std::error_code ignored;
  const fs::path target = fs::weakly_canonical(file, ignored);
  for (const fs::path& path : {target, fs::path(target.string() + "-journal")}) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0)
      continue;
    if ((status.st_mode & 0777) != 0600 && ::chmod(path.c_str(), 0600) != 0)
      return refusal(path, "could not be made private: " + reasonOf(errno));
  }
  return {};
}

} // namespace notlet
