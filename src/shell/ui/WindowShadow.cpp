#include "shell/ui/WindowShadow.h"

#include <QPainter>
#include <cmath>

namespace notlet {

namespace {

/// How far the shape lies above its shadow, and how far the shadow fades out.
constexpr double drop = 2;
constexpr double reach = 6;
/// Right at the shape's edge; enough to be seen on white, and lost on black as all shadows are.
constexpr double darkness = 0.36;

} // namespace

QPixmap WindowShadow::picture(const QSize& size, const QRectF& shape, double radius, double ratio) {
  QPixmap picture((QSizeF(size) * ratio).toSize());
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  // One thin sheet over the other, each smaller than the last: what lies under n of them is dark with the
  // square of n.
  const int sheets = static_cast<int>(std::ceil(2 * reach * ratio));
  for (int sheet = 0; sheet < sheets; ++sheet) {
    const double distance = reach * (sheets - sheet) / sheets;
    painter.setBrush(
        QColor::fromRgbF(0, 0, 0, static_cast<float>(darkness * 2 * (sheet + 1) / sheets / sheets)));
    painter.drawRoundedRect(shape.translated(0, drop).adjusted(-distance, -distance, distance, distance),
                            radius + distance, radius + distance);
  }
  return picture;
}

} // namespace notlet
