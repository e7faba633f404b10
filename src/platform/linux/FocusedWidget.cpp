#include "platform/linux/FocusedWidget.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

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

bool FocusedWidget::isInMainWindow() const {
  return m_mainWindow == nullptr || QApplication::activeWindow() == m_mainWindow;
}

void FocusedWidget::clearFocus() {
  if (QWidget* widget = focusedWidget())
    widget->clearFocus();
}

} // namespace notlet
