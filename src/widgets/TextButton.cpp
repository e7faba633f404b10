#include "widgets/TextButton.h"

#include <QPainter>
#include <QStyle>

#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr double radius = 9;
constexpr int symbolGap = 5;

} // namespace

TextButton::TextButton(const QString& text, Look look, QWidget* parent) : ThemedButton(parent), m_look(look) {
  setText(text);
  setFont(textFont(isBorderless() ? TextStyle::subheadline : TextStyle::body, QFont::Medium));
  setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

TextButton::TextButton(Symbol symbol, const QString& text, Look look, QWidget* parent)
    : TextButton(text, look, parent) {
  m_symbol = symbol;
}

bool TextButton::isBorderless() const {
  return m_look == Look::borderless || m_look == Look::borderlessDestructive;
}

int TextButton::symbolSide() const {
  return fontMetrics().height();
}

int TextButton::contentWidth() const {
  const int textWidth = fontMetrics().horizontalAdvance(text());
  return m_symbol ? symbolSide() + symbolGap + textWidth : textWidth;
}

QSize TextButton::sizeHint() const {
  const int sidePadding = isBorderless() ? 8 : 16;
  const int padding = isBorderless() ? 4 : 7;
  return {contentWidth() + 2 * sidePadding, fontMetrics().height() + 2 * padding};
}

QColor TextButton::textColor() const {
  switch (m_look) {
  case Look::primary:
    return palette().color(ThemeRole::onAccent);
  case Look::destructive:
  case Look::borderlessDestructive:
    return destructiveColor(palette());
  case Look::standard:
  case Look::borderless:
    break;
  }
  return palette().color(ThemeRole::primaryText);
}

void TextButton::paintGround(QPainter& painter) const {
  QRectF ground = rect();
  painter.setPen(Qt::NoPen);
  if (isBorderless()) {
    painter.setBrush(quietGround());
  } else if (m_look == Look::primary) {
    const QColor accent = palette().color(ThemeRole::accent);
    const bool isTouched = isDown() || (isEnabled() && underMouse());
    painter.setBrush(isTouched ? touchedGround(accent, textColor(), isDown() ? 0.2 : 0.1) : accent);
  } else {
    painter.setPen(QPen(palette().color(ThemeRole::outline), 1));
    painter.setBrush(quietGround() == QBrush(Qt::NoBrush) ? palette().brush(ThemeRole::surface)
                                                          : quietGround());
    ground.adjust(0.5, 0.5, -0.5, -0.5);
  }
  if (hasFocus()) {
    painter.setPen(Qt::NoPen);
    ground = QRectF(rect()).adjusted(ringInset, ringInset, -ringInset, -ringInset);
  }
  const double corner = hasFocus() ? radius - ringInset : radius;
  painter.drawRoundedRect(ground, corner, corner);
}

void TextButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  prepare(painter);
  paintGround(painter);
  if (hasFocus())
    paintFocusRing(painter, rect(), radius, palette());

  QRect content(0, 0, contentWidth(), fontMetrics().height());
  content.moveTo((width() - content.width()) / 2, (height() - content.height()) / 2);
  if (m_symbol) {
    QRect symbolRect = content;
    symbolRect.setWidth(symbolSide());
    const auto placed = QStyle::visualRect(layoutDirection(), content, symbolRect);
    paintSymbol(painter, *m_symbol, placed, textColor());
    symbolRect = content.adjusted(symbolSide() + symbolGap, 0, 0, 0);
    content = QStyle::visualRect(layoutDirection(), content, symbolRect);
  }
  painter.setPen(textColor());
  painter.drawText(content, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, text());
}

} // namespace notlet
