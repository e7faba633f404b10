#pragma once

#include "cli/CommandError.h"
#include "cli/CommandLine.h"

namespace notlet {

/// Does what `notlet`, `notlet capture` and `notlet open` ask for: hands it to the window program that runs,
/// or starts one with it.
[[nodiscard]] CommandResult<void> launch(const CommandLine& line);

} // namespace notlet
