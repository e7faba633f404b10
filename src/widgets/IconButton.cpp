#include "widgets/IconButton.h"

#include <QPainter>

#include "widgets/ThemePalette.h"

namespace notlet {

IconButton::IconButton(Symbol symbol, const QString& name, QWidget* parent)
    : ThemedButton(parent), m_symbol(symbol), m_role(ThemeRole::secondaryText) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setName(name);
}

void IconButton::setName(const QString& name) {
  setAccessibleName(name);
  setToolTip(name);
}

void IconButton::setSymbol(Symbol symbol) {
  m_symbol = symbol;
  update();
}

void IconButton::setShape(Shape shape) {
  m_shape = shape;
  update();
}

void IconButton::setSides(int symbolSide, QSize buttonSize) {
  m_symbolSide = symbolSide;
  m_buttonSize = buttonSize;
  updateGeometry();
  update();
}

void IconButton::setCornerRadius(double radius) {
  m_cornerRadius = radius;
  update();
}

void IconButton::setSelected(bool selected) {
  m_isSelected = selected;
  update();
}

void IconButton::setRole(QPalette::ColorRole role) {
  m_role = role;
  update();
}

void IconButton::setProminent(bool prominent) {
  m_isProminent = prominent;
  update();
}

double IconButton::radius() const {
  return m_shape == Shape::round ? width() / 2.0 : m_cornerRadius;
}

QBrush IconButton::ground() const {
  if (m_isProminent)
    return palette().brush(ThemeRole::accent);
  if (!m_isSelected)
    return quietGround();
  QColor tint = palette().color(ThemeRole::accent);
  tint.setAlphaF(static_cast<float>(selectedTint));
  return tint;
}

QColor IconButton::symbolColor() const {
  if (m_isProminent)
    return palette().color(ThemeRole::onAccent);
  if (m_isSelected)
    return palette().color(ThemeRole::primaryText);
  // What can be pressed comes forward under the pointer.
  const bool isQuiet = m_role == ThemeRole::secondaryText && isEnabled() && underMouse();
  return palette().color(isQuiet ? ThemeRole::primaryText : m_role);
}

void IconButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  prepare(painter);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground());
  const double inset = hasFocus() && m_isProminent ? ringInset : 0;
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius() - inset,
                          radius() - inset);
  QRect symbolRect(0, 0, m_symbolSide, m_symbolSide);
  symbolRect.moveTo((width() - m_symbolSide) / 2, (height() - m_symbolSide) / 2);
  paintSymbol(painter, m_symbol, symbolRect, symbolColor());
  if (hasFocus())
    paintFocusRing(painter, rect(), radius(), palette());
}

} // namespace notlet
