#include "shell/MacFloatingPanelController.h"

namespace notlet {

MacFloatingPanelController::MacFloatingPanelController(const Surroundings& surroundings, QObject* parent)
    : QObject(parent), m_surroundings(surroundings), m_position(surroundings.defaults) {
  connect(&m_surroundings.screens, &Screens::changed, this, &MacFloatingPanelController::followScreens);
  setState(State::off);
}

MacFloatingPanelController::~MacFloatingPanelController() {
  setState(State::off);
}

void MacFloatingPanelController::enterFloatingMode() {
  if (isFloatingMode())
    return;
  setState(State::bubble);
  m_surroundings.panel.setContent(FloatingPanel::Content::bubble);
  appear();
}

void MacFloatingPanelController::exitFloatingMode() {
  if (!isFloatingMode())
    return;
  dropInput();
  disappear();
  setState(State::off);
}

void MacFloatingPanelController::expandCapture() {
  if (!isFloatingMode())
    return;
  setState(State::expanded);
  m_surroundings.panel.setContent(FloatingPanel::Content::capture);
  if (!m_isOnScreen)
    return;
  m_surroundings.panel.setFrame(currentFrame(geometry()), true);
  m_surroundings.panel.makeKeyAndOrderFront();
}

void MacFloatingPanelController::collapseCapture() {
  if (!isFloatingMode())
    return;
  dropInput();
  setState(State::bubble);
  m_surroundings.panel.setContent(FloatingPanel::Content::bubble);
  if (!m_isOnScreen)
    return;
  m_surroundings.panel.setFrame(currentFrame(geometry()), false);
  m_surroundings.panel.orderFront();
}

void MacFloatingPanelController::toggleCapture() {
  if (isExpanded())
    collapseCapture();
  else
    expandCapture();
}

void MacFloatingPanelController::returnToMainApp() {
  exitFloatingMode();
  Q_EMIT mainAppRequested();
}

void MacFloatingPanelController::dragBubble(const QPointF& movement, bool ended) {
  if (m_state != State::bubble)
    return;
  const FloatingGeometry screens = geometry();
  // Where the pointer has brought it, not where it is shown: the window follows late, and stops at edges that
  // the pointer passes, as at the seam of two screens.
  const QRectF moved = m_draggedFrame.value_or(m_surroundings.panel.frame()).translated(movement);
  const QRectF frame = screens.clamped(moved);
  m_surroundings.panel.setFrame(frame, false);
  m_draggedFrame = ended ? std::nullopt : std::optional(moved);
  if (ended)
    settleBubble(frame.center(), screens.screenContaining(moved));
}

void MacFloatingPanelController::captureDragEnded() {
  if (m_state != State::expanded)
    return;
  const FloatingGeometry screens = geometry();
  const QRectF moved = m_surroundings.panel.frame();
  const QRectF frame = screens.clamped(moved);
  if (frame != moved)
    m_surroundings.panel.setFrame(frame, false);
  settleBubble(FloatingGeometry::bubbleCenterIn(frame), screens.screenContaining(moved));
}

void MacFloatingPanelController::followScreens() {
  if (!isFloatingMode())
    return;
  m_draggedFrame.reset();
  const FloatingGeometry screens = geometry();
  if (!screens.hasScreen())
    return disappear();
  if (!m_isOnScreen)
    return appear();
  const QRectF frame = currentFrame(screens);
  m_surroundings.panel.setFrame(frame, false);
  if (m_state == State::bubble)
    settleBubble(frame.center(), screens.screenContaining(frame));
}

// An expanded panel that comes back with a screen does not take the keyboard either: nobody asked for it now.
void MacFloatingPanelController::appear() {
  const FloatingGeometry screens = geometry();
  const std::optional<QPointF> center = m_position.restoredBubbleCenter(screens);
  if (!center)
    return;
  m_bubbleCenter = *center;
  m_isOnScreen = true;
  m_surroundings.panel.setFrame(currentFrame(screens), false);
  m_surroundings.panel.orderFront();
}

void MacFloatingPanelController::disappear() {
  m_isOnScreen = false;
  m_surroundings.panel.orderOut();
}

void MacFloatingPanelController::dropInput() {
  m_surroundings.notificationCenter.post(CommandName::stopMacFloatingCapture);
  m_surroundings.panel.clearFirstResponder();
}

QRectF MacFloatingPanelController::currentFrame(const FloatingGeometry& geometry) const {
  return isExpanded() ? geometry.captureFrameAnchoredAt(m_bubbleCenter)
                      : geometry.bubbleFrameAt(m_bubbleCenter);
}

void MacFloatingPanelController::settleBubble(const QPointF& center,
                                              const std::optional<ScreenArea>& screen) {
  m_bubbleCenter = center;
  if (screen)
    m_position.persistBubblePosition(center, *screen);
}

void MacFloatingPanelController::setState(State state) {
  m_state = state;
  m_draggedFrame.reset();
  m_surroundings.coordinator.floatingCaptureExpanded = isExpanded();
}

} // namespace notlet
