#include "shell/WindowPlacement.h"

#include <algorithm>

namespace notlet {

namespace {

constexpr int gapToAnchor = 6;
constexpr int screenMargin = 8;
/// As much of a title bar as a hand can catch.
constexpr QSize handhold{96, 16};

// QRect's own right() and bottom() lie one pixel inside.
int rightEdge(const QRect& rect) {
  return rect.x() + rect.width();
}

int bottomEdge(const QRect& rect) {
  return rect.y() + rect.height();
}

/// How far the point is from the rectangle, horizontally plus vertically; 0 inside.
int distance(const QPoint& point, const QRect& rect) {
  const QPoint nearest(std::clamp(point.x(), rect.x(), std::max(rect.x(), rightEdge(rect) - 1)),
                       std::clamp(point.y(), rect.y(), std::max(rect.y(), bottomEdge(rect) - 1)));
  return (point - nearest).manhattanLength();
}

/// The available area of the nearest screen.
std::optional<QRect> areaAt(const QPoint& point, std::span<const PlacementScreen> screens) {
  const auto nearest = std::ranges::min_element(
      screens, {}, [&](const PlacementScreen& screen) { return distance(point, screen.frame); });
  return nearest != screens.end() ? std::optional(nearest->available) : std::nullopt;
}

/// Where the popover may stand.
std::optional<QRect> roomAt(const QPoint& point, std::span<const PlacementScreen> screens) {
  return areaAt(point, screens).transform([](const QRect& area) {
    return area.adjusted(screenMargin, screenMargin, -screenMargin, -screenMargin);
  });
}

/// Of a window that is too large, the upper left corner stays visible.
QRect movedInto(const QRect& room, const QRect& frame) {
  return {QPoint(std::max(room.x(), std::min(frame.x(), rightEdge(room) - frame.width())),
                 std::max(room.y(), std::min(frame.y(), bottomEdge(room) - frame.height()))),
          frame.size()};
}

QRect placedAt(const QRect& anchor, const QSize& size, std::span<const PlacementScreen> screens) {
  QRect frame(QPoint(anchor.x() + anchor.width() / 2 - size.width() / 2, bottomEdge(anchor) + gapToAnchor),
              size);
  const std::optional<QRect> room = roomAt(anchor.center(), screens);
  if (!room)
    return frame;
  if (bottomEdge(frame) > bottomEdge(*room))
    frame.moveTop(anchor.y() - gapToAnchor - size.height());
  return movedInto(*room, frame);
}

QRect placedInCorner(const QPoint& pointer, const QSize& size, std::span<const PlacementScreen> screens) {
  const std::optional<QRect> room = roomAt(pointer, screens);
  if (!room)
    return {pointer, size};
  return movedInto(*room, {QPoint(rightEdge(*room) - size.width(), room->y()), size});
}

} // namespace

QRect popoverFrame(const QSize& size, const PopoverAnchor& anchor, std::span<const PlacementScreen> screens) {
  if (anchor.statusItem && !anchor.statusItem->isEmpty())
    return placedAt(*anchor.statusItem, size, screens);
  if (anchor.clicked)
    return placedAt({anchor.pointer, QSize(1, 1)}, size, screens);
  return placedInCorner(anchor.pointer, size, screens);
}

QRect frameWithinReach(const QRect& frame, std::span<const PlacementScreen> screens) {
  const QRect edge(frame.topLeft(), QSize(frame.width(), handhold.height()));
  const bool canBeHeld = std::ranges::any_of(screens, [&](const PlacementScreen& screen) {
    const QRect seen = edge.intersected(screen.available);
    return seen.width() >= handhold.width() && seen.height() == handhold.height();
  });
  const std::optional<QRect> area = areaAt(frame.center(), screens);
  if (canBeHeld || !area)
    return frame;
  return movedInto(*area, {frame.topLeft(), frame.size().boundedTo(area->size())});
}

} // namespace notlet
