#pragma once

#include "cli/CommandError.h"
#include "cli/CommandLine.h"
#include "cli/Output.h"

namespace notlet {

/// Does what the command line asks for, except for what concerns the window. The output still has to be
/// flushed.
[[nodiscard]] CommandResult<void> runCommand(const CommandLine& line, Output& output);

} // namespace notlet
