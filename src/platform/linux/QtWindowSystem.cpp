#include "platform/linux/QtWindowSystem.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

namespace notlet {

namespace {

constexpr const char* activationToken = "XDG_ACTIVATION_TOKEN";

/// A Wayland compositor gives the keyboard to a window that appears, but leaves one that is there where it is
/// unless it is told of something that the user did.
bool mustAppearAgain(const QWindow& window) {
  return QGuiApplication::platformName().startsWith(QStringLiteral("wayland")) && window.isExposed() &&
         !QGuiApplication::focusWindow() && qEnvironmentVariableIsEmpty(activationToken);
}

} // namespace

void QtWindowSystem::activate(WindowID id) {
  const auto windows = QGuiApplication::allWindows();
  const auto found = std::ranges::find_if(
      windows, [id](const QWindow* window) { return window->handle() != nullptr && window->winId() == id; });
  if (found == windows.end())
    return;
  QWindow* window = *found;
  if (mustAppearAgain(*window)) {
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
