#include "shell/ui/WindowFrames.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>

namespace notlet {

namespace {

FrameTone toneOf(const AppTheme& theme) {
  if (theme.followsSystem)
    return FrameTone::desktop;
  return theme.isDark ? FrameTone::dark : FrameTone::light;
}

bool hasFrame(const QWindow& window) {
  return window.isTopLevel() && (window.type() == Qt::Window || window.type() == Qt::Dialog);
}

} // namespace

WindowFrames::WindowFrames(const AppSettings& settings, WindowSystem& windowSystem)
    : m_settings(settings), m_windowSystem(windowSystem) {
  qApp->installEventFilter(this);
  connect(&m_settings, &AppSettings::themeChanged, this, [this] {
    for (QWindow* window : QGuiApplication::topLevelWindows())
      if (window->handle() != nullptr)
        follow(*window);
  });
}

// Before the window is shown, so that its frame comes up as it stays.
bool WindowFrames::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::PlatformSurface && watched->isWindowType() &&
      static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() == QPlatformSurfaceEvent::SurfaceCreated)
    follow(*static_cast<QWindow*>(watched));
  return QObject::eventFilter(watched, event);
}

void WindowFrames::follow(QWindow& window) {
  if (hasFrame(window))
    m_windowSystem.setFrameTone(window.winId(), toneOf(m_settings.theme()));
}

} // namespace notlet
