#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>
#include <span>

namespace notlet {

/// One screen in Qt's coordinates (y downward).
struct PlacementScreen {
  QRect frame;
  /// The frame without panels and docks.
  QRect available;
};

/// What the popover is shown for.
struct PopoverAnchor {
  /// Where the status item is, if the tray tells.
  std::optional<QRect> statusItem;
  QPoint pointer;
  /// The status item was clicked just now, so the pointer is on it.
  bool clicked = false;
};

/// Where a popover of that size stands, in Qt's coordinates: centred under the status item, or above it when
/// there is no room below; else at the pointer that clicked it; else in the upper right corner of the screen
/// with the pointer. It keeps to the available area of one screen.
[[nodiscard]] QRect popoverFrame(const QSize& size, const PopoverAnchor& anchor,
                                 std::span<const PlacementScreen> screens);

/// Where a window comes back or stays, in Qt's coordinates with its frame: where it was, or, when too little
/// of its upper edge to take hold of is on any screen, wholly on the nearest one and no larger than that.
[[nodiscard]] QRect frameWithinReach(const QRect& frame, std::span<const PlacementScreen> screens);

} // namespace notlet
