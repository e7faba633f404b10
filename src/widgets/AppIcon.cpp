#include "widgets/AppIcon.h"

#include <QPainter>
#include <array>

#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

/// Three dots on a grid of 512 units; the lower left corners are measured from the lower left of the icon.
void paintDots(QPainter& painter, const QRectF& rect, const QColor& color) {
  constexpr double grid = 512;
  constexpr double diameter = 135;
  constexpr std::array corners = {std::pair(280, 280), std::pair(98, 98), std::pair(280, 98)};
  const double scale = rect.width() / grid;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  for (const auto& [left, bottom] : corners)
    painter.drawEllipse(QRectF(rect.left() + left * scale, rect.top() + (grid - bottom - diameter) * scale,
                               diameter * scale, diameter * scale));
}

} // namespace

QPixmap appIconPixmap(int side, AppIconTone tone) {
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  paintDots(painter, pixmap.rect(), tone == AppIconTone::white ? Qt::white : Qt::black);
  return pixmap;
}

QIcon appIcon(AppIconTone tone) {
  QIcon icon;
  // Larger ones would go through the X server at every start and are scaled down again there.
  for (const int side : {16, 22, 24, 32, 48, 64})
    icon.addPixmap(appIconPixmap(side, tone));
  return icon;
}

AppIconView::AppIconView(int side, int cornerRadius, QWidget* parent)
    : QWidget(parent), m_cornerRadius(cornerRadius) {
  setFixedSize(side, side);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void AppIconView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(ThemeRole::primaryText));
  painter.drawRoundedRect(rect(), m_cornerRadius, m_cornerRadius);
  paintDots(painter, rect(), palette().color(ThemeRole::background));
}

} // namespace notlet
