#include "platform/DurableFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace notlet {
namespace {

namespace fs = std::filesystem;

std::unexpected<Error> fileFailure(const fs::path& file, std::string_view complaint, int reason) {
  std::string message = "“" + file.string() + "” ";
  message.append(complaint).append(": ").append(std::generic_category().message(reason)).append(".");
  return failure(std::move(message));
}

std::unexpected<Error> writeFailure(const fs::path& file, int reason) {
  return fileFailure(file, "could not be written", reason);
}

/// Where the symbolic links lead, whether or not there is a file at their end.
fs::path linkTarget(fs::path file) {
  constexpr int mostLinks = 40;
  std::error_code ignored;
  for (int followed = 0; followed < mostLinks && fs::is_symlink(file, ignored); ++followed)
    file = file.parent_path() / fs::read_symlink(file, ignored);
  return file;
}

fs::path directoryOf(const fs::path& file) {
  return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// The name does not grow with the file's, which may be as long as names can be.
fs::path unusedNameBeside(const fs::path& file, std::string_view purpose) {
  std::random_device device;
  std::string name = ".notlet-" + std::string(purpose) + "-";
  for (int digit = 0; digit < 16; ++digit)
    name.push_back("0123456789abcdef"[device() % 16]);
  return directoryOf(file) / name;
}

/// A name in the file system that goes away with this object, unless it was given away.
class ScopedName {
 public:
  explicit ScopedName(fs::path path) : m_path(std::move(path)) {}
  ScopedName(const ScopedName&) = delete;
  ScopedName& operator=(const ScopedName&) = delete;
  ~ScopedName() {
    if (m_exists)
      ::unlink(m_path.c_str());
  }

  [[nodiscard]] const char* text() const { return m_path.c_str(); }
  [[nodiscard]] bool exists() const { return m_exists; }
  void setExists(bool exists) { m_exists = exists; }

 private:
  fs::path m_path;
  bool m_exists = false;
};

/// An open file that is closed with this object.
class Descriptor {
 public:
  Descriptor(FileCalls& calls, const char* path, int flags, mode_t mode = 0)
      : m_calls(calls), m_number(calls.open(path, flags | O_CLOEXEC, mode)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (m_number >= 0)
      m_calls.close(m_number);
  }

  [[nodiscard]] bool isOpen() const { return m_number >= 0; }
  [[nodiscard]] int number() const { return m_number; }
  /// Network and quota file systems report a failed write no earlier than here.
  [[nodiscard]] bool close() { return m_calls.close(std::exchange(m_number, -1)) == 0; }

 private:
  FileCalls& m_calls;
  int m_number;
};

bool writeAll(FileCalls& calls, int descriptor, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t written = calls.write(descriptor, contents.data(), contents.size());
    if (written < 0 && errno == EINTR)
      continue;
    if (written <= 0) {
      errno = written == 0 ? ENOSPC : errno;
      return false;
    }
    contents.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// Some file systems cannot sync a directory and say so; there is nothing more to be had from them.
bool syncDirectory(FileCalls& calls, const Descriptor& directory) {
  return calls.sync(directory.number()) == 0 || errno == EINVAL || errno == ENOTSUP;
}

/// The new contents, safely on disk under a name of their own.
Result<void> writeTemporary(ScopedName& temporary, std::string_view contents, mode_t mode,
                            const fs::path& file, FileCalls& calls) {
  Descriptor descriptor(calls, temporary.text(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
  if (!descriptor.isOpen())
    return writeFailure(file, errno);
  temporary.setExists(true);
  if (calls.setMode(descriptor.number(), mode) != 0 || !writeAll(calls, descriptor.number(), contents) ||
      calls.sync(descriptor.number()) != 0 || !descriptor.close())
    return writeFailure(file, errno);
  return {};
}

Descriptor openDirectory(FileCalls& calls, const fs::path& directory) {
  return {calls, directory.c_str(), O_RDONLY | O_DIRECTORY};
}

/// Everything up to one byte above the limit, or the reason why it cannot be read.
std::expected<std::string, int> readAll(int descriptor, std::size_t limit) {
  constexpr std::size_t portion = 64 << 10;
  std::string contents;
  std::size_t filled = 0;
  while (filled <= limit) {
    contents.resize(filled + std::min(portion, limit - filled + 1));
    const ssize_t count = ::read(descriptor, contents.data() + filled, contents.size() - filled);
    if (count < 0 && errno == EINTR)
      continue;
    if (count < 0)
      return std::unexpected(errno);
    if (count == 0)
      break;
    filled += static_cast<std::size_t>(count);
  }
  contents.resize(filled);
  return contents;
}

} // namespace

Result<void> writeDurably(const fs::path& file, std::string_view contents, mode_t mode, FileCalls& calls) {
  const fs::path target = linkTarget(file);
  ScopedName temporary(unusedNameBeside(target, "new"));
  ScopedName former(unusedNameBeside(target, "old"));
  const Descriptor directory = openDirectory(calls, directoryOf(target));
  if (!directory.isOpen())
    return writeFailure(file, errno);
  if (Result<void> written = writeTemporary(temporary, contents, mode, file, calls); !written)
    return written;

  // A second name keeps the old contents at hand until the new ones are known to last.
  former.setExists(calls.link(target.c_str(), former.text()) == 0);
  const bool replacesFile = former.exists() || errno != ENOENT;
  if (calls.rename(temporary.text(), target.c_str()) != 0)
    return writeFailure(file, errno);
  temporary.setExists(false);
  if (syncDirectory(calls, directory))
    return {};

  const int reason = errno;
  if (former.exists())
    former.setExists(std::rename(former.text(), target.c_str()) != 0);
  else if (!replacesFile)
    ::unlink(target.c_str());
  return writeFailure(file, reason);
}

Result<bool> createDurably(const fs::path& file, std::string_view contents, mode_t mode, FileCalls& calls) {
  ScopedName temporary(unusedNameBeside(file, "new"));
  const Descriptor directory = openDirectory(calls, directoryOf(file));
  if (!directory.isOpen())
    return writeFailure(file, errno);
  if (Result<void> written = writeTemporary(temporary, contents, mode, file, calls); !written)
    return std::unexpected(written.error());
  if (calls.link(temporary.text(), file.c_str()) != 0) {
    if (errno == EEXIST)
      return false;
    return writeFailure(file, errno);
  }
  if (!syncDirectory(calls, directory)) {
    const int reason = errno;
    ::unlink(file.c_str());
    return writeFailure(file, reason);
  }
  return true;
}

Result<std::optional<std::string>> readWholeFile(const fs::path& file, std::size_t limit) {
  // Without O_NONBLOCK a named pipe would be waited for.
  const Descriptor descriptor(FileCalls::system(), file.c_str(), O_RDONLY | O_NONBLOCK);
  if (!descriptor.isOpen()) {
    if (errno == ENOENT || errno == ENOTDIR)
      return std::nullopt;
    return fileFailure(file, "could not be read", errno);
  }
  struct stat status{};
  if (::fstat(descriptor.number(), &status) != 0)
    return fileFailure(file, "could not be read", errno);
  if (S_ISDIR(status.st_mode))
    return fileFailure(file, "could not be read", EISDIR);
  if (!S_ISREG(status.st_mode))
    return failure("“" + file.string() + "” could not be read: It is not a regular file.");
  std::expected<std::string, int> contents = readAll(descriptor.number(), limit);
  if (!contents)
    return fileFailure(file, "could not be read", contents.error());
  if (contents->size() > limit)
    return failure("“" + file.string() + "” could not be read: It is larger than " + std::to_string(limit) +
                   " bytes.");
  return std::move(*contents);
}

Result<void> makePrivateDirectory(const fs::path& directory) {
  struct stat status{};
  if (::stat(directory.c_str(), &status) == 0) {
    if (!S_ISDIR(status.st_mode))
      return fileFailure(directory, "cannot be used as a folder", ENOTDIR);
    if ((status.st_mode & 07777) != 0700 && ::chmod(directory.c_str(), 0700) != 0)
      return fileFailure(directory, "could not be made private", errno);
    return {};
  }
  if (errno != ENOENT)
    return fileFailure(directory, "could not be opened", errno);

  const fs::path parent = directoryOf(directory);
  if (!fs::exists(parent)) {
    if (Result<void> made = makePrivateDirectory(parent); !made)
      return made;
  }
  // EEXIST: another process was faster, which is as good.
  if ((::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) || ::chmod(directory.c_str(), 0700) != 0)
    return fileFailure(directory, "could not be created", errno);
  const Descriptor descriptor = openDirectory(FileCalls::system(), parent);
  if (!descriptor.isOpen() || !syncDirectory(FileCalls::system(), descriptor))
    return fileFailure(directory, "could not be created", errno);
  return {};
}

} // namespace notlet
