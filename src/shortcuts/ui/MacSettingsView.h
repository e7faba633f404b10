#pragma once

#include <QStackedWidget>
#include <QWidget>
#include <array>

#include "shortcuts/SettingsScreen.h"
#include "widgets/SymbolIcon.h"
#include "widgets/ThemedButton.h"

namespace notlet {

/// A tab to choose: a symbol and a word, tinted while its page is shown.
class SettingsTabButton : public ThemedButton {
  Q_OBJECT

 public:
  SettingsTabButton(Symbol symbol, const QString& title, QWidget* parent = nullptr);

  void setSelected(bool isSelected);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Symbol m_symbol;
  bool m_isSelected = false;
};

/// The content of the settings window: a tab for the themes and one for the shortcuts.
class MacSettingsView : public QWidget {
  Q_OBJECT

 public:
  /// Takes the pages as its children. The screen must outlive the view.
  MacSettingsView(SettingsScreen& screen, QWidget* themes, QWidget* shortcuts, QWidget* parent = nullptr);

 private:
  void render();

  SettingsScreen& m_screen;
  QStackedWidget* m_pages;
  /// In the order of SettingsScreen::Tab.
  std::array<SettingsTabButton*, 2> m_tabs;
};

} // namespace notlet
