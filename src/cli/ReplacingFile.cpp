#include "cli/ReplacingFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

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
    ReplacingFile direct(file);
    direct.m_direct = Descriptor(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    if (!direct.m_direct.isOpen())
      return writeFailure(file, errno);
    return direct;
  }
  std::error_code problem;
  const auto target =
      exists ? std::filesystem::canonical(file, problem) : std::filesystem::absolute(file, problem);
  if (problem)
    return writeFailure(file, problem.value());
  removeAbandonedFiles(target.parent_path());
  ReplacingFile replacing(target);
  if (!replacing.m_temporary.emplace(target, "export").isOpen())
    return writeFailure(file, errno);
  return replacing;
}

CommandResult<void> ReplacingFile::commit() {
  if (!m_temporary) {
    if (!m_direct.close())
      return writeFailure(m_target, errno);
    return {};
  }
  if (::fsync(m_temporary->descriptor()) != 0 || !m_temporary->close() ||
      !m_temporary->takePlaceOf(m_target) || !syncFolder(m_target.parent_path()))
    return writeFailure(m_target, errno);
  return {};
}

} // namespace notlet
