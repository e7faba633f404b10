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
  /// How far the pointer went since the last call, in whole logical pixels with y growing upward, and whether
  /// the drag is over.
  using OnDrag = std::function<void(QPointF movement, bool hasEnded)>;

  /// The width and height, and what stays free of it along the edges.
  static constexpr int side = 64;
  static constexpr int inset = 1;

  MacFloatingBubbleView(std::function<void()> onExpand, OnDrag onDrag, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {side, side}; }

 protected:
  void hideEvent(QHideEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void letGo();

  OnDrag m_onDrag;
  bool m_isHeld = false;
  bool m_didDrag = false;
  /// Where the pointer was last, on the screen.
  QPoint m_last;
};

} // namespace notlet
