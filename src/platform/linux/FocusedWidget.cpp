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

bool isEditableComboBox(const QWidget* widget) {
  const auto* box = qobject_cast<const QComboBox*>(widget);
  return box != nullptr && box->isEditable();
}

} // namespace

bool FocusedWidget::isTextInputFocused() const {
  const QWidget* widget = focusedWidget();
  return qobject_cast<const QLineEdit*>(widget) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(widget) != nullptr ||
         qobject_cast<const QTextEdit*>(widget) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(widget) != nullptr || isEditableComboBox(widget);
}

void FocusedWidget::clearFocus() {
  if (QWidget* widget = focusedWidget())
    widget->clearFocus();
}

} // namespace notlet
