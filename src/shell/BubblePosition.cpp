#include "shell/BubblePosition.h"

#include <algorithm>
#include <cmath>

namespace notlet {

namespace {

constexpr std::string_view displayKey = "macFloatingBubbleDisplayID";
constexpr std::string_view xKey = "macFloatingBubbleNormalizedX";
constexpr std::string_view yKey = "macFloatingBubbleNormalizedY";

/// A bubble whose place cannot be kept stands somewhere else at the next start, which disturbs nobody.
void ignoreFailure(const Result<void>& written) {
  static_cast<void>(written);
}

} // namespace

std::optional<QPointF> BubblePosition::restoredBubbleCenter(const FloatingGeometry& geometry) const {
  const std::optional<ScreenArea> screen =
      geometry.screenNumbered(m_defaults.integer(displayKey).value_or(0));
  if (!screen)
    return std::nullopt;
  const std::optional<QPointF> fractions = storedFractions();
  if (!fractions)
    return FloatingGeometry::defaultBubbleCenter(*screen);
  const QRectF& visible = screen->visibleFrame;
  return QPointF(visible.x() + fractions->x() * visible.width(),
                 visible.y() + fractions->y() * visible.height());
}

std::optional<QPointF> BubblePosition::storedFractions() const {
  const std::optional<double> x = m_defaults.number(xKey);
  const std::optional<double> y = m_defaults.number(yKey);
  if (!x || !y || std::isnan(*x) || std::isnan(*y))
    return std::nullopt;
  return QPointF(std::clamp(*x, 0.0, 1.0), std::clamp(*y, 0.0, 1.0));
}

void BubblePosition::persistBubblePosition(const QPointF& center, const ScreenArea& screen) {
  const QRectF& visible = screen.visibleFrame;
  if (!(visible.width() > 0 && visible.height() > 0))
    return;
  ignoreFailure(m_defaults.setInteger(displayKey, screen.displayID));
  ignoreFailure(m_defaults.setNumber(xKey, (center.x() - visible.x()) / visible.width()));
  ignoreFailure(m_defaults.setNumber(yKey, (center.y() - visible.y()) / visible.height()));
}

} // namespace notlet
