#pragma once

#include <QLabel>
#include <QPointer>
#include <QWidget>

#include "themes/ThemeBrowser.h"
#include "themes/ui/CustomThemeEditor.h"
#include "themes/ui/ThemeList.h"
#include "widgets/Alert.h"
#include "widgets/IconButton.h"
#include "widgets/SearchField.h"

namespace notlet {

/// The screen on which a theme is found, applied, made, shared and deleted. Each has rules of its own: what
/// one is searching for is no matter of another.
class ThemeSettingsView : public QWidget {
  Q_OBJECT

 public:
  /// The surroundings must outlive the view.
  explicit ThemeSettingsView(const ThemeBrowser::Surroundings& surroundings, QWidget* parent = nullptr);

  [[nodiscard]] ThemeBrowser& browser() { return m_browser; }
  [[nodiscard]] ThemeList& list() { return *m_list; }
  /// Gives the keyboard to the search field.
  void focusSearch();
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void layOut();
  void connectHandlers();
  void render();
  void renderList();
  void renderFocus();
  [[nodiscard]] QWidget* keyboardWidget();
  void takeLostKeyboard(bool isInSearch);
  void renderEditor();
  void renderAlert(QPointer<Alert>& alert, const std::optional<std::string>& message, const QString& title,
                   void (ThemeBrowser::*dismiss)());
  void openOptions();

  ThemeBrowser m_browser;
  SearchField* m_search;
  IconButton* m_options;
  ThemeList* m_list;
  QLabel* m_nothingFound;
  QPointer<CustomThemeEditor> m_editor;
  QPointer<Alert> m_importAlert;
  QPointer<Alert> m_exportAlert;
};

} // namespace notlet
