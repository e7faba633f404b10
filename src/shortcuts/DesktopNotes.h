#pragma once

#include <string>
#include <vector>

#include "platform/DesktopCapabilities.h"

namespace notlet {

/// How the quick capture is reached by a key on this desktop, as a sentence or two.
[[nodiscard]] std::string hotKeyNote(HotKeyRoute route);
/// What the program cannot do on this desktop, one sentence each.
[[nodiscard]] std::vector<std::string> desktopLimits(const DesktopCapabilities& capabilities);

} // namespace notlet
