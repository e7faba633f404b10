#include "platform/linux/FocusedWidget.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <algorithm>

namespace notlet {

namespace {

QWidget* focusedWidget() {
  const QWidget* window = QApplication::activeWindow();
  return window == nullptr ? nullptr : window->focusWidget();
}

/// What only shows its text takes no typing, though it can have the keyboard: so that it can be copied.
template<typename Edit>
bool isWritable(const QWidget* widget) {
  const auto* edit = qobject_cast<const Edit*>(widget);
  return edit != nullptr && !edit->isReadOnly();
}

bool isEditableComboBox(const QWidget* widget) {
  const auto* box = qobject_cast<const QComboBox*>(widget);
  return box != nullptr && box->isEditable();
}

} // namespace

bool FocusedWidget::isTextInputFocused() const {
  const QWidget* widget = focusedWidget();
  return isWritable<QLineEdit>(widget) || isWritable<QPlainTextEdit>(widget) ||
         isWritable<QTextEdit>(widget) || isWritable<QAbstractSpinBox>(widget) || isEditableComboBox(widget);
}

bool FocusedWidget::isButtonFocused() const {
  return qobject_cast<const QAbstractButton*>(focusedWidget()) != nullptr;
}

FocusedControl::Window FocusedWidget::window() const {
  const QWidget* active = QApplication::activeWindow();
  if (m_mainWindow == nullptr || active == m_mainWindow)
    return Window::main;
  return active != nullptr && active == m_settingsWindow ? Window::settings : Window::other;
}

void FocusedWidget::clearFocus() {
  if (QWidget* widget = focusedWidget())
    widget->clearFocus();
}

void FocusedWidget::addSearch(const QWidget* screen, std::function<void()> focus) {
  std::erase_if(m_searches, [](const Search& search) { return search.screen.isNull(); });
  m_searches.push_back({screen, std::move(focus)});
}

const FocusedWidget::Search* FocusedWidget::searchOnShow() const {
  const auto found = std::ranges::find_if(m_searches, [](const Search& search) {
    return search.screen && search.screen->isVisible() &&
           search.screen->window() == QApplication::activeWindow();
  });
  return found == m_searches.end() ? nullptr : &*found;
}

void FocusedWidget::focusOwnSearch() {
  if (const Search* search = searchOnShow())
    search->focus();
}

} // namespace notlet
