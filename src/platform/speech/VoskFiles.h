#pragma once

#include <filesystem>

#include "core/Error.h"

namespace notlet {

/// Whether the file is a complete library for this kind of machine. A library that was cut off would end the
/// program when it is opened.
[[nodiscard]] Result<void> checkVoskLibrary(const std::filesystem::path& file);

/// Whether the folder holds all parts of a model and each begins as it should. The library ends the program
/// over models where that is not so.
[[nodiscard]] Result<void> checkVoskModel(const std::filesystem::path& directory);

} // namespace notlet
