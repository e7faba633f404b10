#include "widgets/ControlPainting.h"

#include <QIcon>

#include "widgets/SymbolIcon.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet::ControlPainting {

namespace {

constexpr double boxRadius = 5;
constexpr double itemRadius = 6;
constexpr int iconSide = 16;
constexpr int itemPadding = 10;
constexpr int itemMargin = 4;

/// Gives the painter back as it was, and paints smoothly in between.
class Brushwork {
 public:
  explicit Brushwork(QPainter& painter) : m_painter(painter) {
    m_painter.save();
    m_painter.setRenderHint(QPainter::Antialiasing);
  }
  Brushwork(const Brushwork&) = delete;
  Brushwork& operator=(const Brushwork&) = delete;
  ~Brushwork() { m_painter.restore(); }

 private:
  QPainter& m_painter;
};

bool isTouched(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_MouseOver) && option.state.testFlag(QStyle::State_Enabled);
}

bool hasKeyboard(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_HasFocus);
}

void paintRounded(QPainter& painter, const QRect& rect, double radius, const QBrush& ground) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawRoundedRect(rect, radius, radius);
}

void paintOutlined(QPainter& painter, const QRect& rect, double radius, const QBrush& ground,
                   const QColor& outline) {
  painter.setPen(QPen(outline, 1));
  painter.setBrush(ground);
  painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

/// The ground of what is selected.
QColor tinted(const QPalette& palette) {
  return mixed(palette.color(ThemeRole::background), palette.color(ThemeRole::accent), selectedTint);
}

/// The ground of a control under the pointer or the finger.
QPalette::ColorRole groundOf(const QStyleOption& option, QPalette::ColorRole atRest) {
  if (option.state.testFlag(QStyle::State_Sunken))
    return ThemeRole::pressed;
  return isTouched(option) ? ThemeRole::hover : atRest;
}

void paintItemSymbol(QPainter& painter, const QStyleOptionMenuItem& item, const QRect& area,
                     const QColor& color) {
  QRect symbol(0, 0, iconSide, iconSide);
  symbol.moveCenter(area.center());
  if (item.checkType != QStyleOptionMenuItem::NotCheckable && item.checked)
    return paintSymbol(painter, Symbol::checkmark, symbol, color);
  const bool isEnabled = item.state.testFlag(QStyle::State_Enabled);
  item.icon.paint(&painter, symbol, Qt::AlignCenter, isEnabled ? QIcon::Normal : QIcon::Disabled);
}

void paintSeparator(QPainter& painter, const QStyleOptionMenuItem& item) {
  painter.fillRect(
      QRect(item.rect.left() + itemPadding, item.rect.center().y(), item.rect.width() - 2 * itemPadding, 1),
      item.palette.color(ThemeRole::separator));
}

} // namespace

void paintField(QPainter& painter, const QStyleOption& field) {
  const Brushwork brushwork(painter);
  paintOutlined(painter, field.rect, fieldRadius, field.palette.brush(ThemeRole::background),
                controlOutline(field.palette));
  if (hasKeyboard(field))
    ThemedButton::paintFocusRing(painter, field.rect, fieldRadius, field.palette);
}

void paintCheckBox(QPainter& painter, const QStyleOption& box) {
  const Brushwork brushwork(painter);
  constexpr int symbolMargin = 3;
  const bool isOn = box.state.testFlag(QStyle::State_On);
  const QPalette::ColorRole ground = groundOf(box, ThemeRole::background);
  paintOutlined(painter, box.rect, boxRadius, box.palette.brush(isOn ? ThemeRole::accent : ground),
                controlOutline(box.palette));
  if (isOn)
    paintSymbol(painter, Symbol::checkmark,
                box.rect.adjusted(symbolMargin, symbolMargin, -symbolMargin, -symbolMargin),
                box.palette.color(ThemeRole::onAccent));
}

void paintButton(QPainter& painter, const QStyleOption& button, bool isDefault) {
  const Brushwork brushwork(painter);
  const QPalette& palette = button.palette;
  if (isDefault)
    paintRounded(painter, button.rect, fieldRadius, palette.brush(ThemeRole::accent));
  else
    paintOutlined(painter, button.rect, fieldRadius, palette.brush(groundOf(button, ThemeRole::surface)),
                  palette.color(ThemeRole::outline));
  if (!hasKeyboard(button))
    return;
  if (isDefault) { // The ring has nearly the colour of the ground, so it keeps away from it.
    constexpr double gap = ThemedButton::ringInset;
    painter.fillRect(button.rect, palette.brush(ThemeRole::background));
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.brush(ThemeRole::accent));
    painter.drawRoundedRect(QRectF(button.rect).adjusted(gap, gap, -gap, -gap), fieldRadius - gap,
                            fieldRadius - gap);
  }
  ThemedButton::paintFocusRing(painter, button.rect, fieldRadius, palette);
}

void paintToolButton(QPainter& painter, const QStyleOption& button) {
  const Brushwork brushwork(painter);
  if (button.state.testFlag(QStyle::State_On))
    paintRounded(painter, button.rect, itemRadius, tinted(button.palette));
  else if (button.state.testFlag(QStyle::State_Sunken) || isTouched(button))
    paintRounded(painter, button.rect, itemRadius,
                 button.palette.brush(groundOf(button, ThemeRole::surface)));
  if (hasKeyboard(button))
    ThemedButton::paintFocusRing(painter, button.rect, itemRadius, button.palette);
}

void paintTab(QPainter& painter, const QStyleOption& tab) {
  const Brushwork brushwork(painter);
  const QRect rect = tab.rect.adjusted(2, 0, -2, 0);
  if (tab.state.testFlag(QStyle::State_Selected))
    paintRounded(painter, rect, fieldRadius, tinted(tab.palette));
  else if (isTouched(tab))
    paintRounded(painter, rect, fieldRadius, tab.palette.brush(ThemeRole::hover));
  if (hasKeyboard(tab))
    ThemedButton::paintFocusRing(painter, rect, fieldRadius, tab.palette);
}

void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item) {
  const Brushwork brushwork(painter);
  if (item.menuItemType == QStyleOptionMenuItem::Separator)
    return paintSeparator(painter, item);
  const QPalette& palette = item.palette;
  const bool isChosen =
      item.state.testFlag(QStyle::State_Selected) && item.state.testFlag(QStyle::State_Enabled);
  if (isChosen)
    paintOutlined(painter, item.rect, itemRadius, palette.brush(ThemeRole::hover),
                  palette.color(ThemeRole::focusRing));
  const QColor color = palette.color(ThemeRole::primaryText);
  QRect line = item.rect.adjusted(itemPadding, 0, -itemPadding, 0);
  const int symbolRoom = std::max(item.maxIconWidth, item.menuHasCheckableItems ? iconSide : 0);
  const auto placed = [&](const QRect& rect) { return QStyle::visualRect(item.direction, item.rect, rect); };
  if (symbolRoom > 0) {
    paintItemSymbol(painter, item, placed(QRect(line.left(), line.top(), iconSide, line.height())), color);
    line.setLeft(line.left() + iconSide + itemPadding);
  }
  if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
    paintChevron(painter, placed(QRect(line.right() - iconSide, line.top(), iconSide, line.height())),
                 item.direction == Qt::RightToLeft ? Qt::LeftArrow : Qt::RightArrow, color);
  const QStringList parts = item.text.split(u'\t');
  painter.setFont(item.font);
  painter.setPen(color);
  painter.drawText(placed(line), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic | Qt::TextSingleLine,
                   parts.front());
  if (parts.size() < 2)
    return;
  painter.setPen(palette.color(ThemeRole::secondaryText));
  painter.drawText(placed(line), Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine, parts.back());
}

void paintMenu(QPainter& painter, const QStyleOption& menu) {
  painter.fillRect(menu.rect, menu.palette.brush(ThemeRole::surface));
  painter.save();
  painter.setPen(menu.palette.color(ThemeRole::outline));
  painter.drawRect(menu.rect.adjusted(0, 0, -1, -1));
  painter.restore();
}

void paintHeader(QPainter& painter, const QStyleOption& header) {
  painter.fillRect(header.rect, header.palette.brush(ThemeRole::surface));
  painter.fillRect(QRect(header.rect.left(), header.rect.bottom(), header.rect.width(), 1),
                   header.palette.color(ThemeRole::separator));
}

void paintChevron(QPainter& painter, const QRect& area, Qt::ArrowType direction, const QColor& color) {
  const Brushwork brushwork(painter);
  constexpr double reach = 4;
  painter.translate(QRectF(area).center());
  switch (direction) {
  case Qt::UpArrow:
    painter.rotate(180);
    break;
  case Qt::LeftArrow:
    painter.rotate(90);
    break;
  case Qt::RightArrow:
    painter.rotate(-90);
    break;
  case Qt::DownArrow:
  case Qt::NoArrow:
    break;
  }
  painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolyline(QPolygonF{{-reach, -reach / 2}, {0, reach / 2}, {reach, -reach / 2}});
}

} // namespace notlet::ControlPainting
