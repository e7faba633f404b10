#pragma once

#include "widgets/SymbolIcon.h"
#include "widgets/ThemedButton.h"

namespace notlet {

/// A button that is only a symbol: no border, a quiet ground under the pointer, a ring with keyboard focus.
class IconButton : public ThemedButton {
  Q_OBJECT

 public:
  enum class Shape { round, square };

  /// The name is what assistive technology says and what the tooltip shows.
  IconButton(Symbol symbol, const QString& name, QWidget* parent = nullptr);

  /// Also changes the tooltip.
  void setName(const QString& name);
  void setSymbol(Symbol symbol);
  [[nodiscard]] Symbol symbol() const { return m_symbol; }
  void setShape(Shape shape);
  /// Sides in logical pixels: of the symbol, and of the button around it.
  void setSides(int symbolSide, int buttonSide) { setSides(symbolSide, QSize(buttonSide, buttonSide)); }
  void setSides(int symbolSide, QSize buttonSize);
  /// Of a square button's ground, in logical pixels.
  void setCornerRadius(double radius);
  /// The palette role that the symbol is painted in; secondary text by default.
  void setRole(QPalette::ColorRole role);
  /// Filled with the accent: for a state that must not be overlooked, such as recording.
  void setProminent(bool prominent);

  /// On a ground tinted with the accent: the current one of several.
  void setSelected(bool selected);

  [[nodiscard]] QSize sizeHint() const override { return m_buttonSize; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] double radius() const;
  [[nodiscard]] QBrush ground() const;
  [[nodiscard]] QColor symbolColor() const;

  Symbol m_symbol;
  Shape m_shape = Shape::square;
  int m_symbolSide = 20;
  QSize m_buttonSize{32, 32};
  double m_cornerRadius = 8;
  QPalette::ColorRole m_role;
  bool m_isProminent = false;
  bool m_isSelected = false;
};

} // namespace notlet
