#pragma once

#include "widgets/ThemedButton.h"

namespace notlet {

/// A button that shows the colour that it lets one choose.
class ColorWell : public ThemedButton {
  Q_OBJECT

 public:
  /// The name is what assistive technology says.
  explicit ColorWell(const QString& name, QWidget* parent = nullptr);

  void setColor(const QColor& color);
  [[nodiscard]] const QColor& color() const { return m_color; }
  [[nodiscard]] QSize sizeHint() const override { return {52, 28}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor m_color;
};

} // namespace notlet
