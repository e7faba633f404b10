#pragma once

#include <optional>

#include "widgets/SymbolIcon.h"
#include "widgets/ThemedButton.h"

namespace notlet {

/// A button with a text and maybe a symbol before it, in one of a few looks.
class TextButton : public ThemedButton {
  Q_OBJECT

 public:
  enum class Look {
    /// Filled with the accent: what one most likely wants.
    primary,
    /// A surface with an outline.
    standard,
    /// Text alone until the pointer is over it.
    borderless,
    /// As standard, in red.
    destructive,
    /// As borderless, in red.
    borderlessDestructive,
  };

  TextButton(const QString& text, Look look, QWidget* parent = nullptr);
  TextButton(Symbol symbol, const QString& text, Look look, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] bool isBorderless() const;
  [[nodiscard]] int symbolSide() const;
  [[nodiscard]] int contentWidth() const;
  [[nodiscard]] QColor textColor() const;
  void paintGround(QPainter& painter) const;

  std::optional<Symbol> m_symbol;
  Look m_look;
};

} // namespace notlet
