#pragma once

#include <QAbstractButton>

namespace notlet {

/// What the buttons of the program have in common: Tab reaches them, a click leaves the keyboard where it is,
/// Return and Enter press them as Space does, and a ring shows the keyboard focus.
class ThemedButton : public QAbstractButton {
  Q_OBJECT

 public:
  explicit ThemedButton(QWidget* parent = nullptr);

  /// The stroke of the focus ring and the gap between it and what it surrounds, in logical pixels.
  static constexpr double ringWidth = 2;
  static constexpr double ringInset = 3.5;
  /// Paints a ring just inside the rectangle.
  static void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette);

  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

  /// Makes a painter ready for this button.
  void prepare(QPainter& painter) const;
  /// The quiet ground under the pointer or finger; nothing at rest.
  [[nodiscard]] QBrush quietGround() const;
};

} // namespace notlet
