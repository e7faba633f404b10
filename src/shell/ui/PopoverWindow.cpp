#include "shell/ui/PopoverWindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

namespace notlet {

namespace {

/// The least that holds the content with all its text.
QSize sizeFor(const QWidget& content) {
  QSize size = content.minimumSize();
  size.setHeight(std::max(size.height(), content.heightForWidth(size.width())));
  return size.boundedTo(content.maximumSize());
}

} // namespace

PopoverWindow::PopoverWindow(AppSettings& settings, WindowSystem& windowSystem, QWidget* content)
    : RoundedWindow(settings, windowSystem, content, {}), m_content(content) {
  setWindowTitle(QStringLiteral("Quick Notlet"));
  fit();
  connect(&windowSystem, &WindowSystem::mousePressed, this, &PopoverWindow::handlePress);
}

void PopoverWindow::fit() {
  limitTo(*m_content);
  setBodySize(sizeFor(*m_content));
}

void PopoverWindow::standAt(const QPoint& position, const QRect& anchor) {
  m_anchor = anchor;
  moveBody(position);
}

void PopoverWindow::open() {
  windowSystem().watchMouse(true);
  show();
  activate();
}

void PopoverWindow::activate() {
  raise();
  windowSystem().activate(winId());
}

bool PopoverWindow::event(QEvent* event) {
  switch (event->type()) {
  case QEvent::WindowBlocked:
    m_isBlocked = true;
    break;
  case QEvent::WindowUnblocked:
    m_isBlocked = false;
    // The dialog had the keyboard, so the window gets it back.
    if (isVisible())
      activate();
    break;
  case QEvent::WindowDeactivate:
    if (!hasWindowOfItsOwn())
      closeBecause(CloseReason::deactivated);
    break;
  default:
    break;
  }
  return RoundedWindow::event(event);
}

void PopoverWindow::handlePress(const QPoint& position) {
  if (!body().contains(position) && !m_anchor.contains(position) && !hasWindowOfItsOwn())
    closeBecause(CloseReason::pressedElsewhere);
}

bool PopoverWindow::hasWindowOfItsOwn() const {
  return m_isBlocked || QApplication::activePopupWidget() != nullptr;
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    closeBecause(CloseReason::escape);
  else
    RoundedWindow::keyPressEvent(event);
}

// A window that is being hidden loses the activation, too; the first reason is the true one.
void PopoverWindow::closeBecause(CloseReason reason) {
  if (!isVisible() || m_reason)
    return;
  m_reason = reason;
  hide();
}

void PopoverWindow::closeEvent(QCloseEvent* event) {
  RoundedWindow::closeEvent(event);
  closeBecause(CloseReason::asked);
}

void PopoverWindow::hideEvent(QHideEvent* event) {
  RoundedWindow::hideEvent(event);
  // The desktop puts a window away for a while when it changes workspaces.
  if (event->spontaneous())
    return;
  windowSystem().watchMouse(false);
  Q_EMIT closed(std::exchange(m_reason, std::nullopt).value_or(CloseReason::asked));
}

} // namespace notlet
