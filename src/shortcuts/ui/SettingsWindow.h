#pragma once

#include <QPointer>
#include <QWidget>

#include "shortcuts/SettingsScreen.h"
#include "themes/AppSettings.h"
#include "widgets/Alert.h"
#include "widgets/AppThemeContainer.h"

namespace notlet {

/// The window around the settings, in the theme in force, with the messages that come up over it.
class SettingsWindow : public QWidget {
  Q_OBJECT

 public:
  /// Takes the content as its child; everything else must outlive the window.
  SettingsWindow(AppSettings& themes, SettingsScreen& screen, ShortcutSettingsDraft& draft, QWidget* content);

  /// Brings the window in front of all others. The keyboard is for the window system to give.
  void reveal();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void render();
  void renderMessage();
  void renderQuestion();
  [[nodiscard]] QWidget* framed(QWidget* content);

  AppSettings& m_themes;
  SettingsScreen& m_screen;
  ShortcutSettingsDraft& m_draft;
  AppThemeContainer* m_container;
  QPointer<Alert> m_message;
  QPointer<Alert> m_question;
};

} // namespace notlet
