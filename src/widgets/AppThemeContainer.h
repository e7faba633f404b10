#pragma once

#include <QWidget>

#include "themes/AppSettings.h"

namespace notlet {

/// Wraps the content of a window and shows it in the theme in force: colours by palette, background to every
/// edge.
///
/// Dialogs, menus and other windows that belong to a widget inside take on the palette by themselves.
class AppThemeContainer : public QWidget {
  Q_OBJECT

 public:
  /// Takes the content as its child. The settings must outlive the container.
  AppThemeContainer(AppSettings& settings, QWidget* content, QWidget* parent = nullptr);

  [[nodiscard]] QWidget* content() const { return m_content; }
  [[nodiscard]] const AppTheme& theme() const { return m_settings.theme(); }

  /// The theme that a widget is shown in: that of the container around it, else "system". The widget learns
  /// of another theme by QEvent::PaletteChange.
  [[nodiscard]] static const AppTheme& themeOf(const QWidget* widget);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// Also looks beyond the window that the widget is in.
  [[nodiscard]] static const AppThemeContainer* around(const QWidget* widget);
  void adopt(QWidget* widget);
  void applyTheme();

  AppSettings& m_settings;
  QWidget* m_content;
};

} // namespace notlet
