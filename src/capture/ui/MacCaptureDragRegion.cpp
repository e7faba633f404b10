#include "capture/ui/MacCaptureDragRegion.h"

#include <QChildEvent>
#include <QMouseEvent>
#include <QWindow>

namespace notlet {

MacCaptureDragRegion::MacCaptureDragRegion(Mover mover, std::function<void()> onDragEnded, QWidget* parent)
    : QWidget(parent), m_mover(mover), m_onDragEnded(std::move(onDragEnded)) {
  setCursor(Qt::OpenHandCursor);
}

void MacCaptureDragRegion::childEvent(QChildEvent* event) {
  if (event->added() && event->child()->isWidgetType())
    static_cast<QWidget*>(event->child())->setAttribute(Qt::WA_TransparentForMouseEvents);
  QWidget::childEvent(event);
}

void MacCaptureDragRegion::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton)
    return;
  m_grip = event->globalPosition().toPoint() - window()->pos();
  m_drag = Drag::byProgram;
  if (m_mover == Mover::windowSystem && window()->windowHandle()->startSystemMove())
    m_drag = Drag::byWindowSystem;
  setCursor(Qt::ClosedHandCursor);
}

void MacCaptureDragRegion::mouseMoveEvent(QMouseEvent* event) {
  moveWindow(event->globalPosition().toPoint());
}

void MacCaptureDragRegion::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton)
    return;
  // The window may have been told in the meantime of a place that it had left.
  moveWindow(event->globalPosition().toPoint());
  endDrag();
}

void MacCaptureDragRegion::moveWindow(const QPoint& pointer) {
  if (m_drag == Drag::byProgram)
    window()->move(pointer - m_grip);
}

// The window system keeps the release to itself; the pointer comes back once it is done.
bool MacCaptureDragRegion::event(QEvent* event) {
  if (event->type() == QEvent::Enter && m_drag == Drag::byWindowSystem)
    endDrag();
  return QWidget::event(event);
}

void MacCaptureDragRegion::hideEvent(QHideEvent* event) {
  endDrag();
  QWidget::hideEvent(event);
}

void MacCaptureDragRegion::endDrag() {
  if (m_drag == Drag::none)
    return;
  m_drag = Drag::none;
  setCursor(Qt::OpenHandCursor);
  m_onDragEnded();
}

} // namespace notlet
