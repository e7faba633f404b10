#pragma once

#include <filesystem>
#include <optional>

#include "cli/CommandError.h"
#include "platform/Descriptor.h"
#include "platform/TemporaryFile.h"

namespace notlet {

/// A file that is written beside its target and takes the target's place only when it is whole and on disk.
/// A target that is not a regular file (a pipe, a device) is written directly. Without commit() the target
/// stays as it was and nothing is left beside it.
class ReplacingFile {
 public:
  /// The new file is open to its owner alone. A symbolic link to a file stays one.
  [[nodiscard]] static CommandResult<ReplacingFile> open(const std::filesystem::path& file);

  [[nodiscard]] int descriptor() const { return m_temporary ? m_temporary->descriptor() : m_direct.number(); }
  /// To be called once, after the last write.
  [[nodiscard]] CommandResult<void> commit();

 private:
  explicit ReplacingFile(std::filesystem::path target) : m_target(std::move(target)) {}

  std::filesystem::path m_target;
  /// None when the target is written directly.
  std::optional<TemporaryFile> m_temporary;
  /// The target, when it is written directly.
  Descriptor m_direct;
};

} // namespace notlet
