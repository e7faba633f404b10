#include "widgets/ThemedButton.h"

#include <QKeyEvent>
#include <QPainter>

#include "widgets/ThemePalette.h"

namespace notlet {

ThemedButton::ThemedButton(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
}

void ThemedButton::paintFocusRing(QPainter& painter, const QRectF& rect, double radius,
                                  const QPalette& palette) {
  const double half = ringWidth / 2;
  painter.setPen(QPen(palette.color(ThemeRole::focusRing), ringWidth));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(rect.adjusted(half, half, -half, -half), radius - half, radius - half);
}

void ThemedButton::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isReturn || event->modifiers() & ~Qt::KeypadModifier) {
    QAbstractButton::keyPressEvent(event);
    return;
  }
  // A held key presses once.
  if (!event->isAutoRepeat())
    click();
}

void ThemedButton::prepare(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
}

QBrush ThemedButton::quietGround() const {
  if (isDown())
    return palette().brush(ThemeRole::pressed);
  if (isEnabled() && underMouse())
    return palette().brush(ThemeRole::hover);
  return Qt::NoBrush;
}

} // namespace notlet
