#include "platform/linux/QtWindowSystem.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

namespace notlet {

void QtWindowSystem::activate(WindowID id) {
  const auto windows = QGuiApplication::allWindows();
  const auto found = std::ranges::find_if(
      windows, [id](const QWindow* window) { return window->handle() != nullptr && window->winId() == id; });
  if (found != windows.end())
    (*found)->requestActivate();
}

// Qt takes it from the environment for the next activation.
void QtWindowSystem::noteActivationToken(const std::string& token) {
  if (!token.empty())
    qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token));
}

} // namespace notlet
