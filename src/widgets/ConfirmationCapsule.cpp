#include "widgets/ConfirmationCapsule.h"

#include <QAccessible>
#include <QPainter>

#include "widgets/Motion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int horizontalPadding = 14;
constexpr int verticalPadding = 8;
constexpr double smallestScale = 0.9;

QFont capsuleFont() {
  return textFont(TextStyle::footnote, QFont::DemiBold);
}

} // namespace

ConfirmationCapsule::ConfirmationCapsule(const QString& message, QWidget* parent) : QLabel(message, parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::NoFocus);
  hide();
  m_presence.setStartValue(0.0);
  m_presence.setEndValue(1.0);
  m_presence.setEasingCurve(Motion::curve());
  connect(&m_presence, &QVariantAnimation::valueChanged, this, [this] { update(); });
  connect(&m_presence, &QVariantAnimation::finished, this, [this] { setVisible(m_isShown); });
}

void ConfirmationCapsule::setShown(bool shown) {
  if (shown == m_isShown)
    return;
  m_isShown = shown;
  if (shown) {
    show();
    raise();
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
  }
  m_presence.setDirection(shown ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
  m_presence.setDuration(static_cast<int>(Motion::duration(this).count()));
  m_presence.start();
}

QSize ConfirmationCapsule::sizeHint() const {
  const QFontMetrics metrics(capsuleFont());
  return {metrics.horizontalAdvance(text()) + 2 * horizontalPadding, metrics.height() + 2 * verticalPadding};
}

void ConfirmationCapsule::paintEvent(QPaintEvent*) {
  const double presence = m_presence.currentValue().toDouble();
  const double scale = smallestScale + (1 - smallestScale) * presence;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(presence);
  painter.translate(width() / 2.0, height() / 2.0);
  painter.scale(scale, scale);
  const QRectF capsule =
      QRectF(-width() / 2.0, -height() / 2.0, width(), height()).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(palette().color(ThemeRole::outline));
  painter.setBrush(palette().color(ThemeRole::pressed));
  painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
  painter.setPen(palette().color(ThemeRole::primaryText));
  painter.setFont(capsuleFont());
  painter.drawText(capsule, Qt::AlignCenter, text());
}

} // namespace notlet
