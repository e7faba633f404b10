#include "archive/ui/ArchiveList.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QScrollBar>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <random>

#include "archive/ArchiveFixture.h"
#include "archive/ui/ArchiveWarmUp.h"
#include "archive/ui/FittingTextEdit.h"
#include "archive/ui/MacArchiveRowWidget.h"
#include "widgets/Motion.h"

namespace notlet {

namespace {

const std::string longText = [] {
  std::string text;
  for (int word = 0; word < 120; ++word)
    text += "word" + std::to_string(word) + " ";
  return text + "end";
}();

class ArchiveListTest : public ArchiveFixture {
 protected:
  ArchiveListTest() { Motion::setReduced(true); }
  ~ArchiveListTest() override { Motion::setReduced(false); }

  void show(const std::vector<std::string>& newestFirst) {
    ids = fill(newestFirst);
    list = std::make_unique<ArchiveList>(*browser);
    list->resize(500, 420);
    list->show();
    list->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(list.get()));
  }
  void settle() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents();
  }
  [[nodiscard]] VirtualListView& view() const { return list->view(); }
  [[nodiscard]] int heightOf(std::size_t row) const { return view().rowRect(row)->height(); }
  /// A visible control of the active row.
  [[nodiscard]] QWidget* named(const QString& name) const {
    for (QWidget* widget : list->findChildren<QWidget*>()) {
      if (widget->accessibleName() == name && widget->isVisible())
        return widget;
    }
    return nullptr;
  }
  [[nodiscard]] QWidget* button(const QString& text) const {
    for (auto* widget : list->findChildren<QAbstractButton*>()) {
      if (widget->text() == text && widget->isVisible())
        return widget;
    }
    return nullptr;
  }
  void press(const QString& text) {
    QWidget* pressed = button(text);
    ASSERT_NE(pressed, nullptr) << qPrintable(text);
    QTest::mouseClick(pressed, Qt::LeftButton);
    settle();
  }
  [[nodiscard]] FittingTextEdit* editor() const {
    return static_cast<FittingTextEdit*>(named(QStringLiteral("Edit notlet")));
  }
  [[nodiscard]] FittingTextEdit* shownText() const {
    return static_cast<FittingTextEdit*>(named(QStringLiteral("Notlet text")));
  }
  void clickRow(std::size_t row) {
    const QRect rect = *view().rowRect(row);
    QTest::mouseClick(view().viewport(), Qt::LeftButton, Qt::NoModifier, rect.topLeft() + QPoint(30, 20));
    settle();
  }

  std::vector<Uuid> ids;
  std::unique_ptr<ArchiveList> list;
};

} // namespace

TEST_F(ArchiveListTest, ALongTextHasThreeLinesUntilItsRowIsSelected) {
  show({"one line", longText, "one\ntwo\nthree", "one\ntwo\nthree\nfour"});
  const int lines = QFontMetrics(list->font()).lineSpacing();
  EXPECT_EQ(heightOf(1), heightOf(2));
  EXPECT_EQ(heightOf(3), heightOf(2));
  EXPECT_NEAR(heightOf(1) - heightOf(0), 2 * lines, 4);
  const int collapsed = heightOf(1);
  clickRow(1);
  EXPECT_EQ(state().selectedID, ids[1]);
  EXPECT_GT(heightOf(1), collapsed);
  EXPECT_EQ(shownText()->exactText().toStdString(), longText);
  EXPECT_EQ(shownText()->verticalScrollBar()->maximum(), 0);
  clickRow(0);
  EXPECT_EQ(heightOf(1), collapsed);
}

// Where the painted text and the widget disagreed, selecting a row would move its lines or cut the last one.
TEST_F(ArchiveListTest, TheWholeTextFitsTheActiveRowAtAnyWidth) {
  const std::vector<std::string> texts = {
      "short",
      longText,
      "a\n\n\nb\n",
      "no\u00A0break\u2028line\u2029paragraph\ttab",
      "明日の会議は午後三時から。資料を忘れないこと。新しい企画について田中さんと相談して。",
      "🎉 Party 🥳 👩‍👩‍👧‍👦 and 🇩🇪 flags ❤️ #party",
      "مرحبا بالعالم، هذه ملاحظة طويلة باللغة العربية لاختبار الاتجاه من اليمين إلى اليسار في القائمة",
      "ไทยไม่มีช่องว่างระหว่างคำ ดังนั้นการตัดบรรทัดจึงยาก",
      std::string(700, 'x'),
      "https://example.org/a/very/long/path/that/never/ends/and/has/no/spaces/at/all/so/that/it/must/be/"};
  show(texts);
  for (const int width : {360, 413, 640, 1200}) {
    list->resize(width, 3000);
    for (std::size_t row = 0; row < texts.size(); ++row) {
      const int collapsed = heightOf(row);
      browser->select(ids[row]);
      settle();
      EXPECT_EQ(shownText()->verticalScrollBar()->maximum(), 0) << texts[row] << " at " << width;
      const int lines = shownText()->document()->size().toSize().height();
      const int buttons = button(QStringLiteral("Edit"))->height() + 8;
      EXPECT_GE(heightOf(row), collapsed + buttons) << texts[row];
      if (lines <= 3) {
        EXPECT_EQ(heightOf(row), collapsed + buttons) << texts[row] << " at " << width;
      }
    }
  }
}

TEST_F(ArchiveListTest, OnlyTheActiveRowHasButtonsAndTheyBelongToItsMode) {
  show({"first #work", "second"});
  EXPECT_EQ(button(QStringLiteral("Edit")), nullptr);
  clickRow(1);
  EXPECT_NE(button(QStringLiteral("Edit")), nullptr);
  EXPECT_NE(button(QStringLiteral("Delete")), nullptr);
  EXPECT_EQ(button(QStringLiteral("Save")), nullptr);
  EXPECT_EQ(button(QStringLiteral("Restore unsaved edit")), nullptr);
  EXPECT_EQ(view().widgetRow(), 1U);
  press(QStringLiteral("Edit"));
  EXPECT_EQ(state().editingID, ids[1]);
  EXPECT_EQ(button(QStringLiteral("Edit")), nullptr);
  EXPECT_EQ(button(QStringLiteral("Delete")), nullptr);
  ASSERT_NE(button(QStringLiteral("Save")), nullptr);
  EXPECT_EQ(QApplication::focusWidget(), editor());
  press(QStringLiteral("Cancel"));
  EXPECT_FALSE(state().editingID);
  EXPECT_TRUE(view().hasFocus()); // Not lost with the editor.
  press(QStringLiteral("Delete"));
  EXPECT_TRUE(state().showingDeleteConfirmation);
  browser->deleteSelectedNotlet();
  settle();
  EXPECT_EQ(button(QStringLiteral("Delete")), nullptr);
  EXPECT_EQ(view().rowWidget(), nullptr);
}

TEST_F(ArchiveListTest, TheEditorTakesTheKeyboardOneTurnAfterItOpensAndReturnMakesALine) {
  show({"first"});
  clickRow(0);
  browser->beginEditing(ids[0]);
  EXPECT_FALSE(editor()->hasFocus());
  settle();
  ASSERT_TRUE(editor()->hasFocus());
  EXPECT_GE(editor()->parentWidget()->height(), 120);
  QTest::keyClick(editor(), Qt::Key_Return);
  QTest::keyClicks(editor(), QStringLiteral("line"));
  EXPECT_EQ(state().editDraft, "first\nline");
  press(QStringLiteral("Save"));
  EXPECT_EQ(storedText(ids[0]), "first\nline");
  EXPECT_EQ(shownText()->exactText(), QStringLiteral("first\nline"));
}

TEST_F(ArchiveListTest, DraftsReachTheStoreAsTypedAndTextsTheClipboard) {
  const std::string awkward =
      "no\u00A0break\u2028line\u2029\u200Fאבג\u200E 👩‍👩‍👧‍👦 e\u0301";
  show({awkward});
  clickRow(0);
  shownText()->setFocus();
  QTest::keyClick(shownText(), Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(shownText(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), awkward);
  QTest::keyClick(shownText(), Qt::Key_X);
  EXPECT_EQ(shownText()->exactText().toStdString(), awkward);
  press(QStringLiteral("Edit"));
  QTest::keyClicks(editor(), QStringLiteral("!"));
  EXPECT_EQ(state().editDraft, awkward + "!");
  press(QStringLiteral("Save"));
  EXPECT_EQ(storedText(ids[0]), awkward + "!");
}

// Above what it grows by, the last row has nothing below to make room.
TEST_F(ArchiveListTest, AnEditorOpensAndGrowsInSight) {
  show({"1", "2", "3", "4", "5", "6", "7", "8", "9 #work", "10"});
  const auto isInSight = [&] {
    settle();
    return view().viewport()->rect().contains(*view().rowRect(*view().widgetRow()));
  };
  for (const bool isMoving : {false, true}) {
    Motion::setReduced(!isMoving);
    for (const std::size_t row : {9U, 4U, 8U}) {
      browser->select(ids[row]);
      browser->beginEditing(ids[row]);
      EXPECT_TRUE(QTest::qWaitFor(isInSight)) << row;
      for (int line = 0; line < 8; ++line)
        QTest::keyClick(editor(), Qt::Key_Return);
      QTest::keyClicks(editor(), QStringLiteral("#wo"));
      EXPECT_TRUE(QTest::qWaitFor(isInSight)) << row;
      browser->cancelEditing();
    }
  }
}

TEST_F(ArchiveListTest, TheCaretOfAnOpeningEditorIsInSight) {
  show({"above", longText});
  list->resize(320, 160);
  browser->select(ids[1]);
  settle();
  browser->beginEditing(ids[1]);
  const auto isCaretSeen = [&] {
    settle();
    const QRect caret = editor()->caretRect();
    return editor()->hasFocus() && editor()->rect().contains(caret) &&
           view().viewport()->rect().contains(caret.translated(editor()->mapTo(view().viewport(), QPoint())));
  };
  EXPECT_TRUE(QTest::qWaitFor(isCaretSeen));
}

// An editor that opens at the end of a text must not push the text's lines out of sight sideways.
TEST_F(ArchiveListTest, NoLineOfTheEditorIsCutOff) {
  show({std::string(70, 'w')});
  clickRow(0);
  press(QStringLiteral("Edit"));
  settle();
  for (int typed = 0; typed < 40; ++typed) {
    QTest::keyClick(editor(), Qt::Key_W);
    ASSERT_EQ(editor()->horizontalScrollBar()->value(), 0) << typed;
  }
}

TEST_F(ArchiveListTest, AChosenSuggestionCompletesTheDraftAndTypingGoesOnBehindIt) {
  show({"call", "a #work"});
  clickRow(0);
  press(QStringLiteral("Edit"));
  QTest::keyClicks(editor(), QStringLiteral(" #wo"));
  settle();
  QTest::keyClick(editor(), Qt::Key_Tab);
  ASSERT_EQ(QApplication::focusWidget(), named(QStringLiteral("Use hashtag work")));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_EQ(QApplication::focusWidget(), editor());
  QTest::keyClick(editor(), Qt::Key_Tab);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  settle();
  EXPECT_EQ(QApplication::focusWidget(), editor());
  QTest::keyClicks(editor(), QStringLiteral("now"));
  EXPECT_EQ(state().editDraft, "call #work now");
  EXPECT_EQ(named(QStringLiteral("Use hashtag work")), nullptr);
}

TEST_F(ArchiveListTest, AnUnsavedEditIsOfferedAndComesBack) {
  show({"first", "second"});
  const int before = heightOf(0);
  clickRow(0);
  press(QStringLiteral("Edit"));
  QTest::keyClicks(editor(), QStringLiteral(" more"));
  clickRow(1);
  EXPECT_EQ(button(QStringLiteral("Restore unsaved edit")), nullptr);
  clickRow(0);
  EXPECT_EQ(shownText()->exactText(), QStringLiteral("first"));
  press(QStringLiteral("Restore unsaved edit"));
  EXPECT_EQ(editor()->exactText(), QStringLiteral("first more"));
  EXPECT_TRUE(editor()->hasFocus());
  QTest::keyClick(editor(), Qt::Key_Return);
  QTest::keyClicks(editor(), QStringLiteral("two"));
  press(QStringLiteral("Save"));
  clickRow(1);
  EXPECT_GT(heightOf(0), before) << "it is painted with its old text";
}

TEST_F(ArchiveListTest, UndoBringsBackNoTextOfAnotherNotletOrOfAnEarlierEdit) {
  show({"first", "second"});
  const auto undoAll = [this] {
    for (int step = 0; step < 5; ++step)
      QTest::keyClick(editor(), Qt::Key_Z, Qt::ControlModifier);
  };
  browser->beginEditing(ids[0]);
  settle();
  QTest::keyClicks(editor(), QStringLiteral(" more"));
  browser->beginEditing(ids[1]);
  settle();
  undoAll();
  EXPECT_EQ(state().editDraft, "second");
  browser->restoreUnsavedEdit(ids[0]);
  settle();
  QTest::keyClicks(editor(), QStringLiteral("!"));
  undoAll();
  EXPECT_EQ(state().editDraft, "first more");
}

// The editor, its undo history and its caret must not be lost because something else happened in the archive.
TEST_F(ArchiveListTest, AnOpenEditorSurvivesEveryChangeAroundIt) {
  std::vector<std::string> texts;
  for (int number = 0; number < 60; ++number)
    texts.push_back("notlet " + std::to_string(number));
  show(texts);
  browser->select(ids[30]);
  browser->beginEditing(ids[30]);
  settle();
  FittingTextEdit* before = editor();
  QTest::keyClicks(before, QStringLiteral(" typed"));
  before->moveCursor(QTextCursor::Start);
  const QRect place = *view().rowRect(30);
  context->insert(*makeNotlet("newer", clock.time + std::chrono::hours(1)));
  context->remove(ids[10]);
  context->remove(ids[59]);
  NotletEntry changed = *context->find(ids[29]);
  ASSERT_TRUE(applyEdit(changed, longText, clock.time));
  context->replace(changed);
  settle();
  EXPECT_EQ(editor(), before);
  EXPECT_TRUE(editor()->hasFocus());
  EXPECT_EQ(editor()->exactText(), QStringLiteral("notlet 30 typed"));
  EXPECT_TRUE(editor()->textCursor().atStart());
  EXPECT_EQ(view().rowRect(*view().widgetRow()), place);

  browser->setSearchText("notlet 3");
  QTest::qWait(50);
  EXPECT_EQ(editor(), before);
  EXPECT_EQ(editor()->exactText(), QStringLiteral("notlet 30 typed"));
  browser->setSearchText("nothing like it");
  QTest::qWait(50);
  EXPECT_EQ(editor(), nullptr);
  browser->setSearchText("");
  QTest::qWait(50);
  ASSERT_NE(editor(), nullptr);
  EXPECT_EQ(editor()->exactText(), QStringLiteral("notlet 30 typed"));
}

TEST_F(ArchiveListTest, TheSelectedRowComesToTheMiddleAndStaysInForce) {
  std::vector<std::string> texts(200, "notlet");
  show(texts);
  browser->select(ids[100]);
  EXPECT_LE(std::abs(view().rowRect(100)->center().y() - view().viewport()->height() / 2), 1);
  // Scrolled away by hand, the list stays there whatever else changes.
  view().scrollToCentre(150, false);
  context->insert(*makeNotlet("newer", clock.time + std::chrono::hours(1)));
  EXPECT_FALSE(view().rowRect(101));
  EXPECT_EQ(view().currentRow(), 101U);
  browser->moveVertically(1);
  EXPECT_LE(std::abs(view().rowRect(102)->center().y() - view().viewport()->height() / 2), 1);
}

TEST_F(ArchiveListTest, AClickIntoTheTextOfTheActiveRowIsAClickOnTheRow) {
  show({"first", "second"});
  clickRow(0);
  browser->setSearchFocused(true);
  QTest::mouseClick(shownText()->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
  EXPECT_FALSE(state().searchFocused);
  EXPECT_EQ(state().keyboardSection, MacArchiveKeyboardSection::results);
}

TEST_F(ArchiveListTest, TabWalksThroughTheActiveRowInVisualOrderAndInSight) {
  show({"first #tag", "second #work"});
  clickRow(0);
  view().setFocus();
  list->resize(500, 90);
  const auto walk = [&](std::size_t steps) {
    QStringList names;
    for (std::size_t step = 0; step < steps; ++step) {
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
      const auto* button = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
      EXPECT_FALSE(button && button->visibleRegion().isEmpty()) << qPrintable(button->text());
      const QString name = QApplication::focusWidget()->accessibleName();
      names.append(name.isEmpty() && button ? button->text() : name);
    }
    return names;
  };
  EXPECT_EQ(walk(3),
            QStringList({QStringLiteral("Notlet text"), QStringLiteral("Edit"), QStringLiteral("Delete")}));
  press(QStringLiteral("Edit"));
  QTest::keyClicks(editor(), QStringLiteral(" #w"));
  EXPECT_EQ(walk(3), QStringList({QStringLiteral("Use hashtag work"), QStringLiteral("Save"),
                                  QStringLiteral("Cancel")}));
}

TEST_F(ArchiveListTest, TheDateIsThatOfTheCreationEvenAfterAnEdit) {
  show({"first"});
  clickRow(0);
  const QString date = creationText(*context->find(ids[0]));
  clock.time += std::chrono::hours(1000);
  press(QStringLiteral("Edit"));
  QTest::keyClicks(editor(), QStringLiteral(" edited"));
  press(QStringLiteral("Save"));
  const auto labels = list->findChildren<QLabel*>();
  EXPECT_TRUE(std::ranges::any_of(labels, [&](const QLabel* label) { return label->text() == date; }));
  EXPECT_EQ(creationText(*context->find(ids[0])), date);
}

TEST_F(ArchiveListTest, ChipsThatDoNotFitAreScrolledSideways) {
  std::string text;
  for (int tag = 0; tag < 30; ++tag)
    text += "#some-hashtag-" + std::to_string(tag) + " ";
  show({text, "second"});
  clickRow(0);
  auto* strip = list->findChild<HashtagStrip*>();
  ASSERT_NE(strip, nullptr);
  EXPECT_LE(strip->geometry().right(), list->width());
  QTest::mousePress(strip, Qt::LeftButton, Qt::NoModifier, QPoint(300, 5));
  QTest::mouseMove(strip, QPoint(100, 5));
  EXPECT_EQ(strip->offset(), 200);
  strip->setOffset(1'000'000);
  EXPECT_EQ(strip->offset(), strip->sizeHint().width() - strip->width());
}

TEST_F(ArchiveListTest, TextsOfMegabytesAreShownInBounds) {
  std::string lines;
  while (lines.size() < 3'000'000)
    lines += "some words\n";
  show({std::string(3'000'000, 'x'), lines + "end", "third"});
  EXPECT_LT(heightOf(0), 200);
  EXPECT_LT(heightOf(1), 200);
  for (const std::size_t row : {0U, 1U}) {
    browser->select(ids[row]);
    settle();
    EXPECT_LE(heightOf(row), view().viewport()->height());
    const std::string shown = shownText()->exactText().toStdString();
    EXPECT_GT(shown.size(), 50'000U);
    EXPECT_LE(shown.size(), MacArchiveRowWidget::mostShownBytes);
    EXPECT_TRUE(context->find(ids[row])->content.view().starts_with(shown));
    EXPECT_GT(shownText()->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(shownText()->verticalScrollBar()->value(), 0);
    browser->beginEditing(ids[row]);
    settle();
    EXPECT_LE(heightOf(row), view().viewport()->height());
    QTest::keyClicks(editor(), QStringLiteral("!"));
    EXPECT_EQ(state().editDraft, context->find(ids[row])->content.str() + "!");
    browser->cancelEditing();
  }
}

TEST_F(ArchiveListTest, AssistiveTechnologyFindsRowsAndTheControlsOfTheActiveOne) {
  show({"first", "second #work"});
  clickRow(1);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view());
  ASSERT_EQ(accessible->childCount(), 2);
  EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Notlets"));
  EXPECT_TRUE(accessible->child(0)->text(QAccessible::Name).startsWith(QStringLiteral("first\n")));
  QAccessibleInterface* active = accessible->child(1);
  EXPECT_TRUE(active->state().selected);
  EXPECT_EQ(active->role(), QAccessible::ListItem);
  EXPECT_EQ(active->parent(), accessible);
  std::map<QString, QAccessible::Role> controls;
  for (int part = 0; part < active->childCount(); ++part) {
    if (!active->child(part)->state().invisible)
      controls[active->child(part)->text(QAccessible::Name)] = active->child(part)->role();
  }
  EXPECT_EQ(controls[QStringLiteral("Edit")], QAccessible::Button);
  EXPECT_EQ(controls[QStringLiteral("Delete")], QAccessible::Button);
  EXPECT_EQ(controls[QStringLiteral("Notlet text")], QAccessible::EditableText);
  EXPECT_TRUE(controls.contains(QStringLiteral("#work")));
  accessible->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(state().selectedID, ids[0]);
}

TEST_F(ArchiveListTest, PreparingRowsUnseenEndsWhileNotletsGo) {
  show(std::vector<std::string>(40, longText));
  const QPointer warmUp = new ArchiveWarmUp(*context, *list, list.get());
  EXPECT_TRUE(QTest::qWaitFor([&] {
    if (context->size() > 0)
      context->remove(context->at(0).id);
    return warmUp.isNull();
  }));
}

} // namespace notlet
