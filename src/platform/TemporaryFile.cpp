#include "platform/TemporaryFile.h"

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace notlet {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".notlet-";
constexpr std::string_view digits = "0123456789abcdef";
constexpr std::size_t digitCount = 16;

bool isTemporaryName(std::string_view name) {
  if (!name.starts_with(prefix) || name.size() < prefix.size() + 1 + digitCount)
    return false;
  const std::string_view number = name.substr(name.size() - digitCount);
  return name[name.size() - digitCount - 1] == '-' && number.find_first_not_of(digits) == number.npos;
}

void removeUnlessHeld(const fs::path& file) {
  constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  // Network file systems lock only what is open for writing; some files are not to be written.
  Descriptor descriptor(::open(file.c_str(), O_RDWR | flags));
  if (!descriptor.isOpen())
    descriptor = Descriptor(::open(file.c_str(), O_RDONLY | flags));
  struct stat status{};
  if (descriptor.isOpen() && ::fstat(descriptor.number(), &status) == 0 && S_ISREG(status.st_mode) &&
      status.st_uid == ::geteuid() && ::flock(descriptor.number(), LOCK_EX | LOCK_NB) == 0)
    ::unlink(file.c_str());
}

} // namespace

fs::path temporaryNameBeside(const fs::path& file, std::string_view purpose) {
  std::random_device device;
  std::string name = std::string(prefix).append(purpose) + '-';
  for (std::size_t digit = 0; digit < digitCount; ++digit)
    name.push_back(digits[device() % digits.size()]);
  return file.parent_path() / name;
}

// Where the file system has no locks, nothing is removed either.
bool holdTemporary(int descriptor) {
  return ::flock(descriptor, LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void removeAbandonedFiles(const fs::path& folder) {
  std::error_code error; // What cannot be looked at now is looked at the next time.
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    if (isTemporaryName(entry->path().filename().native()))
      removeUnlessHeld(entry->path());
}

TemporaryFile::TemporaryFile(const fs::path& beside, std::string_view purpose, FileCalls& calls)
    : m_calls(&calls) {
  constexpr int mostTries = 10;
  for (int tries = 0; tries < mostTries; ++tries) {
    m_name = temporaryNameBeside(beside, purpose);
    m_descriptor = calls.open(m_name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    // Until it was held, it may have been taken for abandoned.
    if (m_descriptor < 0 || (holdTemporary(m_descriptor) && ::access(m_name.c_str(), F_OK) == 0))
      break;
    ::unlink(m_name.c_str());
    calls.close(std::exchange(m_descriptor, -1));
    errno = EBUSY;
  }
  if (m_descriptor < 0)
    m_name.clear();
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : m_calls(other.m_calls),
      m_name(std::exchange(other.m_name, {})),
      m_descriptor(std::exchange(other.m_descriptor, -1)),
      m_hold(std::move(other.m_hold)) {
}

TemporaryFile::~TemporaryFile() {
  if (!m_name.empty())
    ::unlink(m_name.c_str());
  if (m_descriptor >= 0)
    m_calls->close(m_descriptor);
}

bool TemporaryFile::close() {
  m_hold = Descriptor(::fcntl(m_descriptor, F_DUPFD_CLOEXEC, 0));
  return m_calls->close(std::exchange(m_descriptor, -1)) == 0;
}

bool TemporaryFile::takePlaceOf(const fs::path& target) {
  if (m_calls->rename(m_name.c_str(), target.c_str()) != 0)
    return false;
  m_name.clear();
  return true;
}

} // namespace notlet
