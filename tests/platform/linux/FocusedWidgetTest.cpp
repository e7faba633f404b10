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
    EXPECT_EQ(focused.isButtonFocused(), widget->inherits("QPushButton"));
  }
  cases[0].first->setFocus();
  focused.clearFocus();
  EXPECT_FALSE(focused.isTextInputFocused());
}

TEST(FocusedWidgetTest, KeysAreForTheActiveWindowAndTheSearchThatItShows) {
  using Window = FocusedControl::Window;
  FocusedWidget focused;
  QWidget main;
  QWidget settings;
  focused.setMainWindow(&main);
  focused.setSettingsWindow(&settings);
  std::vector<const QWidget*> searched;
  auto* gone = new QWidget(&main);
  for (QWidget* screen : {new QWidget(&main), new QWidget(&settings), gone})
    focused.addSearch(screen, [&searched, screen] { searched.push_back(screen->window()); });
  delete gone;
  for (const auto& [shown, meaning] : {std::pair{&settings, Window::settings}, {&main, Window::main}}) {
    shown->show();
    shown->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(shown));
    EXPECT_EQ(focused.window(), meaning);
    EXPECT_TRUE(focused.hasOwnSearch());
    focused.focusOwnSearch();
    EXPECT_EQ(searched.back(), shown);
  }
  for (QObject* screen : main.children())
    static_cast<QWidget*>(screen)->hide();
  EXPECT_FALSE(focused.hasOwnSearch());
}

} // namespace
} // namespace notlet
