#pragma once

#include <QPointF>
#include <functional>

#include "widgets/ThemedButton.h"

namespace notlet {

/// The round button of bubble mode: a click expands it, anything more drags it. The keyboard never goes to
/// it, but assistive technology can press it.
class MacFloatingBubbleView : public ThemedButton {
  Q_OBJECT

 public:
  /// Who moves the window.
  enum class Mover {
    /// The program does, by as much as the pointer moves.
    program,
    /// The window system does, for want of a program that may place its windows; nobody is told where it
    /// went.
    windowSystem,
  };
  /// How far the pointer went since the last call, in whole logical pixels with y growing upward, and whether
  /// the drag is over.
  using OnDrag = std::function<void(QPointF movement, bool hasEnded)>;

  /// The width and height, and what stays free of it along the edges.
  static constexpr int side = 64;
  static constexpr int inset = 1;

  MacFloatingBubbleView(Mover mover, std::function<void()> onExpand, OnDrag onDrag,
                        QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {side, side}; }

 protected:
  void hideEvent(QHideEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void letGo();

  Mover m_mover;
  OnDrag m_onDrag;
  bool m_isHeld = false;
  bool m_didDrag = false;
  /// Where the pointer was last, on the screen.
  QPoint m_last;
};

} // namespace notlet
