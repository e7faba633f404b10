#include "shell/PopoverPlacement.h"

#include <algorithm>

namespace notlet {

namespace {

constexpr int gapToAnchor = 6;
constexpr int screenMargin = 8;

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

/// Where the popover may stand.
std::optional<QRect> roomAt(const QPoint& point, std::span<const PopoverScreen> screens) {
  const auto nearest = std::ranges::min_element(
      screens, {}, [&](const PopoverScreen& screen) { return distance(point, screen.frame); });
  if (nearest == screens.end())
    return std::nullopt;
  return nearest->available.adjusted(screenMargin, screenMargin, -screenMargin, -screenMargin);
}

/// Of a popover that is too large, the upper left corner stays visible.
QRect movedInto(const QRect& room, const QRect& frame) {
  return {QPoint(std::max(room.x(), std::min(frame.x(), rightEdge(room) - frame.width())),
                 std::max(room.y(), std::min(frame.y(), bottomEdge(room) - frame.height()))),
          frame.size()};
}

QRect placedAt(const QRect& anchor, const QSize& size, std::span<const PopoverScreen> screens) {
  QRect frame(QPoint(anchor.x() + anchor.width() / 2 - size.width() / 2, bottomEdge(anchor) + gapToAnchor),
              size);
  const std::optional<QRect> room = roomAt(anchor.center(), screens);
  if (!room)
    return frame;
  if (bottomEdge(frame) > bottomEdge(*room))
    frame.moveTop(anchor.y() - gapToAnchor - size.height());
  return movedInto(*room, frame);
}

QRect placedInCorner(const QPoint& pointer, const QSize& size, std::span<const PopoverScreen> screens) {
  const std::optional<QRect> room = roomAt(pointer, screens);
  if (!room)
    return {pointer, size};
  return movedInto(*room, {QPoint(rightEdge(*room) - size.width(), room->y()), size});
}

} // namespace

QRect popoverFrame(const QSize& size, const PopoverAnchor& anchor, std::span<const PopoverScreen> screens) {
  if (anchor.statusItem && !anchor.statusItem->isEmpty())
    return placedAt(*anchor.statusItem, size, screens);
  if (anchor.clicked)
    return placedAt({anchor.pointer, QSize(1, 1)}, size, screens);
  return placedInCorner(anchor.pointer, size, screens);
}

} // namespace notlet
