#pragma once

#include <QWidget>

#include "themes/AppSettings.h"
#include "widgets/AppThemeContainer.h"

namespace notlet {

/// The program's main window: one content in the theme in force. Closing it hides it; the owner decides what
/// follows.
class MainWindow : public QWidget {
  Q_OBJECT

 public:
  /// Takes the content as its child.
  MainWindow(AppSettings& settings, QWidget* content);

  /// Shows the window, in front of all others and with the keyboard.
  void activate();

 Q_SIGNALS:
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
};

} // namespace notlet
