#pragma once

#include <filesystem>
#include <string>

#include "cli/CommandError.h"

namespace notlet {

/// Everything that standard input gives until its end.
[[nodiscard]] CommandResult<std::string> readStandardInput();

/// The contents of a file, a pipe or a device; "-" stands for standard input.
[[nodiscard]] CommandResult<std::string> readInput(const std::filesystem::path& file);

} // namespace notlet
