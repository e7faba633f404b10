#pragma once

#include <QMainWindow>

#include "themes/AppSettings.h"
#include "widgets/AppThemeContainer.h"
#include "widgets/NoticeBar.h"

namespace notlet {

/// The program's main window: one content in the theme in force. It does not close by itself: the owner
/// decides.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// Takes the content as its child.
  MainWindow(AppSettings& settings, QWidget* content);

  /// Shows the window in front of all others, where it was before unless no screen is there any more. The
  /// keyboard is for the window system to give.
  void reveal();
  /// Moves the window, if it is shown, off the place of a screen that is gone.
  void keepWithinReach();
  /// A message above the content; an empty one takes it away.
  void setNotice(const QString& text);

 Q_SIGNALS:
  /// The user wants the window away.
  void closeRequested();
  void noticeDismissed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  [[nodiscard]] QRect geometryWithinReach() const;

  NoticeBar* m_notice;
};

} // namespace notlet
