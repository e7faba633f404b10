#pragma once

#include <QPointF>
#include <optional>

#include "platform/Defaults.h"
#include "shell/FloatingGeometry.h"

namespace notlet {

/// Where the bubble stood last, kept between runs: the screen, and the place as fractions of its visible
/// frame, so that a screen of another size keeps the bubble where it was.
class BubblePosition {
 public:
  /// The defaults must outlive this object.
  explicit BubblePosition(Defaults& defaults) : m_defaults(defaults) {}

  /// The stored centre, on another screen if that one is gone; the usual place when none or half of one is
  /// stored. Nothing only without any screen.
  [[nodiscard]] std::optional<QPointF> restoredBubbleCenter(const FloatingGeometry& geometry) const;
  /// Does nothing for a screen without visible area.
  void persistBubblePosition(const QPointF& center, const ScreenArea& screen);

 private:
  [[nodiscard]] std::optional<QPointF> storedFractions() const;

  Defaults& m_defaults;
};

} // namespace notlet
