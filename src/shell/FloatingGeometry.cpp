#include "shell/FloatingGeometry.h"

#include <algorithm>

namespace notlet {

namespace {

constexpr double screenMargin = 8;
/// Half the bubble.
constexpr double anchorOffset = 32;
/// From the right and from the upper edge of the visible frame.
constexpr QPointF defaultCornerDistance{56, 96};

double area(const QRectF& rect) {
  return rect.width() * rect.height();
}

/// A stretch of that length, moved between the two ends; the upper end decides when it is too long.
double clampedStart(double start, double length, double lowerEnd, double upperEnd) {
  return std::min(upperEnd - length, std::max(start, lowerEnd));
}

} // namespace

FloatingGeometry::FloatingGeometry(const Screens& screens) : FloatingGeometry(screens.all(), screens.main()) {
}

FloatingGeometry::FloatingGeometry(std::vector<ScreenArea> screens, std::optional<ScreenArea> mainScreen)
    : m_screens(std::move(screens)), m_mainScreen(mainScreen) {
  if (m_screens.empty() && m_mainScreen)
    m_screens.push_back(*m_mainScreen);
}

std::optional<ScreenArea> FloatingGeometry::screenContaining(const QRectF& rect) const {
  const auto found = std::ranges::max_element(
      m_screens, {}, [&](const ScreenArea& screen) { return area(screen.frame.intersected(rect)); });
  return found != m_screens.end() ? std::optional(*found) : std::nullopt;
}

std::optional<ScreenArea> FloatingGeometry::screenNumbered(std::int64_t displayID) const {
  if (const auto found = std::ranges::find(m_screens, displayID, &ScreenArea::displayID);
      found != m_screens.end())
    return *found;
  if (m_mainScreen || m_screens.empty())
    return m_mainScreen;
  return m_screens.front();
}

QRectF FloatingGeometry::clamped(const QRectF& rect) const {
  const std::optional<ScreenArea> screen = screenContaining(rect);
  if (!screen)
    return rect;
  const QRectF room = screen->visibleFrame.adjusted(screenMargin, screenMargin, -screenMargin, -screenMargin);
  return {QPointF(clampedStart(rect.x(), rect.width(), room.x(), room.x() + room.width()),
                  clampedStart(rect.y(), rect.height(), room.y(), room.y() + room.height())),
          rect.size()};
}

QRectF FloatingGeometry::frameCenteredAt(const QPointF& center, const QSizeF& size) const {
  return clamped({center - QPointF(size.width() / 2, size.height() / 2), size});
}

QRectF FloatingGeometry::bubbleFrameAt(const QPointF& bubbleCenter) const {
  return frameCenteredAt(bubbleCenter, bubbleSize);
}

QRectF FloatingGeometry::captureFrameAnchoredAt(const QPointF& bubbleCenter) const {
  return clamped({bubbleCenter + QPointF(anchorOffset - captureSize.width(), -anchorOffset), captureSize});
}

QPointF FloatingGeometry::bubbleCenterIn(const QRectF& captureFrame) {
  return {captureFrame.x() + captureFrame.width() - anchorOffset, captureFrame.y() + anchorOffset};
}

QPointF FloatingGeometry::defaultBubbleCenter(const ScreenArea& screen) {
  const QRectF& visible = screen.visibleFrame;
  return QPointF(visible.x() + visible.width(), visible.y() + visible.height()) - defaultCornerDistance;
}

} // namespace notlet
