#include "platform/DurableFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/Descriptor.h"
#include "platform/TemporaryFile.h"

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

/// Brings the new contents safely to disk under a name of their own.
Result<void> fill(TemporaryFile& temporary, std::string_view contents, mode_t mode, const fs::path& file,
                  FileCalls& calls) {
  if (!temporary.isOpen() || calls.setMode(temporary.descriptor(), mode) != 0 ||
      !writeAll(calls, temporary.descriptor(), contents) || calls.sync(temporary.descriptor()) != 0 ||
      !temporary.close())
    return writeFailure(file, errno);
  return {};
}

Descriptor openDirectory(FileCalls& calls, const fs::path& directory) {
  return Descriptor(calls.open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
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
  removeAbandonedFiles(directoryOf(target));
  const Descriptor directory = openDirectory(calls, directoryOf(target));
  if (!directory.isOpen())
    return writeFailure(file, errno);
  TemporaryFile temporary(target, "new", calls);
  if (Result<void> written = fill(temporary, contents, mode, file, calls); !written)
    return written;

  // A second name keeps the old contents at hand until the new ones are known to last.
  ScopedName former(temporaryNameBeside(target, "old"));
  const Descriptor old(::open(target.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  holdTemporary(old.number());
  former.setExists(calls.link(target.c_str(), former.text()) == 0);
  const bool replacesFile = former.exists() || errno != ENOENT;
  if (!temporary.takePlaceOf(target))
    return writeFailure(file, errno);
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
  removeAbandonedFiles(directoryOf(file));
  const Descriptor directory = openDirectory(calls, directoryOf(file));
  if (!directory.isOpen())
    return writeFailure(file, errno);
  TemporaryFile temporary(file, "new", calls);
  if (Result<void> written = fill(temporary, contents, mode, file, calls); !written)
    return std::unexpected(written.error());
  if (calls.link(temporary.name().c_str(), file.c_str()) != 0) {
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
  const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
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

Result<void> makeDirectory(const fs::path& directory) {
  struct stat status{};
  if (::stat(directory.c_str(), &status) == 0) {
    if (!S_ISDIR(status.st_mode))
      return fileFailure(directory, "cannot be used as a folder", ENOTDIR);
    return {};
  }
  if (errno != ENOENT)
    return fileFailure(directory, "could not be opened", errno);

  const fs::path parent = directoryOf(directory);
  if (Result<void> made = makeDirectory(parent); !made)
    return made;
  // EEXIST: another process was faster, which is as good.
  if ((::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) || ::chmod(directory.c_str(), 0700) != 0)
    return fileFailure(directory, "could not be created", errno);
  const Descriptor descriptor = openDirectory(FileCalls::system(), parent);
  if (!descriptor.isOpen() || !syncDirectory(FileCalls::system(), descriptor))
    return fileFailure(directory, "could not be created", errno);
  return {};
}

Result<void> makePrivateDirectory(const fs::path& directory) {
  if (Result<void> made = makeDirectory(directory); !made)
    return made;
  struct stat status{};
  if (::stat(directory.c_str(), &status) != 0 ||
      ((status.st_mode & 07777) != 0700 && ::chmod(directory.c_str(), 0700) != 0))
    return fileFailure(directory, "could not be made private", errno);
  return {};
}

} // namespace notlet
