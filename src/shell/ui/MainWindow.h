#pragma once

#include <QMainWindow>

#include "themes/AppSettings.h"
#include "widgets/AppThemeContainer.h"
#include "widgets/NoticeBar.h"

namespace notlet {

/// The program's main window: one content in the theme in force. Closing it hides it; the owner decides what
/// follows.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// Takes the content as its child.
  MainWindow(AppSettings& settings, QWidget* content);

  /// Shows the window, in front of all others and with the keyboard.
  void activate();
  /// A message above the content; an empty one takes it away.
  void setNotice(const QString& text);

 Q_SIGNALS:
  void closed();
  void noticeDismissed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  NoticeBar* m_notice;
};

} // namespace notlet
