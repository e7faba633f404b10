#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

#include "core/Error.h"
#include "platform/FileCalls.h"

namespace notlet {

/// Writes the whole file so that it survives a power cut: it then holds either its old or its new contents.
///
/// A symbolic link stays one, the file it points to is replaced. `mode` holds whatever the umask. On failure
/// the file is as it was, nothing is left beside it, and the message names the file and the reason.
[[nodiscard]] Result<void> writeDurably(const std::filesystem::path& file, std::string_view contents,
                                        mode_t mode = 0600, FileCalls& calls = FileCalls::system());

/// Like writeDurably, but only where there is no file yet. False, and nothing changed, when there is one
/// already; of several processes that create the same file exactly one succeeds.
[[nodiscard]] Result<bool> createDurably(const std::filesystem::path& file, std::string_view contents,
                                         mode_t mode = 0600, FileCalls& calls = FileCalls::system());

/// The contents of a regular file of at most `limit` bytes; nothing when there is no such file.
[[nodiscard]] Result<std::optional<std::string>> readWholeFile(const std::filesystem::path& file,
                                                               std::size_t limit);

/// Makes sure of a folder that is open to its owner alone (0700 whatever the umask), with missing parents.
[[nodiscard]] Result<void> makePrivateDirectory(const std::filesystem::path& directory);

} // namespace notlet
