#include "platform/linux/QtWindowSystem.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

namespace notlet {

namespace {

constexpr const char* activationToken = "XDG_ACTIVATION_TOKEN";

} // namespace

QtWindowSystem::QtWindowSystem() {
  if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
    qGuiApp->installEventFilter(this);
}

bool QtWindowSystem::eventFilter(QObject* receiver, QEvent* event) {
  if (event->type() == QEvent::Show)
    m_appeared.erase(receiver);
  else if (event->type() == QEvent::Expose)
    m_appeared.insert(receiver);
  return WindowSystem::eventFilter(receiver, event);
}

/// A Wayland compositor gives the keyboard to a window that appears, but leaves one that is there where it is
/// unless it is told of something that the user did.
bool QtWindowSystem::mustAppearAgain(const QWindow& window) const {
  return m_appeared.contains(&window) && !QGuiApplication::focusWindow() &&
         qEnvironmentVariableIsEmpty(activationToken);
}

void QtWindowSystem::activate(WindowID id) {
  const auto windows = QGuiApplication::allWindows();
  const auto found = std::ranges::find_if(
      windows, [id](const QWindow* window) { return window->handle() != nullptr && window->winId() == id; });
  if (found == windows.end())
    return;
  QWindow* window = *found;
  if (window->isVisible() && mustAppearAgain(*window)) {
    window->hide();
    window->show();
  }
  window->requestActivate();
}

// Qt takes it from the environment for the next activation.
void QtWindowSystem::noteActivationToken(const std::string& token) {
  if (!token.empty())
    qputenv(activationToken, QByteArray::fromStdString(token));
}

} // namespace notlet
