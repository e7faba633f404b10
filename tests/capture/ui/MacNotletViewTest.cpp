#include "capture/ui/MacNotletView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTest>

#include "capture/ComposerFixture.h"

namespace notlet {

namespace {

class MacNotletViewTest : public ComposerFixture {
 protected:
  MacNotletViewTest() {
    view.resize(840, 600);
    view.show();
    view.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
  }

  [[nodiscard]] QWidget* named(const QString& name) const {
    for (QWidget* widget : view.findChildren<QWidget*>()) {
      if (widget->accessibleName() == name && widget->isVisible())
        return widget;
    }
    return nullptr;
  }
  void type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }

  MacNotletView view{composer};
  ExactTextEdit* editor = view.findChild<ExactTextEdit*>();
};

} // namespace

TEST_F(MacNotletViewTest, WhatIsTypedReachesTheComposerAndTheButtonFollows) {
  QWidget* button = named(QStringLiteral("Save notlet"));
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(QApplication::focusWidget(), editor);
  EXPECT_FALSE(button->isEnabled());
  type(QStringLiteral("  "));
  EXPECT_FALSE(button->isEnabled());
  type(QStringLiteral("note"));
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(composer.state().input, "  note");
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(contents(), std::vector<std::string>{"note"});
  EXPECT_EQ(editor->exactText(), QString());
  EXPECT_FALSE(button->isEnabled());
}

TEST_F(MacNotletViewTest, TextsReachTheStoreAsTyped) {
  const QStringList texts = {
      QStringLiteral("no\u00A0break"),
      QStringLiteral("a\u2028b\u2029c\nd"),
      QStringLiteral("\u200Fאבג\u200E \u2066x\u2069 👩‍👩‍👧‍👦"),
      QStringLiteral("nul") + QChar(u'\0') + QStringLiteral("inside"),
  };
  for (const QString& text : texts) {
    editor->setExactText(text);
    composer.save();
    EXPECT_EQ(context.at(0).content, text.toStdString()) << qPrintable(text);
    clock.time += std::chrono::seconds(1);
  }
  editor->setExactText(QStringLiteral("lone ") + QChar(0xD800) + QStringLiteral(" surrogate"));
  composer.save();
  EXPECT_EQ(context.at(0).content, "lone \xEF\xBF\xBD surrogate");
}

TEST_F(MacNotletViewTest, AChosenSuggestionCompletesTheTextAndTypingGoesOnBehindIt) {
  save("a #work");
  type(QStringLiteral("call #wo"));
  QTest::keyClick(editor, Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), named(QStringLiteral("Use hashtag work")));
  EXPECT_FALSE(composer.state().inputFocused);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(QApplication::focusWidget(), editor);
  type(QStringLiteral("now"));
  EXPECT_EQ(composer.state().input, "call #work now");
  EXPECT_EQ(named(QStringLiteral("Use hashtag work")), nullptr);
}

TEST_F(MacNotletViewTest, FocusFollowsTheStateAndTheStateTheFocus) {
  composer.setInputFocused(false);
  EXPECT_NE(QApplication::focusWidget(), editor);
  center.post(CommandName::focusMacNotletInput);
  EXPECT_EQ(QApplication::focusWidget(), editor);
  // Another window in front is no change of mind.
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_TRUE(composer.state().inputFocused);
}

TEST_F(MacNotletViewTest, AFailedSaveIsToldOnceAndTheDraftStays) {
  breakStore();
  type(QStringLiteral("precious"));
  QTest::keyClick(editor, Qt::Key_Return);
  const auto alerts = view.findChildren<QDialog*>();
  ASSERT_EQ(alerts.size(), 1);
  EXPECT_TRUE(alerts[0]->isVisible());
  EXPECT_EQ(editor->exactText(), QStringLiteral("precious"));
  alerts[0]->accept();
  EXPECT_FALSE(composer.state().saveError);
  mendStore();
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(contents(), std::vector<std::string>{"precious"});
}

TEST_F(MacNotletViewTest, EverythingFitsAtTheSmallestSizeAndLooksCompactThere) {
  for (const char* text :
       {"#workshop-one", "#workshop-two", "#workshop-three", "#workshop-four", "#workshop-five"})
    save(text);
  type(QStringLiteral("#"));
  const struct {
    QSize size;
    int spacing;
  } cases[] = {{{360, 420}, 18}, {{539, 600}, 18}, {{600, 499}, 18}, {{540, 500}, 28}, {{1920, 1080}, 28}};
  for (const auto& [size, spacing] : cases) {
    view.resize(size);
    QCoreApplication::sendPostedEvents();
    const auto* card = view.findChild<ComposerCard*>();
    const auto* title = view.findChild<QLabel*>();
    EXPECT_LE(card->width(), 560);
    EXPECT_EQ(title->contentsMargins().bottom(), spacing) << size.width();
    EXPECT_GE(editor->height(), 3 * editor->fontMetrics().height()) << size.width();
    for (const QWidget* widget : view.findChildren<QWidget*>()) {
      if (widget->isVisible()) {
        EXPECT_TRUE(view.rect().contains(QRect(widget->mapTo(&view, QPoint()), widget->size())))
            << widget->metaObject()->className() << " at " << size.width();
      }
    }
  }
}

} // namespace notlet
