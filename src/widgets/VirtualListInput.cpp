// What the user does to a VirtualListView.

#include "widgets/VirtualListView.h"

#include <QAbstractSlider>
#include <QApplication>
#include <QKeyEvent>
#include <cmath>

#include "widgets/VirtualListAccessible.h"

namespace notlet {

void VirtualListView::wheelEvent(QWheelEvent* event) {
  const double perNotch = QApplication::wheelScrollLines() * singleStep;
  const auto pixels = [&](int exact, int angle) { return exact != 0 ? exact : angle * perNotch / 120.0; };
  double sideways = -pixels(event->pixelDelta().x(), event->angleDelta().x());
  double down = -pixels(event->pixelDelta().y(), event->angleDelta().y());
  if (event->modifiers() & Qt::ShiftModifier)
    sideways += std::exchange(down, 0.0);
  event->accept();
  if (std::abs(sideways) > std::abs(down)) {
    const QPoint position = event->position().toPoint();
    if (const VisibleRow* visible = visibleAt(position))
      Q_EMIT sidewaysScrolled(visible->row, position - visible->rect.topLeft(), static_cast<int>(sideways));
    return;
  }
  // Fine wheels and touchpads send less than a pixel at a time.
  m_wheelRest += down;
  const double whole = std::trunc(m_wheelRest);
  m_wheelRest -= whole;
  if (whole != 0)
    scrollBy(static_cast<int>(whole));
}

void VirtualListView::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() & ~Qt::KeypadModifier)
    return event->ignore();
  switch (event->key()) {
  case Qt::Key_PageDown:
    return takeScrollAction(QAbstractSlider::SliderPageStepAdd);
  case Qt::Key_PageUp:
    return takeScrollAction(QAbstractSlider::SliderPageStepSub);
  case Qt::Key_Home:
    stopGlide();
    return moveTo({});
  case Qt::Key_End:
    stopGlide();
    return moveToEnd();
  default:
    event->ignore();
  }
}

void VirtualListView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    m_pressed = event->position().toPoint();
}

void VirtualListView::mouseMoveEvent(QMouseEvent* event) {
  m_pointer = event->position().toPoint();
  updateHover();
}

void VirtualListView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !m_pressed)
    return;
  const QPoint position = event->position().toPoint();
  const VisibleRow* visible = visibleAt(position);
  const bool isClick = visible != nullptr && visible == visibleAt(*m_pressed) &&
                       (position - *m_pressed).manhattanLength() < QApplication::startDragDistance();
  m_pressed.reset();
  if (isClick)
    Q_EMIT rowClicked(visible->row, position - visible->rect.topLeft());
}

void VirtualListView::updateHover() {
  const auto hovered = m_pointer ? rowAt(*m_pointer) : std::nullopt;
  if (hovered == m_hoveredRow)
    return;
  m_hoveredRow = hovered;
  viewport()->update();
}

bool VirtualListView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) {
    m_pointer.reset();
    updateHover();
  }
  if (event->type() == QEvent::LayoutRequest) {
    if (m_widget)
      renewWidgetHeight();
    return true;
  }
  return QAbstractScrollArea::viewportEvent(event);
}

bool VirtualListView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_widget && event->type() == QEvent::Enter) {
    m_pointer.reset();
    updateHover();
  } else if (watched == m_widget && event->type() == QEvent::LayoutRequest) {
    renewWidgetHeight();
  }
  return QAbstractScrollArea::eventFilter(watched, event);
}

void VirtualListView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
  VirtualListAccessible::announceCurrentRow(this);
  Q_EMIT focusChanged(true);
}

void VirtualListView::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
  Q_EMIT focusChanged(false);
}

} // namespace notlet
