#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/Screens.h"

namespace notlet {

/// Where the bubble and the expanded panel stand on the screens of one moment. All in the coordinates of
/// ScreenArea.
class FloatingGeometry {
 public:
  static constexpr QSizeF bubbleSize{64, 64};
  static constexpr QSizeF captureSize{380, 260};

  explicit FloatingGeometry(const Screens& screens);
  FloatingGeometry(std::vector<ScreenArea> screens, std::optional<ScreenArea> mainScreen);

  [[nodiscard]] bool hasScreen() const { return !m_screens.empty(); }

  /// The screen that most of the rectangle lies on, the first of equals; nothing only without any screen.
  [[nodiscard]] std::optional<ScreenArea> screenContaining(const QRectF& rect) const;
  /// The screen of that number; in its absence the main screen, or else the first.
  [[nodiscard]] std::optional<ScreenArea> screenNumbered(std::int64_t displayID) const;

  /// Moves the rectangle into the visible part of its screen, off the edges. One that is too large goes to
  /// the right and to the upper edge. Without a screen it stays as it is.
  [[nodiscard]] QRectF clamped(const QRectF& rect) const;
  [[nodiscard]] QRectF frameCenteredAt(const QPointF& center, const QSizeF& size) const;
  [[nodiscard]] QRectF bubbleFrameAt(const QPointF& bubbleCenter) const;
  /// The expanded panel, which grows to the left and up from the bubble's lower right corner.
  [[nodiscard]] QRectF captureFrameAnchoredAt(const QPointF& bubbleCenter) const;

  /// The centre of a bubble in the lower right corner of an expanded panel.
  [[nodiscard]] static QPointF bubbleCenterIn(const QRectF& captureFrame);
  /// Where the bubble stands that was never moved.
  [[nodiscard]] static QPointF defaultBubbleCenter(const ScreenArea& screen);

 private:
  std::vector<ScreenArea> m_screens;
  std::optional<ScreenArea> m_mainScreen;
};

} // namespace notlet
