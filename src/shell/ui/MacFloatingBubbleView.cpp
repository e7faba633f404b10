#include "shell/ui/MacFloatingBubbleView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWindow>
#include <array>
#include <utility>

#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr double dotRadius = 5;
/// From the middle of the bubble to those of its dots, y downward.
constexpr std::array dotOffsets = {std::pair(0, -14), std::pair(-14, 0), std::pair(0, 0)};

} // namespace

MacFloatingBubbleView::MacFloatingBubbleView(Mover mover, std::function<void()> onExpand, OnDrag onDrag,
                                             QWidget* parent)
    : ThemedButton(parent), m_mover(mover), m_onDrag(std::move(onDrag)) {
  setFixedSize(side, side);
  setFocusPolicy(Qt::NoFocus);
  setCursor(Qt::OpenHandCursor);
  setAccessibleName(QStringLiteral("Open Quick Notlet"));
  setAccessibleDescription(QStringLiteral("Drag to move"));
  connect(this, &QAbstractButton::clicked, this, [expand = std::move(onExpand)] { expand(); });
}

void MacFloatingBubbleView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton)
    return;
  m_isHeld = true;
  m_didDrag = false;
  m_last = event->globalPosition().toPoint();
  setDown(true);
}

void MacFloatingBubbleView::mouseMoveEvent(QMouseEvent* event) {
  if (!m_isHeld)
    return;
  if (m_mover == Mover::windowSystem) {
    // It keeps the rest of the gesture to itself.
    letGo();
    window()->windowHandle()->startSystemMove();
    return;
  }
  if (!m_didDrag)
    setCursor(Qt::ClosedHandCursor);
  m_didDrag = true;
  setDown(false);
  // Whole pixels only, because windows stand on whole pixels and halves would add up.
  const QPoint position = event->globalPosition().toPoint();
  const QPoint movement = position - std::exchange(m_last, position);
  m_onDrag(QPointF(movement.x(), -movement.y()), false);
}

void MacFloatingBubbleView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !m_isHeld)
    return;
  const bool wasDrag = m_didDrag;
  letGo();
  if (wasDrag)
    m_onDrag(QPointF(), true);
  else
    click();
}

// The window may be taken away while the button is held.
void MacFloatingBubbleView::hideEvent(QHideEvent* event) {
  letGo();
  ThemedButton::hideEvent(event);
}

void MacFloatingBubbleView::letGo() {
  m_isHeld = false;
  m_didDrag = false;
  setDown(false);
  setCursor(Qt::OpenHandCursor);
}

void MacFloatingBubbleView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  prepare(painter);
  const QBrush touched = quietGround();
  painter.setBrush(touched == QBrush(Qt::NoBrush) ? palette().brush(ThemeRole::surface) : touched);
  painter.setPen(QPen(palette().color(ThemeRole::outline), 1));
  constexpr double edge = inset + 0.5;
  painter.drawEllipse(QRectF(rect()).adjusted(edge, edge, -edge, -edge));

  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(ThemeRole::primaryText));
  const QPointF middle = QRectF(rect()).center();
  for (const auto& [x, y] : dotOffsets)
    painter.drawEllipse(middle + QPointF(x, y), dotRadius, dotRadius);
}

} // namespace notlet
