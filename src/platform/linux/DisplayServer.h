#pragma once

#include <memory>

#include "platform/DesktopCapabilities.h"
#include "platform/WindowSystem.h"

namespace notlet {

class X11UserTime;

enum class DisplayServer {
  x11,
  /// An X server inside a Wayland session: keys and presses in other programs' windows stay unknown.
  xwayland,
  /// Wayland, or none.
  other,
};

/// What the application object runs on.
[[nodiscard]] DisplayServer displayServer();

/// Fits what the program runs on. `userTime` must outlive it.
[[nodiscard]] std::unique_ptr<WindowSystem> makeWindowSystem(X11UserTime& userTime);

/// What the desktop can do with windows at the moment; status item and hot key are left open. Window managers
/// may be exchanged while the program runs.
[[nodiscard]] DesktopCapabilities windowCapabilities();

} // namespace notlet
