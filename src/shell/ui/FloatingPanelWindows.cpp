#include "shell/ui/FloatingPanelWindows.h"

#include "shell/ui/MacFloatingBubbleView.h"

namespace notlet {

FloatingPanelWindows::FloatingPanelWindows(const Surroundings& surroundings, Contents contents,
                                           QObject* parent)
    : QObject(parent), m_surroundings(surroundings), m_contents(std::move(contents)) {
}

std::unique_ptr<RoundedWindow>& FloatingPanelWindows::slot(Content content) {
  return content == Content::bubble ? m_bubble : m_capture;
}

RoundedWindow& FloatingPanelWindows::window(Content content) {
  auto& made = slot(content);
  if (!made)
    made = content == Content::bubble ? makeBubbleWindow() : makeCaptureWindow();
  return *made;
}

// Of one size only, so that tiling desktops see that it is not for them.
std::unique_ptr<RoundedWindow> FloatingPanelWindows::makeWindow(QWidget* content,
                                                                const RoundedWindow::Shape& shape,
                                                                Qt::WindowFlags flags) const {
  const QSize size = content->size();
  auto window = std::make_unique<RoundedWindow>(m_surroundings.settings, m_surroundings.windowSystem, content,
                                                shape, flags);
  window->setBodySize(size);
  return window;
}

std::unique_ptr<RoundedWindow> FloatingPanelWindows::makeBubbleWindow() const {
  constexpr RoundedWindow::Shape circle{MacFloatingBubbleView::side / 2.0 - MacFloatingBubbleView::inset,
                                        MacFloatingBubbleView::inset, ThemeRole::surface, true};
  auto bubble = makeWindow(m_contents.makeBubble(), circle, Qt::WindowDoesNotAcceptFocus);
  bubble->setWindowTitle(QStringLiteral("Notlet Bubble"));
  bubble->setAttribute(Qt::WA_ShowWithoutActivating);
  return bubble;
}

std::unique_ptr<RoundedWindow> FloatingPanelWindows::makeCaptureWindow() {
  auto capture = makeWindow(m_contents.makeCapture(), {}, {});
  capture->setWindowTitle(QStringLiteral("Quick Notlet"));
  // It gets the keyboard when asked to, not by being shown.
  capture->setAttribute(Qt::WA_ShowWithoutActivating);
  connect(capture.get(), &RoundedWindow::closedByDesktop, this,
          &FloatingPanelWindows::captureClosedByDesktop);
  return capture;
}

RoundedWindow* FloatingPanelWindows::otherWindow() const {
  return m_content == Content::bubble ? m_capture.get() : m_bubble.get();
}

void FloatingPanelWindows::setFrame(const QRectF& frame, bool animated) {
  RoundedWindow& changed = window(m_content);
  changed.moveBody(m_surroundings.screens.toQt(frame).topLeft());
  const RoundedWindow* replaced = otherWindow();
  if (animated && replaced && replaced->isVisible())
    changed.openFrom(replaced->body());
}

QRectF FloatingPanelWindows::frame() const {
  const auto& current = m_content == Content::bubble ? m_bubble : m_capture;
  return current ? m_surroundings.screens.fromQt(current->body()) : QRectF();
}

void FloatingPanelWindows::orderFront() {
  RoundedWindow& shown = window(m_content);
  // Window managers forget what a hidden window asked for.
  if (!shown.isVisible())
    m_surroundings.windowSystem.putOnAllWorkspaces(shown.winId());
  shown.show();
  shown.raise();
  if (RoundedWindow* replaced = otherWindow())
    replaced->hide();
  else if (m_content == Content::bubble)
    QMetaObject::invokeMethod(this, &FloatingPanelWindows::prepareCapture, Qt::QueuedConnection);
}

void FloatingPanelWindows::prepareCapture() {
  if (!m_capture)
    window(Content::capture).prepare();
}

void FloatingPanelWindows::makeKeyAndOrderFront() {
  orderFront();
  m_surroundings.windowSystem.activate(window(m_content).winId());
}

void FloatingPanelWindows::orderOut() {
  for (const auto* shown : {&m_bubble, &m_capture})
    if (*shown)
      (*shown)->hide();
}

void FloatingPanelWindows::clearFirstResponder() {
  if (QWidget* focused = window(m_content).focusWidget())
    focused->clearFocus();
}

} // namespace notlet
