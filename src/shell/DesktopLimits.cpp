#include "shell/DesktopLimits.h"

namespace notlet {

namespace {

constexpr std::string_view readKey = "desktopLimitsRead";

/// The worst that can come of it is that the user reads it twice.
void ignoreFailure(const Result<void>& written) {
  static_cast<void>(written);
}

} // namespace

// A window manager may come up after the program, so what X11 cannot do at the moment is not told.
std::string DesktopLimits::notice(const DesktopCapabilities& capabilities) const {
  if (capabilities.placesWindows || m_defaults.integer(readKey).value_or(0) != 0)
    return {};
  return "Under Wayland the desktop alone decides where the quick capture and the bubble appear, and the "
         "bubble may be covered by other windows and stays on one workspace.";
}

void DesktopLimits::noteRead() {
  ignoreFailure(m_defaults.setInteger(readKey, 1));
}

} // namespace notlet
