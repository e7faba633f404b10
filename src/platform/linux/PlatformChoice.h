#pragma once

#include <string>

#include "core/Error.h"

namespace notlet {

/// What decides how the program reaches the screen.
struct PlatformWishes {
  /// The user asks for windows of Wayland's own.
  bool asksForWayland = false;
  /// The user has told Qt itself which platform to take.
  bool isChosen = false;
  /// The session has a Wayland compositor.
  bool hasWayland = false;
  /// The session has an X server, which may be part of the Wayland compositor.
  bool hasX11 = false;
  /// Qt can run on Wayland.
  bool hasWaylandPlugin = false;

  /// Reads the command line and the environment. The arguments may begin with the program's name.
  [[nodiscard]] static PlatformWishes of(int argumentCount, const char* const* arguments);
};

/// Whether the command line asks for no more than a text: help or the version. The arguments may begin with
/// the program's name.
[[nodiscard]] bool asksForText(int argumentCount, const char* const* arguments);

/// The name of the Qt platform to run on; an empty name leaves it to Qt. Where there is a choice it is X11,
/// even inside a Wayland session, because a Wayland compositor lets no program place its windows or keep them
/// above others. Fails with a whole sentence (UTF-8) when what is asked for is not there.
[[nodiscard]] Result<std::string> choosePlatform(const PlatformWishes& wishes);

} // namespace notlet
