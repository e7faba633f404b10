#pragma once

#include <cstdint>

#include "storage/NotletDatabase.h"

namespace notlet {

/// "Ntlt", in the header of every store file.
inline constexpr std::int32_t storeApplicationId = 0x4e746c74;
/// The form of the table; a store with a higher number belongs to a later version of the program.
inline constexpr std::int32_t storeFormat = 1;

/// Whether there is a file to open; refuses what is there but cannot be a store that may be used as asked.
[[nodiscard]] StoreResult<bool> storeFileExists(const std::filesystem::path& file, Access access);

/// Looks at the first bytes, before SQLite does: a foreign file must not be touched, not even to undo what a
/// journal beside it says.
[[nodiscard]] StoreResult<void> checkStoreHeader(const SqliteConnection& connection);

/// Takes the store and its journal away from everybody but their owner.
[[nodiscard]] StoreResult<void> makeStorePrivate(const std::filesystem::path& file);

/// Bytes in the file.
[[nodiscard]] StoreResult<std::int64_t> storeFileSize(const SqliteConnection& connection);

} // namespace notlet
