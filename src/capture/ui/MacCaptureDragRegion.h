#pragma once

#include <QWidget>
#include <functional>
#include <optional>

namespace notlet {

/// The part of a window by which it is dragged. What lies on it gets no mouse events.
class MacCaptureDragRegion : public QWidget {
  Q_OBJECT

 public:
  /// Who moves the window.
  enum class Mover {
    /// The program does, by as much as the pointer moves.
    program,
    /// The window system does, for want of a program that may place its windows.
    windowSystem,
  };

  /// `onDragEnded` is called once for each press, when the drag is over; also when nothing moved.
  MacCaptureDragRegion(Mover mover, std::function<void()> onDragEnded, QWidget* parent = nullptr);

 protected:
  bool event(QEvent* event) override;
  void childEvent(QChildEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  enum class Drag { none, byProgram, byWindowSystem };

  /// Puts the window under the pointer, as long as the program is the one to move it.
  void moveWindow(const QPoint& pointer);
  void endDrag();

  Mover m_mover;
  std::function<void()> m_onDragEnded;
  Drag m_drag = Drag::none;
  /// Where the pointer holds the window, from the window's upper left corner.
  QPoint m_grip;
};

} // namespace notlet
