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
/// the file is as it was, nothing is left beside it, and the message names the file and the reason. What was
/// left in the folder by processes that were killed while they wrote is removed.
[[nodiscard]] Result<void> writeDurably(const std::filesystem::path& file, std::string_view contents,
                                        mode_t mode = 0600, FileCalls& calls = FileCalls::system());

/// Like writeDurably, but only where there is no file yet. False, and nothing changed, when there is one
/// already; of several processes that create the same file exactly one succeeds.
[[nodiscard]] Result<bool> createDurably(const std::filesystem::path& file, std::string_view contents,
                                         mode_t mode = 0600, FileCalls& calls = FileCalls::system());

/// The contents of a regular file of at most `limit` bytes; nothing when there is no such file.
[[nodiscard]] Result<std::optional<std::string>> readWholeFile(const std::filesystem::path& file,
                                                               std::size_t limit);

/// Makes sure of a folder so that it survives a power cut. It and its missing parents are made open to their
/// owner alone (0700 whatever the umask); one that is there keeps its permissions.
[[nodiscard]] Result<void> makeDirectory(const std::filesystem::path& directory);

/// Like makeDirectory, but a folder that is there loses its permissions for others.
[[nodiscard]] Result<void> makePrivateDirectory(const std::filesystem::path& directory);

} // namespace notlet
