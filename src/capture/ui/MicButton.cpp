#include "capture/ui/MicButton.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "widgets/SymbolIcon.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

/// Differences that nobody sees are not worth a new picture.
constexpr double leastStep = 0.02;
constexpr float outlineStrength = 0.5F;

QColor translucent(QColor color, float strength) {
  color.setAlphaF(strength);
  return color;
}

} // namespace

MicButton::MicButton(QWidget* parent) : ThemedButton(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setDictation(CaptureComposer::Dictation::off);
}

void MicButton::setSides(int symbolSide, int buttonSide) {
  m_symbolSide = symbolSide;
  m_buttonSide = buttonSide;
  updateGeometry();
  update();
}

void MicButton::setDictation(CaptureComposer::Dictation dictation) {
  m_dictation = dictation;
  m_level = 0;
  const QString name = isRecording() ? QStringLiteral("Stop dictation") : QStringLiteral("Start dictation");
  setAccessibleName(name);
  setToolTip(QStringLiteral("%1 (Control+M)").arg(name));
  update();
}

void MicButton::setLevel(double level) {
  if (!isRecording() || std::abs(level - m_level) < leastStep)
    return;
  m_level = std::clamp(level, 0.0, 1.0);
  update();
}

QColor MicButton::symbolColor() const {
  if (isRecording())
    return destructiveColor(palette());
  return palette().color(underMouse() ? ThemeRole::primaryText : ThemeRole::secondaryText);
}

void MicButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  prepare(painter);
  painter.setPen(Qt::NoPen);
  painter.setBrush(quietGround());
  painter.drawEllipse(rect());
  if (isRecording())
    paintLevel(painter, symbolColor());
  QRect symbolRect(0, 0, m_symbolSide, m_symbolSide);
  symbolRect.moveTo((width() - m_symbolSide) / 2, (height() - m_symbolSide) / 2);
  const bool isOff = m_dictation == CaptureComposer::Dictation::off;
  paintSymbol(painter, isOff ? Symbol::mic : Symbol::micFill, symbolRect, symbolColor());
  if (hasFocus())
    paintFocusRing(painter, rect(), width() / 2.0, palette());
}

// From the size of the symbol at silence to the whole button at the loudest.
void MicButton::paintLevel(QPainter& painter, const QColor& color) const {
  const QRectF whole = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  if (m_level > 0) {
    const double least = m_symbolSide / 2.0;
    const double radius = least + (whole.width() / 2 - least) * m_level;
    painter.setBrush(loudness(palette()));
    painter.drawEllipse(whole.center(), radius, radius);
  }
  painter.setPen(QPen(translucent(color, outlineStrength), 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(whole);
}

} // namespace notlet
