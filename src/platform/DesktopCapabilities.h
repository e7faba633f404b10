#pragma once

namespace notlet {

enum class StatusItemRoute { none, statusNotifierItem, xembed };
enum class HotKeyRoute { none, x11, portal };

/// What the desktop that the program runs on can do, as far as it is known.
struct DesktopCapabilities {
  StatusItemRoute statusItem = StatusItemRoute::none;
  HotKeyRoute hotKey = HotKeyRoute::none;
  /// Windows stand where the program puts them.
  bool placesWindows = false;
  bool keepsWindowsAbove = false;
  bool showsOnAllWorkspaces = false;
  bool seesMouseEverywhere = false;

  bool operator==(const DesktopCapabilities&) const = default;
};

} // namespace notlet
