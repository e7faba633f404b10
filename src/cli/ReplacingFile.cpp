#include "cli/ReplacingFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace notlet {
namespace {

std::unexpected<CommandError> writeFailure(const std::filesystem::path& file, int reason) {
  return commandFailure(inQuotes(file.string()) +
                        " could not be written: " + std::generic_category().message(reason) + ".");
}

/// Network file systems may have lost the name of a file that was synced; only the folder's sync tells.
bool syncFolder(const std::filesystem::path& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0)
    return false;
  const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
  ::close(descriptor);
  return synced;
}

} // namespace

CommandResult<ReplacingFile> ReplacingFile::open(const std::filesystem::path& file) {
  struct stat status{};
  const bool exists = ::stat(file.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0)
      return writeFailure(file, errno);
    return ReplacingFile(descriptor, file, {});
  }
  std::error_code problem;
  const auto target =
      exists ? std::filesystem::canonical(file, problem) : std::filesystem::absolute(file, problem);
  if (problem)
    return writeFailure(file, problem.value());
  std::string temporary = (target.parent_path() / ".notlet-export-XXXXXX").string();
  const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (descriptor < 0)
    return writeFailure(file, errno);
  return ReplacingFile(descriptor, target, temporary);
}

ReplacingFile::ReplacingFile(ReplacingFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)),
      m_target(std::move(other.m_target)),
      m_temporary(std::exchange(other.m_temporary, {})) {
}

ReplacingFile::~ReplacingFile() {
  if (m_descriptor >= 0)
    ::close(m_descriptor);
  if (!m_temporary.empty())
    ::unlink(m_temporary.c_str());
}

CommandResult<void> ReplacingFile::commit() {
  if (!m_temporary.empty() && ::fsync(m_descriptor) != 0)
    return writeFailure(m_target, errno);
  if (::close(std::exchange(m_descriptor, -1)) != 0)
    return writeFailure(m_target, errno);
  if (m_temporary.empty())
    return {};
  if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0)
    return writeFailure(m_target, errno);
  m_temporary.clear();
  if (!syncFolder(m_target.parent_path()))
    return writeFailure(m_target, errno);
  return {};
}

} // namespace notlet
