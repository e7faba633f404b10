#pragma once

#include "cli/CommandError.h"

namespace notlet {

/// Starts the window program, detached from this one; it brings a running one forward by itself. Fails when
/// it cannot be started or ends with an error at once.
[[nodiscard]] CommandResult<void> startDesktopProgram();

} // namespace notlet
