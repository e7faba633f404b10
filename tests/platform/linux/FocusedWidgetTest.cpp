#include "platform/linux/FocusedWidget.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>

namespace notlet {
namespace {

// A control taken for a text field swallows the keys that walk the archive; one not taken for it loses
// typing.
TEST(FocusedWidgetTest, TextFieldsAreTheControlsThatTypingChanges) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  const auto added = [&](auto* widget) {
    layout->addWidget(widget);
    return widget;
  };
  const auto readOnly = [](auto* edit) {
    edit->setReadOnly(true);
    return edit;
  };
  const auto editable = [](QComboBox* box) {
    box->setEditable(true);
    return box;
  };
  const std::pair<QWidget*, bool> cases[] = {
      {added(new QLineEdit), true},           {added(readOnly(new QLineEdit)), false},
      {added(new QPlainTextEdit), true},      {added(readOnly(new QPlainTextEdit)), false},
      {added(new QTextEdit), true},           {added(new QSpinBox), true},
      {added(editable(new QComboBox)), true}, {added(new QComboBox), false},
      {added(new QPushButton), false},
  };
  FocusedWidget focused;
  EXPECT_FALSE(focused.isTextInputFocused());
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  for (const auto& [widget, takesText] : cases) {
    widget->setFocus();
    EXPECT_EQ(focused.isTextInputFocused(), takesText) << widget->metaObject()->className();
  }
  cases[0].first->setFocus();
  focused.clearFocus();
  EXPECT_FALSE(focused.isTextInputFocused());
}

} // namespace
} // namespace notlet
