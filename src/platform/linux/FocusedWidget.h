#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

#include "platform/FocusedControl.h"

namespace notlet {

/// The widget of the active window that has the keyboard focus. Those that take text are line edits, text
/// edits and what is made of them, such as spin boxes.
class FocusedWidget final : public FocusedControl {
 public:
  [[nodiscard]] bool isTextInputFocused() const override;
  [[nodiscard]] bool isButtonFocused() const override;
  [[nodiscard]] Window window() const override;
  void clearFocus() override;
  [[nodiscard]] bool hasOwnSearch() const override { return searchOnShow() != nullptr; }
  void focusOwnSearch() override;

  /// Until it is told, every window counts as the main one.
  void setMainWindow(const QWidget* window) { m_mainWindow = window; }
  void setSettingsWindow(const QWidget* window) { m_settingsWindow = window; }
  /// What gives the keyboard to the search of a screen, for as long as that lives.
  void addSearch(const QWidget* screen, std::function<void()> focus);

 private:
  struct Search {
    QPointer<const QWidget> screen;
    std::function<void()> focus;
  };

  [[nodiscard]] const Search* searchOnShow() const;

  QPointer<const QWidget> m_mainWindow;
  QPointer<const QWidget> m_settingsWindow;
  std::vector<Search> m_searches;
};

} // namespace notlet
