#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QLabel>
#include <QScrollBar>
#include <QTest>

#include "capture/ComposerFixture.h"
#include "capture/ui/MacNotletView.h"
#include "capture/ui/MicButton.h"
#include "support/FakeSpeechBackend.h"
#include "widgets/ExactTextEdit.h"

namespace notlet {

namespace {

using Script = FakeSpeechBackend::Script;
using Dictation = CaptureComposer::Dictation;

/// The composer in the main window, with somebody speaking.
class DictationViewTest : public ComposerFixture {
 protected:
  DictationViewTest() {
    view.resize(840, 600);
    view.show();
    view.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
  }

  void await(Dictation dictation) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return mic->dictation() == dictation; }));
  }
  void say(const QString& shown) {
    backend.say(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return editor->exactText() == shown; }))
        << qPrintable(editor->exactText());
  }
  /// Clicks the microphone and says two words behind what is there.
  void dictate(const QString& before = {}) {
    QTest::mouseClick(mic, Qt::LeftButton);
    await(Dictation::recording);
    say(before + QStringLiteral("and"));
    say(before + QStringLiteral("and eggs"));
  }
  void type(const QString& text) {
    for (const QChar character : text)
      QTest::keyClick(view.focusWidget(), character.toLatin1());
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    ASSERT_NE(view.focusWidget(), nullptr);
    QTest::keyClick(view.focusWidget(), key, modifiers);
  }

  FakeSpeechBackend backend;
  SpeechService service{backend, scheduler};
  CaptureComposer speaking{{context, center, clock, scheduler, drafts, {}, &service, {"en-US"}}};
  MacNotletView view{speaking};
  ExactTextEdit* editor = view.findChild<ExactTextEdit*>();
  MicButton* mic = view.findChild<MicButton*>();
};

} // namespace

TEST_F(DictationViewTest, TheWordsAppearAndReturnKeepsThem) {
  EXPECT_EQ(mic->accessibleName(), QStringLiteral("Start dictation"));
  dictate();
  EXPECT_EQ(mic->accessibleName(), QStringLiteral("Stop dictation"));
  EXPECT_FALSE(editor->hasFocus());
  press(Qt::Key_Return);
  EXPECT_EQ(contents(), std::vector<std::string>{"and eggs"});
  EXPECT_EQ(editor->exactText(), QString());
  EXPECT_EQ(mic->accessibleName(), QStringLiteral("Start dictation"));
  type(QStringLiteral("More"));
  EXPECT_EQ(editor->exactText(), QStringLiteral("More"));
  EXPECT_TRUE(editor->hasFocus());
}

TEST_F(DictationViewTest, TheMicrophoneHasAKey) {
  QTest::keyClicks(editor, QStringLiteral("and"));
  press(Qt::Key_M, Qt::ControlModifier);
  await(Dictation::recording);
  press(Qt::Key_M, Qt::ControlModifier);
  await(Dictation::off);
  press(Qt::Key_M, Qt::ControlModifier);
  await(Dictation::recording);
  press(Qt::Key_Escape);
  await(Dictation::off);
  press(Qt::Key_Left);
  type(QStringLiteral("n"));
  EXPECT_EQ(editor->exactText(), QStringLiteral("annd")) << "the keyboard is the editor's again";
}

// Also for those who reach the button by the keyboard: Return must keep the notlet, not press the button
// again.
TEST_F(DictationViewTest, ReturnKeepsTheWordsOfADictationThatAKeyBegan) {
  mic->setFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  await(Dictation::recording);
  say(QStringLiteral("and"));
  press(Qt::Key_Return);
  EXPECT_EQ(contents(), std::vector<std::string>{"and"});
}

TEST_F(DictationViewTest, WhoeverTypesIsInTheEditorAtOnce) {
  dictate();
  type(QStringLiteral(", please"));
  EXPECT_EQ(editor->exactText(), QStringLiteral("and eggs, please"));
  EXPECT_EQ(mic->dictation(), Dictation::off);
  EXPECT_TRUE(editor->hasFocus());

  // The same with a letter that takes several keys.
  editor->clearFocus();
  EXPECT_TRUE(QGuiApplication::inputMethod()->queryFocusObject(Qt::ImEnabled, {}).toBool());
  QInputMethodEvent composed;
  composed.setCommitString(QStringLiteral("ú"));
  QCoreApplication::sendEvent(QApplication::focusWidget(), &composed);
  EXPECT_EQ(editor->exactText(), QStringLiteral("and eggs, pleaseú"));
  EXPECT_TRUE(editor->hasFocus());
}

TEST_F(DictationViewTest, UndoTakesBackOneDictationAtOnce) {
  type(QStringLiteral("Milk"));
  dictate(QStringLiteral("Milk "));
  press(Qt::Key_Escape);
  dictate(QStringLiteral("Milk and eggs "));
  press(Qt::Key_Escape);
  editor->undo();
  EXPECT_EQ(editor->exactText(), QStringLiteral("Milk and eggs"));
  editor->undo();
  EXPECT_EQ(editor->exactText(), QStringLiteral("Milk"));
  EXPECT_EQ(speaking.state().input, "Milk");
}

// The last words are those that somebody who dictates looks at.
TEST_F(DictationViewTest, ShowsTheLastWordsOfALongDraft) {
  const QString draft = QStringLiteral("line\n").repeated(200);
  editor->setExactText(draft);
  editor->verticalScrollBar()->setValue(0);
  dictate(draft);
  EXPECT_TRUE(editor->viewport()->rect().contains(editor->cursorRect()));
}

TEST_F(DictationViewTest, StopsWhenItGoesOutOfSight) {
  dictate();
  view.hide();
  EXPECT_EQ(speaking.state().dictation, Dictation::off);
}

TEST_F(DictationViewTest, SaysOnceWhyItDoesNotListen) {
  backend.with([](Script& script) { script.fault = AudioError{AudioFault::noMicrophone, ""}; });
  QTest::mouseClick(mic, Qt::LeftButton);
  ASSERT_TRUE(QTest::qWaitFor([&] { return speaking.state().speechError.has_value(); }));
  const auto alerts = view.findChildren<QDialog*>();
  ASSERT_EQ(alerts.size(), 1);
  QStringList told;
  for (const auto* label : alerts.front()->findChildren<QLabel*>())
    told.append(label->text());
  EXPECT_EQ(told.value(0), QStringLiteral("Speech Recognition"));
  EXPECT_TRUE(told.value(1).contains(QStringLiteral("No microphone"))) << qPrintable(told.value(1));
  alerts.front()->accept();
  EXPECT_EQ(speaking.state().speechError, std::nullopt);
  EXPECT_EQ(mic->dictation(), Dictation::off);
}

// A muted microphone is told from one that hears something.
TEST_F(DictationViewTest, TheButtonShowsHowLoudItIs) {
  MicButton button;
  button.resize(button.sizeHint());
  const auto picture = [&button] { return button.grab().toImage(); };
  const QImage off = picture();
  button.setLevel(0.9);
  EXPECT_EQ(picture(), off) << "nobody listens";
  button.setDictation(Dictation::starting);
  const QImage starting = picture();
  button.setDictation(Dictation::recording);
  const QImage silent = picture();
  button.setLevel(0.5);
  const QImage half = picture();
  button.setLevel(1);
  const QImage loud = picture();
  EXPECT_NE(starting, off);
  EXPECT_NE(silent, starting);
  EXPECT_NE(half, silent);
  EXPECT_NE(loud, half);
  button.setDictation(Dictation::off);
  EXPECT_EQ(picture(), off);
}

} // namespace notlet
