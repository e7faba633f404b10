#pragma once

#include <filesystem>

#include "cli/CommandError.h"

namespace notlet {

/// A file that is written beside its target and takes the target's place only when it is whole and on disk.
/// A target that is not a regular file (a pipe, a device) is written directly.
class ReplacingFile {
 public:
  /// The new file is open to its owner alone. A symbolic link to a file stays one.
  [[nodiscard]] static CommandResult<ReplacingFile> open(const std::filesystem::path& file);

  ReplacingFile(ReplacingFile&& other) noexcept;
  ReplacingFile& operator=(ReplacingFile&&) = delete;
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;
  /// Without commit() the target stays as it was and nothing is left beside it.
  ~ReplacingFile();

  [[nodiscard]] int descriptor() const { return m_descriptor; }
  /// To be called once, after the last write.
  [[nodiscard]] CommandResult<void> commit();

 private:
  ReplacingFile(int descriptor, std::filesystem::path target, std::filesystem::path temporary)
      : m_descriptor(descriptor), m_target(std::move(target)), m_temporary(std::move(temporary)) {}

  int m_descriptor;
  std::filesystem::path m_target;
  /// Empty when the target is written directly.
  std::filesystem::path m_temporary;
};

} // namespace notlet
