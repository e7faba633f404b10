#include "archive/ui/MacArchiveView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "archive/ArchiveFixture.h"

namespace notlet {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class MacArchiveViewTest : public ArchiveFixture {
 protected:
  MacArchiveViewTest() {
    browser->disappear(); // The view lets it appear.
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    window.resize(700, 600);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  // The window uses the browser until its end.
  ~MacArchiveViewTest() override { delete view; }
  MacArchiveViewTest(const MacArchiveViewTest&) = delete;
  MacArchiveViewTest& operator=(const MacArchiveViewTest&) = delete;

  template<typename Widget = QWidget>
  [[nodiscard]] Widget* named(const QString& name) const {
    for (Widget* widget : window.findChildren<Widget*>()) {
      if (widget->accessibleName() == name && widget->isVisible())
        return widget;
    }
    return nullptr;
  }
  [[nodiscard]] QAbstractButton* chip(const QString& tag) const {
    return named<QAbstractButton>(QStringLiteral("Filter by hashtag ") + tag);
  }
  [[nodiscard]] QAbstractButton* button(const QString& text) const { return button(text, window); }
  [[nodiscard]] static QAbstractButton* button(const QString& text, const QWidget& within) {
    for (QAbstractButton* button : within.findChildren<QAbstractButton*>()) {
      if (button->text() == text && button->isVisible())
        return button;
    }
    return nullptr;
  }
  [[nodiscard]] QStringList labels() const {
    QStringList texts;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
      if (label->isVisible())
        texts.append(label->text());
    }
    return texts;
  }
  [[nodiscard]] Alert* alert() const {
    for (Alert* alert : window.findChildren<Alert*>()) {
      if (alert->isVisible())
        return alert;
    }
    return nullptr;
  }
  [[nodiscard]] bool isSeen(const std::function<bool()>& condition) const {
    return QTest::qWaitFor(condition, 5'000);
  }
  void openEditor(std::size_t position) {
    browser->beginEditing(context->at(position).id);
    ASSERT_TRUE(
        isSeen([&] { return qobject_cast<QPlainTextEdit*>(QApplication::focusWidget()) != nullptr; }));
  }
  [[nodiscard]] QStringList chipsInSight() const {
    std::vector<const QWidget*> chips;
    for (const auto* one : bar->findChildren<QAbstractButton*>()) {
      if (one->isVisible())
        chips.push_back(one);
    }
    std::ranges::sort(chips, {}, &QWidget::x);
    QStringList tags;
    for (const QWidget* one : chips)
      tags.append(one->accessibleName().section(u' ', -1));
    return tags;
  }

  QWidget window;
  MacArchiveView* view = new MacArchiveView(*browser);
  QLineEdit* field = view->findChild<SearchField*>()->lineEdit();
  ArchiveHashtagBar* bar = view->findChild<ArchiveHashtagBar*>();
};

} // namespace

TEST_F(MacArchiveViewTest, AnEmptyListSaysWhy) {
  EXPECT_TRUE(labels().contains(QStringLiteral("No notlets yet")));
  fill({"a #work"});
  EXPECT_FALSE(labels().contains(QStringLiteral("No notlets yet")));
  field->setFocus();
  QTest::keyClicks(field, QStringLiteral("zzz"));
  EXPECT_TRUE(labels().contains(QStringLiteral("No results")));
  EXPECT_TRUE(labels().contains(QStringLiteral("Try different keywords or a hashtag.")));
  QTest::mouseClick(named(QStringLiteral("Clear search")), Qt::LeftButton);
  EXPECT_FALSE(labels().contains(QStringLiteral("No results")));
}

// Blanks find everything, but they are a search.
TEST_F(MacArchiveViewTest, ASearchOfBlanksInAnEmptyArchiveHasNoResults) {
  field->setFocus();
  QTest::keyClicks(field, QStringLiteral("  "));
  EXPECT_TRUE(labels().contains(QStringLiteral("No results")));
}

TEST_F(MacArchiveViewTest, TheFieldFollowsTheStateAndTheStateTheField) {
  fill({"a #work"});
  center.post(CommandName::focusMacArchiveSearchField);
  EXPECT_TRUE(field->hasFocus()) << "the next key is meant for it";
  EXPECT_TRUE(flags.searchFieldActive);
  QTest::keyClicks(field, QStringLiteral("anna"));
  EXPECT_EQ(state().searchText, "anna");
  center.post(CommandName::selectNextMacNotlet);
  EXPECT_FALSE(field->hasFocus());
  EXPECT_FALSE(flags.searchFieldActive);
  QTest::mouseClick(field, Qt::LeftButton);
  EXPECT_EQ(state().keyboardSection, MacArchiveKeyboardSection::search);
  EXPECT_TRUE(flags.searchFieldActive);
  center.post(CommandName::clearMacHashtagSearch);
  EXPECT_FALSE(field->hasFocus());
  EXPECT_EQ(field->text(), QStringLiteral("anna"));
}

TEST_F(MacArchiveViewTest, TheKeyboardIsWhereTheStateSaysAndTabMovesBoth) {
  fill({"a #work", "b #home"});
  ASSERT_TRUE(isSeen([&] { return bar->isVisible(); }));
  auto& list = view->findChild<ArchiveList*>()->view();
  EXPECT_TRUE(list.hasFocus());
  center.post(CommandName::selectNextMacNotlet);
  center.post(CommandName::selectPreviousMacNotlet);
  EXPECT_TRUE(bar->hasFocus());
  EXPECT_EQ(bar->accessibleName(), QStringLiteral("Hashtag filters, work"));
  center.post(CommandName::activateSelectedMacHashtag);
  EXPECT_EQ(bar->accessibleName(), QStringLiteral("Hashtag filters, work, selected"));
  center.post(CommandName::selectNextMacNotlet);
  EXPECT_TRUE(list.hasFocus());

  field->setFocus();
  QTest::keyClick(field, Qt::Key_Tab);
  EXPECT_TRUE(bar->hasFocus());
  EXPECT_TRUE(flags.hashtagNavigationActive);
  EXPECT_FALSE(flags.searchFieldActive);
  QTest::keyClick(bar, Qt::Key_Tab);
  EXPECT_TRUE(list.hasFocus());
  EXPECT_EQ(state().keyboardSection, MacArchiveKeyboardSection::results);
  QTest::keyClick(&list, Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(bar->hasFocus());
  EXPECT_TRUE(flags.hashtagNavigationActive);
}

TEST_F(MacArchiveViewTest, AClickTakesTheKeyboardFromTheSearch) {
  fill({"a #work", "b #home"});
  ASSERT_TRUE(isSeen([&] { return chip(QStringLiteral("work")) != nullptr; }));
  auto& list = view->findChild<ArchiveList*>()->view();
  const auto clickBlankSpace = [&] {
    const QRect space = list.viewport()->rect();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, {space.center().x(), space.bottom() - 5});
  };
  field->setFocus();
  QTest::mouseClick(chip(QStringLiteral("work")), Qt::LeftButton);
  EXPECT_TRUE(bar->hasFocus());
  EXPECT_TRUE(flags.hashtagNavigationActive);
  EXPECT_FALSE(flags.searchFieldActive);
  clickBlankSpace();
  EXPECT_TRUE(list.hasFocus());
  EXPECT_FALSE(flags.hashtagNavigationActive);
  field->setFocus();
  clickBlankSpace();
  EXPECT_TRUE(list.hasFocus());
  center.post(CommandName::selectNextMacNotlet);
  EXPECT_EQ(state().selectedID, context->at(0).id);

  bar->setFocus(Qt::TabFocusReason);
  QTest::mouseClick(button(QStringLiteral("Edit")), Qt::LeftButton);
  EXPECT_FALSE(flags.hashtagNavigationActive);
}

// A click on a chip is no reason to take the keyboard from a notlet that is being edited.
TEST_F(MacArchiveViewTest, AnEditorKeepsTheKeyboardWhenAChipIsClicked) {
  fill({"a #work", "b #home"});
  ASSERT_TRUE(isSeen([&] { return chip(QStringLiteral("work")) != nullptr; }));
  openEditor(0);
  QTest::mouseClick(chip(QStringLiteral("work")), Qt::LeftButton);
  EXPECT_EQ(bar->accessibleName(), QStringLiteral("Hashtag filters")) << "and points at none";
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("!"));
  EXPECT_NE(state().editDraft.find('!'), std::string::npos);
}

TEST_F(MacArchiveViewTest, AnEditorThatComesBackWithItsRowLeavesTheKeyboardInTheSearch) {
  fill({"a", "b"});
  openEditor(0);
  QTest::mouseClick(field, Qt::LeftButton);
  for (const char* typed : {"z", ""}) {
    field->setText(QString::fromUtf8(typed));
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->hasFocus()) << typed;
  }
}

TEST_F(MacArchiveViewTest, AnotherWindowTakesTheKeysForAWhileOnly) {
  field->setFocus();
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  browser->setSearchText("x");
  other.close();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  EXPECT_TRUE(field->hasFocus());
  EXPECT_TRUE(flags.searchFieldActive);
}

TEST_F(MacArchiveViewTest, TheBarIsThereWhileAnyHashtagIsInUse) {
  EXPECT_FALSE(bar->isVisible());
  fill({"a #work", "b #home"});
  ASSERT_TRUE(isSeen([&] { return bar->isVisible(); }));
  browser->updateHashtagSearch("x");
  EXPECT_TRUE(bar->isVisible()) << "though none is left to show";
  EXPECT_THAT(chipsInSight(), IsEmpty());
  EXPECT_TRUE(labels().contains(QStringLiteral("x")));
  browser->exitSearchMenu();
  browser->select(context->at(0).id);
  browser->deleteSelectedNotlet();
  browser->select(context->at(0).id);
  browser->deleteSelectedNotlet();
  EXPECT_TRUE(isSeen([&] { return !bar->isVisible(); }));
}

TEST_F(MacArchiveViewTest, AClickOnAChipFiltersAndPointsTheKeyboardAtIt) {
  fill({"a #work", "b #work #home", "c"});
  ASSERT_TRUE(isSeen([&] { return chip(QStringLiteral("home")) != nullptr; }));
  QTest::mouseClick(chip(QStringLiteral("home")), Qt::LeftButton);
  EXPECT_THAT(results(), ElementsAre("b #work #home"));
  EXPECT_EQ(state().activeHashtagIndex, 1);
  EXPECT_TRUE(flags.hashtagNavigationActive);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(chip(QStringLiteral("home")));
  EXPECT_TRUE(accessible->state().checked);
  EXPECT_FALSE(QAccessible::queryAccessibleInterface(chip(QStringLiteral("work")))->state().checked);
  QTest::mouseClick(chip(QStringLiteral("home")), Qt::LeftButton);
  EXPECT_THAT(results(), SizeIs(3));
}

TEST_F(MacArchiveViewTest, SelectedAndPointedAtChipsLookDifferent) {
  fill({"a #work", "b #work #home"});
  ASSERT_TRUE(isSeen([&] { return chip(QStringLiteral("home")) != nullptr; }));
  const int narrow = chip(QStringLiteral("home"))->width();
  const QImage resting = chip(QStringLiteral("work"))->grab().toImage();
  center.post(CommandName::selectPreviousMacNotlet);
  center.post(CommandName::selectPreviousMacNotlet);
  center.post(CommandName::selectPreviousMacNotlet);
  ASSERT_TRUE(flags.hashtagNavigationActive);
  EXPECT_NE(chip(QStringLiteral("work"))->grab().toImage(), resting) << "pointed at";
  browser->toggleTag("home");
  EXPECT_GT(chip(QStringLiteral("home"))->width(), narrow) << "has a checkmark";
}

TEST_F(MacArchiveViewTest, TenThousandHashtagsAreWalkedByAFewWidgets) {
  for (int note = 0; note < 200; ++note) {
    std::string text;
    for (int tag = 0; tag < 50; ++tag)
      text += "#tag-" + std::to_string(50 * note + tag) + " ";
    context->insert(makeNotlet(text, clock.time - std::chrono::seconds(note)).value());
  }
  ASSERT_TRUE(isSeen([&] { return bar->isVisible(); }));
  ASSERT_THAT(browser->visibleHashtags(), SizeIs(10'000));
  center.post(CommandName::selectNextMacNotlet);
  center.post(CommandName::selectPreviousMacNotlet);
  ASSERT_TRUE(flags.hashtagNavigationActive);
  for (const int step : {1, 50, 3'000, 6'000, 9'999, -7'000, -9'999}) {
    browser->moveBetweenHashtags(step);
    const auto pointed = static_cast<std::size_t>(state().activeHashtagIndex);
    const QString tag = QString::fromStdString(browser->visibleHashtags()[pointed]);
    ASSERT_TRUE(isSeen([&] {
      const QWidget* pointedAt = chip(tag);
      if (pointedAt == nullptr)
        return false;
      const int middle = pointedAt->mapTo(bar, pointedAt->rect().center()).x();
      const bool isAtAnEnd = pointed < 10 || pointed > 9'990;
      return isAtAnEnd ? bar->rect().contains(middle, 1) : std::abs(middle - bar->width() / 2) < 3;
    })) << qPrintable(tag);
  }
  EXPECT_LT(bar->findChildren<QAbstractButton*>().size(), 40);
}

TEST_F(MacArchiveViewTest, EitherWheelScrollsTheChipsBetweenTheirEnds) {
  std::string text;
  for (int tag = 0; tag < 40; ++tag)
    text += "#tag-" + std::to_string(10 + tag) + " ";
  fill({text});
  ASSERT_TRUE(isSeen([&] { return bar->isVisible(); }));
  const QStringList start = chipsInSight();
  const auto wheel = [&](const QPoint& angle) {
    const QPointF place = bar->rect().center();
    QWheelEvent event(place, bar->mapToGlobal(place), {}, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(bar, &event);
  };
  wheel({0, 120});
  EXPECT_EQ(chipsInSight(), start) << "it was at its start";
  wheel({0, -2'000});
  EXPECT_NE(chipsInSight(), start);
  wheel({-100'000, 0});
  EXPECT_EQ(chipsInSight().back(), QString::fromStdString(browser->visibleHashtags().back()));
  wheel({0, 100'000});
  EXPECT_EQ(chipsInSight(), start);
}

TEST_F(MacArchiveViewTest, DeletingAsksAndOnlyDeleteDeletes) {
  fill({"a", "b"});
  browser->requestDeletion(context->at(0).id);
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->accessibleName(), QStringLiteral("Delete this notlet?"));
  EXPECT_TRUE(labels().contains(QStringLiteral("This cannot be undone.")));
  alert()->reject();
  EXPECT_FALSE(state().showingDeleteConfirmation);
  EXPECT_EQ(context->size(), 2U);
  center.post(CommandName::deleteSelectedMacNotlet);
  QTest::mouseClick(button(QStringLiteral("Delete"), *alert()), Qt::LeftButton);
  EXPECT_THAT(results(), ElementsAre("b"));
  EXPECT_EQ(alert(), nullptr);
}

// Nobody should have to guess which notlet is about to go. Its text must not turn the dialog's around.
TEST_F(MacArchiveViewTest, TheQuestionQuotesTheNotletInSightOrNot) {
  fill({"\u202Efirst\n\u2066words are many here, and by far too many for a question\nlast", "second"});
  const auto quotes = [&] {
    center.post(CommandName::deleteSelectedMacNotlet);
    const QStringList texts = labels();
    alert()->reject();
    return texts.filter(QStringLiteral("first words"));
  };
  center.post(CommandName::selectNextMacNotlet);
  const QStringList quoted = quotes();
  ASSERT_EQ(quoted.size(), 1);
  EXPECT_LT(quoted[0].size(), 80);
  EXPECT_FALSE(quoted[0].contains(QChar(0x202E)) || quoted[0].contains(QStringLiteral("last")));
  browser->setSearchText("zzz");
  EXPECT_EQ(quotes().size(), 1) << "there is no list";
}

TEST_F(MacArchiveViewTest, AFailureIsToldOnceAndCanBeDismissed) {
  fill({"a", "b"});
  browser->requestDeletion(context->at(0).id);
  breakStore();
  alert()->accept();
  mendStore();
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->accessibleName(), QStringLiteral("Unable to update notlet"));
  EXPECT_TRUE(labels().contains(QStringLiteral("This notlet was not deleted. Please try again.")));
  browser->setSearchText("a");
  EXPECT_THAT(window.findChildren<Alert*>(), SizeIs(testing::Le(2)));
  alert()->accept();
  EXPECT_FALSE(state().saveError);
  EXPECT_EQ(context->size(), 2U);
}

TEST_F(MacArchiveViewTest, TheTextOfANotletDeletedElsewhereIsOffered) {
  const auto ids = fill({"first", "second"});
  browser->beginEditing(ids[0]);
  browser->setEditDraft("worth keeping");
  storeElsewhere({}, {ids[0]});
  ASSERT_TRUE(isSeen([&] { return button(QStringLiteral("Save as new notlet")) != nullptr; }));
  EXPECT_FALSE(labels().filter(QStringLiteral("worth keeping")).isEmpty());
  QTest::mouseClick(button(QStringLiteral("Discard")), Qt::LeftButton);
  ASSERT_NE(alert(), nullptr) << "it asks first";
  alert()->reject();
  QTest::mouseClick(button(QStringLiteral("Save as new notlet")), Qt::LeftButton);
  EXPECT_THAT(results(), testing::UnorderedElementsAre("worth keeping", "second"));
  EXPECT_EQ(button(QStringLiteral("Save as new notlet")), nullptr);
}

TEST_F(MacArchiveViewTest, TheSectionStartsAnewButNotTheWindow) {
  fill({"a", "b"});
  field->setFocus();
  QTest::keyClicks(field, QStringLiteral("a"));
  window.hide();
  window.show();
  EXPECT_EQ(state().searchText, "a");
  view->hide();
  EXPECT_EQ(flags, ArchiveKeyboardFlags());
  view->show();
  EXPECT_EQ(field->text(), QString());
  EXPECT_EQ(browser->resultCount(), 2U);
  browser->beginEditing(context->at(0).id);
  delete std::exchange(view, nullptr);
  EXPECT_EQ(flags, ArchiveKeyboardFlags());
}

TEST_F(MacArchiveViewTest, EverythingFitsAtTheSmallestSize) {
  const auto ids = fill({"a #workshop-with-a-long-name-that-nobody-would-type #home", "b"});
  browser->beginEditing(ids[1]);
  browser->setEditDraft("text of some length that has to be wrapped in the banner");
  storeElsewhere({}, {ids[1]});
  ASSERT_TRUE(isSeen([&] { return button(QStringLiteral("Discard")) != nullptr; }));
  std::filesystem::create_directories(editFolder() / (ids[0].text() + ".txt") / "in the way");
  browser->beginEditing(ids[0]);
  browser->setEditDraft("not safe on disk");
  unsavedEdits->flush();
  ASSERT_TRUE(isSeen([&] { return named(QStringLiteral("Dismiss message")) != nullptr; }));
  browser->updateHashtagSearch("workshopworkshopworkshop");
  browser->clearHashtagSearch();
  browser->updateHashtagSearch("o");
  for (const QSize size : {QSize(360, 420), QSize(700, 600), QSize(1920, 1080)}) {
    window.resize(size);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(view->size(), size);
    for (const QWidget* widget : {static_cast<QWidget*>(field), static_cast<QWidget*>(bar),
                                  static_cast<QWidget*>(button(QStringLiteral("Save as new notlet"))),
                                  static_cast<QWidget*>(button(QStringLiteral("Discard")))}) {
      EXPECT_TRUE(view->rect().contains(QRect(widget->mapTo(view, QPoint()), widget->size())))
          << widget->metaObject()->className() << " at " << size.width();
      EXPECT_GE(widget->height(), widget->sizeHint().height()) << widget->metaObject()->className();
    }
  }
}

} // namespace notlet
