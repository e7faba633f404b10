#pragma once

#include <QObject>

#include "platform/WindowSystem.h"
#include "themes/AppSettings.h"

class QWindow;

namespace notlet {

/// Keeps the frames of all windows and dialogs in the tone of the theme in force; in that of the desktop,
/// when the theme is.
class WindowFrames : public QObject {
  Q_OBJECT

 public:
  /// Both must outlive this object.
  WindowFrames(const AppSettings& settings, WindowSystem& windowSystem);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void follow(QWindow& window);

  const AppSettings& m_settings;
  WindowSystem& m_windowSystem;
};

} // namespace notlet
