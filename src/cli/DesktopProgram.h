#pragma once

#include "cli/CommandError.h"
#include "platform/LaunchRequest.h"

namespace notlet {

/// Starts the window program, detached from this one, to do what is asked; should one be running after all,
/// it hands over by itself. Fails when it cannot be started or ends with an error at once.
[[nodiscard]] CommandResult<void> startDesktopProgram(const LaunchRequest& request);

} // namespace notlet
