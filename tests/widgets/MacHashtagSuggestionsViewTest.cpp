#include "widgets/MacHashtagSuggestionsView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

namespace notlet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A strip between an editor and a button, as the composers have it.
class MacHashtagSuggestionsViewTest : public testing::Test {
 protected:
  MacHashtagSuggestionsViewTest() {
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(editor);
    layout->addWidget(strip);
    layout->addWidget(after);
    layout->addStretch();
    window.resize(600, 300);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    editor->setFocus();
  }

  static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
  }
  [[nodiscard]] std::vector<QAbstractButton*> shown() const {
    std::vector<QAbstractButton*> buttons;
    for (QAbstractButton* button : strip->findChildren<QAbstractButton*>())
      if (button->isVisible())
        buttons.push_back(button);
    return buttons;
  }
  [[nodiscard]] static QString focusedName() { return QApplication::focusWidget()->accessibleName(); }

  QWidget window;
  std::vector<std::string> chosen;
  QLineEdit* editor = new QLineEdit;
  MacHashtagSuggestionsView* strip = new MacHashtagSuggestionsView(
      {"work", "Workshop", "w\u00f6rld"}, [this](const std::string& tag) { chosen.push_back(tag); });
  QLineEdit* after = new QLineEdit;
};

TEST_F(MacHashtagSuggestionsViewTest, ButtonsAreNamedForAssistiveTechnology) {
  std::vector<QString> names;
  for (QAbstractButton* button : shown()) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(button);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    names.push_back(accessible->text(QAccessible::Name));
  }
  EXPECT_THAT(names, ElementsAre(QStringLiteral("Use hashtag work"), QStringLiteral("Use hashtag Workshop"),
                                 QStringLiteral("Use hashtag w\u00f6rld")));
}

TEST_F(MacHashtagSuggestionsViewTest, TabEntersAtTheFirstTagAndLeavesTheStripAtOnce) {
  press(Qt::Key_Tab);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag work"));
  press(Qt::Key_Right);
  press(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), after);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag work")) << "entered anew, at the first tag";
  press(Qt::Key_Right);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(QApplication::focusWidget(), editor);
}

// Suggestions come and go while the window is open; their buttons are younger than all others.
TEST_F(MacHashtagSuggestionsViewTest, LaterSuggestionsStandAtTheSamePlaceInTheTabOrder) {
  strip->setSuggestions({"other", "order"});
  press(Qt::Key_Tab);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag other"));
  press(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), after);
}

TEST_F(MacHashtagSuggestionsViewTest, ArrowsStopAtBothEnds) {
  strip->focusFirst();
  press(Qt::Key_Left);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag work"));
  for (int count = 0; count < 5; ++count)
    press(Qt::Key_Right);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag w\u00f6rld"));
  press(Qt::Key_Left);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag Workshop"));
  press(Qt::Key_Up);
  press(Qt::Key_Down);
  EXPECT_EQ(focusedName(), QStringLiteral("Use hashtag Workshop"));
}

TEST_F(MacHashtagSuggestionsViewTest, ReturnEnterSpaceAndClickChoose) {
  strip->focusFirst();
  press(Qt::Key_Right);
  press(Qt::Key_Return);
  press(Qt::Key_Enter, Qt::KeypadModifier);
  press(Qt::Key_Space);
  EXPECT_THAT(chosen, ElementsAre("Workshop", "Workshop", "Workshop"));
  editor->setFocus();
  QTest::mouseClick(shown().back(), Qt::LeftButton);
  EXPECT_EQ(chosen.back(), "w\u00f6rld");
  EXPECT_EQ(QApplication::focusWidget(), editor) << "a click leaves the keyboard with the editor";
}

TEST_F(MacHashtagSuggestionsViewTest, AHeldReturnChoosesOnce) {
  strip->focusFirst();
  QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
  press(Qt::Key_Return);
  QApplication::sendEvent(QApplication::focusWidget(), &repeated);
  EXPECT_THAT(chosen, ElementsAre("work"));
}

TEST_F(MacHashtagSuggestionsViewTest, EscapeHandsTheKeyboardBack) {
  QSignalSpy dismissed(strip, &MacHashtagSuggestionsView::dismissed);
  strip->focusFirst();
  press(Qt::Key_Escape);
  EXPECT_THAT(dismissed, SizeIs(1));
}

TEST_F(MacHashtagSuggestionsViewTest, TheSameListKeepsItsButtonsAndTheFocus) {
  strip->focusFirst();
  press(Qt::Key_Right);
  const QPointer<QWidget> focused = QApplication::focusWidget();
  strip->setSuggestions(std::vector<std::string>(strip->suggestions()));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  ASSERT_TRUE(focused);
  EXPECT_TRUE(focused->hasFocus());
}

TEST_F(MacHashtagSuggestionsViewTest, TheListMayChangeWhileATagIsChosen) {
  auto* live = new MacHashtagSuggestionsView({"one", "two"}, {}, &window);
  MacHashtagSuggestionsView changing({"one", "two"}, [&changing](const std::string&) {
    changing.setSuggestions({});
    changing.setSuggestions({"three"});
  });
  delete live;
  QTest::mouseClick(changing.findChildren<QAbstractButton*>().front(), Qt::LeftButton);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_THAT(changing.findChildren<QAbstractButton*>(), SizeIs(1));
}

TEST_F(MacHashtagSuggestionsViewTest, InANarrowWindowAllThatIsShownFits) {
  const std::string longTag(200, 'w');
  strip->setSuggestions({"work", "workshop", longTag, "worldwide", "wonderful", "wok", "worry", "woodwork"});
  for (const int width : {40, 200, 360, 600, 2000}) {
    SCOPED_TRACE(width);
    window.resize(width, 400);
    QCoreApplication::sendPostedEvents();
    ASSERT_THAT(shown(), testing::Not(IsEmpty()));
    QRegion covered;
    for (const QAbstractButton* button : shown()) {
      EXPECT_TRUE(strip->rect().contains(button->geometry()));
      EXPECT_TRUE(covered.intersected(button->geometry()).isEmpty()) << "chips lie over one another";
      covered += button->geometry();
    }
    EXPECT_LE(strip->height(), 2 * shown().front()->height() + 12) << "no more than two rows";
  }
  EXPECT_EQ(shown()[2]->accessibleName(), QStringLiteral("Use hashtag ") + QString::fromStdString(longTag));
}

TEST_F(MacHashtagSuggestionsViewTest, WalkingStopsAtTheLastShownTag) {
  strip->setSuggestions({"workshop-one", "workshop-two", "workshop-three", "workshop-four", "workshop-five"});
  window.resize(240, 300);
  QCoreApplication::sendPostedEvents();
  ASSERT_LT(shown().size(), 5U);
  strip->focusFirst();
  for (int count = 0; count < 9; ++count)
    press(Qt::Key_Right);
  EXPECT_EQ(QApplication::focusWidget(), shown().back());
}

} // namespace
} // namespace notlet
