#include "themes/ui/ColorWell.h"

#include <QPainter>

#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr double radius = 7;

} // namespace

ColorWell::ColorWell(const QString& name, QWidget* parent) : ThemedButton(parent) {
  setAccessibleName(name);
  setToolTip(tr("Choose a color"));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColorWell::setColor(const QColor& color) {
  m_color = color;
  setAccessibleDescription(color.name());
  update();
}

void ColorWell::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  prepare(painter);
  painter.setPen(QPen(palette().color(underMouse() ? ThemeRole::secondaryText : ThemeRole::outline), 1));
  painter.setBrush(m_color);
  const double gap = ringInset;
  painter.drawRoundedRect(QRectF(rect()).adjusted(gap, gap, -gap, -gap), radius - 2, radius - 2);
  if (hasFocus())
    paintFocusRing(painter, rect(), radius, palette());
}

} // namespace notlet
