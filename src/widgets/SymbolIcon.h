#pragma once

#include <QIcon>
#include <QWidget>

namespace notlet {

/// The symbols drawn for this program, one SVG each in resources/icons.
enum class Symbol {
  archivebox,
  arrowUpCircleFill,
  checkmark,
  checkmarkCircleFill,
  circleCircle,
  ellipsisCircle,
  externaldriveBadgeExclamationmark,
  keyboard,
  macwindow,
  magnifyingglass,
  mic,
  micFill,
  paintpalette,
  pencil,
  plus,
  squareAndArrowDown,
  squareAndArrowUp,
  squareAndPencil,
  trash,
  xmarkCircleFill,
};

/// A symbol in one colour, `side` logical pixels square. Kept for the next call with the same values.
[[nodiscard]] QPixmap symbolPixmap(Symbol symbol, int side, const QColor& color, qreal devicePixelRatio);

/// Paints the symbol into the rectangle, crisp on the painter's device.
void paintSymbol(QPainter& painter, Symbol symbol, const QRect& rect, const QColor& color);

/// For menus and actions, which take a QIcon: in the given colour, dimmed when disabled.
[[nodiscard]] QIcon symbolQIcon(Symbol symbol, const QColor& color);

/// A symbol as a widget, in the colour of a palette role. Decoration only: assistive technology does not see
/// it.
class SymbolIcon : public QWidget {
  Q_OBJECT

 public:
  SymbolIcon(Symbol symbol, int side, QPalette::ColorRole role, QWidget* parent = nullptr);

  void setSymbol(Symbol symbol);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Symbol m_symbol;
  QPalette::ColorRole m_role;
};

} // namespace notlet
