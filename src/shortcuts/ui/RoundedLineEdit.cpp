#include "shortcuts/ui/RoundedLineEdit.h"

#include <QPainter>
#include <QStyleOptionFrame>

#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr double radius = 9;

} // namespace

RoundedLineEdit::RoundedLineEdit(QWidget* parent) : QLineEdit(parent) {
  setFrame(false);
  setFont(textFont(TextStyle::body));
  constexpr int sidePadding = 8;
  constexpr int padding = 5;
  setTextMargins(sidePadding, padding, sidePadding, padding);
}

// The ground is painted here; the style would fill its corners.
void RoundedLineEdit::initStyleOption(QStyleOptionFrame* option) const {
  QLineEdit::initStyleOption(option);
  option->palette.setBrush(QPalette::Base, Qt::transparent);
}

void RoundedLineEdit::paintEvent(QPaintEvent* event) {
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(ThemeRole::outline), 1));
    painter.setBrush(palette().brush(ThemeRole::background));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    if (hasFocus())
      ThemedButton::paintFocusRing(painter, rect(), radius, palette());
  }
  QLineEdit::paintEvent(event);
}

} // namespace notlet
