#pragma once

#include <filesystem>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/FileCalls.h"

namespace notlet {

/// A hidden name beside the file, ".notlet-<purpose>-…", that nothing has yet. It does not grow with the
/// file's, which may be as long as names can be.
[[nodiscard]] std::filesystem::path temporaryNameBeside(const std::filesystem::path& file,
                                                        std::string_view purpose);

/// Keeps removeAbandonedFiles() of all processes away from the file as long as the descriptor, or a copy of
/// it, is open. False when one of them is just at it.
bool holdTemporary(int descriptor);

/// Removes from the folder what has such a name and is this user's, unless a living process holds it: what
/// was left by those that were killed while they wrote.
void removeAbandonedFiles(const std::filesystem::path& folder);

/// A new file beside the one whose place it is to take. It goes with this object, unless it was given away.
class TemporaryFile {
 public:
  /// Creates it, open to its owner alone; isOpen() tells whether that worked, and errno why not.
  explicit TemporaryFile(const std::filesystem::path& beside, std::string_view purpose,
                         FileCalls& calls = FileCalls::system());
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&&) = delete;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
  [[nodiscard]] int descriptor() const { return m_descriptor; }
  [[nodiscard]] const std::filesystem::path& name() const { return m_name; }
  /// Ends the writing; the file stays held. Network and quota file systems report a failed write no earlier
  /// than here.
  [[nodiscard]] bool close();
  /// Renames it.
  [[nodiscard]] bool takePlaceOf(const std::filesystem::path& target);

 private:
  FileCalls* m_calls;
  /// Empty when there is no such file any more.
  std::filesystem::path m_name;
  int m_descriptor = -1;
  Descriptor m_hold;
};

} // namespace notlet
