#include "capture/ui/MacCaptureView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QTest>

#include "capture/ComposerFixture.h"
#include "capture/ui/MacCaptureDragRegion.h"
#include "widgets/ExactTextEdit.h"
#include "widgets/MacHashtagSuggestionsView.h"

namespace notlet {

namespace {

using namespace std::chrono_literals;

class MacCaptureViewTest : public ComposerFixture {
 protected:
  MacCaptureViewTest() { showWith({}); }

  /// Shows a view with all that its host may offer beside closing.
  void showWith(MacCaptureView::Host host) {
    host.onClose = [this] { ++closings; };
    view = std::make_unique<MacCaptureView>(quick, host);
    view->show();
    view->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    editor = view->findChild<ExactTextEdit*>();
  }
  void showInPanel() {
    showWith({.onClose = {}, .onShowMainApp = [this] { ++returns; }, .onDragEnded = [this] { ++drags; }});
  }
  [[nodiscard]] QAbstractButton* button(const QString& name) const {
    for (auto* candidate : view->findChildren<QAbstractButton*>())
      if (candidate->isVisible() && (candidate->accessibleName() == name || candidate->text() == name))
        return candidate;
    return nullptr;
  }
  [[nodiscard]] QLabel* label(const QString& text) const {
    for (auto* candidate : view->findChildren<QLabel*>())
      if (candidate->text() == text)
        return candidate;
    return nullptr;
  }
  /// Whether a label shows this, which may be broken anywhere.
  [[nodiscard]] bool shows(const QString& text) const {
    return std::ranges::any_of(view->findChildren<QLabel*>(), [&](const QLabel* candidate) {
      return candidate->text().remove(QChar(0x200B)) == text;
    });
  }
  void type(const QString& text) {
    for (const QChar character : text)
      QTest::keyClick(QApplication::focusWidget(), character.toLatin1());
  }
  [[nodiscard]] QRect placeOf(const QWidget* widget) const {
    return {widget->mapTo(view.get(), QPoint()), widget->size()};
  }

  CaptureComposer quick{{context, center, clock, scheduler, drafts}, CaptureComposer::Surface::quickCapture};
  int closings = 0;
  int returns = 0;
  int drags = 0;
  std::unique_ptr<MacCaptureView> view;
  ExactTextEdit* editor = nullptr;
};

} // namespace

TEST_F(MacCaptureViewTest, TakesTypingAtOnceAndReturnSavesAndConfirms) {
  QLabel* confirmation = label(QStringLiteral("Notletted ✓"));
  ASSERT_NE(confirmation, nullptr);
  EXPECT_FALSE(confirmation->isVisible());
  EXPECT_FALSE(button(QStringLiteral("Notlet"))->isEnabled());
  type(QStringLiteral("Call Anna"));
  EXPECT_TRUE(button(QStringLiteral("Notlet"))->isEnabled());
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(contents(), std::vector<std::string>{"Call Anna"});
  EXPECT_EQ(editor->exactText(), QString());
  EXPECT_TRUE(editor->hasFocus());
  EXPECT_TRUE(view->isVisible());
  EXPECT_TRUE(confirmation->isVisible());
  scheduler.advance(1200ms);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !confirmation->isVisible(); }));
}

TEST_F(MacCaptureViewTest, TheHeaderOffersWhatTheHostDoes) {
  EXPECT_EQ(button(QStringLiteral("Return to Main App")), nullptr);
  EXPECT_EQ(view->findChild<MacCaptureDragRegion*>(), nullptr);
  QTest::mouseClick(button(QStringLiteral("Close Quick Notlet")), Qt::LeftButton);
  EXPECT_EQ(closings, 1);

  showInPanel();
  QTest::mouseClick(button(QStringLiteral("Return to Main App")), Qt::LeftButton);
  EXPECT_EQ(returns, 1);
  QTest::mouseClick(view->findChild<MacCaptureDragRegion*>(), Qt::LeftButton);
  EXPECT_EQ(drags, 1);
  EXPECT_TRUE(editor->hasFocus());
}

TEST_F(MacCaptureViewTest, TheDragRegionCoversWhatTheButtonsLeaveFree) {
  showInPanel();
  quick.setInput("confirmed");
  quick.save();
  QCoreApplication::sendPostedEvents();
  const QRect region = placeOf(view->findChild<MacCaptureDragRegion*>());
  EXPECT_EQ(region.height(), 22);
  EXPECT_EQ(region.left(), 16);
  const QRect next = placeOf(button(QStringLiteral("Return to Main App")));
  EXPECT_LE(next.left() - region.right(), 8);
  for (const QString& text : {QStringLiteral("Quick Notlet"), QStringLiteral("Notletted ✓")}) {
    const QWidget* on = label(text);
    EXPECT_TRUE(region.contains(placeOf(on))) << qPrintable(text);
    EXPECT_TRUE(on->testAttribute(Qt::WA_TransparentForMouseEvents)) << qPrintable(text);
  }
}

TEST_F(MacCaptureViewTest, EverythingFitsWhateverIsShown) {
  for (const char* tag : {"#workshop-one", "#workshop-two", "#workshop-three", "#workshop-four-and-a-half"}) {
    save(tag);
    clock.time += 1s;
  }
  showInPanel();
  quick.setInput("a\nb\nc\nd\ne\nf\n#");
  Q_EMIT drafts.reported("The draft could not be written to /home/someone/.local/state/notlet/drafts: "
                         "No space left on device.");
  quick.save();
  quick.setInput("#");
  QCoreApplication::sendPostedEvents();
  ASSERT_TRUE(view->findChild<MacHashtagSuggestionsView*>()->isVisible());
  EXPECT_EQ(view->size(), QSize(380, 260));
  for (const QWidget* widget : view->findChildren<QWidget*>()) {
    if (widget->isVisible()) {
      EXPECT_TRUE(view->rect().contains(placeOf(widget))) << widget->metaObject()->className();
      const int least = widget == editor ? editor->minimumHeight()
                        : widget->inherits("QLabel") && widget->hasHeightForWidth()
                            ? widget->heightForWidth(widget->width())
                            : widget->minimumSizeHint().height();
      EXPECT_GE(widget->height(), least) << widget->metaObject()->className();
    }
  }
}

TEST_F(MacCaptureViewTest, TheCaretStaysInSightWhenTheStripTakesItsPlace) {
  save("a #work");
  type(QStringLiteral("a long text that is wrapped. ").repeated(12));
  const int heightBefore = editor->height();
  type(QStringLiteral("#"));
  QCoreApplication::sendPostedEvents();
  ASSERT_LT(editor->height(), heightBefore);
  const auto isInSight = [this] { return editor->viewport()->rect().contains(editor->cursorRect()); };
  EXPECT_TRUE(QTest::qWaitFor(isInSight, 1000));
  QCoreApplication::sendPostedEvents();
  EXPECT_TRUE(isInSight());
}

TEST_F(MacCaptureViewTest, TheKeyboardWalksFromTheTextThroughTheStripToTheButtons) {
  save("a #work");
  showInPanel();
  type(QStringLiteral("#wo"));
  const QStringList order = {QStringLiteral("Use hashtag work"), QStringLiteral("Start dictation"),
                             QStringLiteral("Notlet"), QStringLiteral("Return to Main App"),
                             QStringLiteral("Close Quick Notlet")};
  for (const QString& name : order) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), button(name)) << qPrintable(name);
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_TRUE(editor->hasFocus());
}

// Its spaces would press the button that is next in the window.
TEST_F(MacCaptureViewTest, WhatIsTypedAfterTheEditorLostTheKeyboardIsTypedIntoIt) {
  const std::function<void()> losses[] = {
      [this] { editor->clearFocus(); }, // As Escape does.
      [this] { center.post(CommandName::stopMacFloatingCapture); },
      [this] {
        button(QStringLiteral("Notlet"))->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
      },
  };
  for (const auto& lose : losses) {
    editor->setFocus();
    type(QStringLiteral("precious"));
    lose();
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    type(QStringLiteral(" words"));
    EXPECT_TRUE(editor->exactText().endsWith(QStringLiteral(" words")));
    editor->clear();
  }
  EXPECT_EQ(contents(), std::vector<std::string>{"precious"});
  EXPECT_EQ(closings, 0);
}

TEST_F(MacCaptureViewTest, ANoticeStaysBehindAWarningUntilItIsDismissed) {
  setAsideADraft();
  CaptureComposer told({context, center, clock, scheduler, drafts});
  view = std::make_unique<MacCaptureView>(told, MacCaptureView::Host{});
  view->show();
  const QString notice = QString::fromStdString(told.state().draftNotice);
  EXPECT_TRUE(shows(notice));
  Q_EMIT drafts.reported("No space left on device.");
  EXPECT_FALSE(shows(notice));
  EXPECT_EQ(button(QStringLiteral("Dismiss message")), nullptr) << "it is true";
  Q_EMIT drafts.reported("");
  EXPECT_TRUE(shows(notice));
  button(QStringLiteral("Dismiss message"))->click();
  EXPECT_FALSE(shows(notice));
  view.reset(); // Its composer goes with this test.
}

} // namespace notlet
