#include "archive/ArchiveBrowser.h"

#include <QSignalSpy>
#include <gmock/gmock.h>
#include <sstream>

#include "archive/ArchiveFixture.h"
#include "core/HashtagSuggestionService.h"
#include "core/RandomText.h"

namespace notlet {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Section = MacArchiveKeyboardSection;

class ArchiveBrowserTest : public ArchiveFixture {
 protected:
  /// Carries out a line of words: names of commands without their common endings, "click-2" on a row,
  /// "chip-1" on a hashtag, "key-w" in the hashtag search, "search-x" typed into the field.
  void play(const std::string& line) {
    std::istringstream words(line);
    for (std::string word; words >> word;)
      perform(word);
  }

  [[nodiscard]] std::string selectedText() const {
    const NotletEntry* notlet = browser->selectedNotlet();
    return notlet ? notlet->content.str() : "-";
  }

 private:
  void clickChip(std::size_t number) {
    if (number < browser->visibleHashtags().size())
      browser->chooseHashtag(std::string(browser->visibleHashtags()[number]));
  }
  void perform(const std::string& word) {
    static const std::map<std::string, CommandName> commands = {
        {"down", CommandName::selectNextMacNotlet},
        {"up", CommandName::selectPreviousMacNotlet},
        {"right", CommandName::selectNextMacHashtag},
        {"left", CommandName::selectPreviousMacHashtag},
        {"activate", CommandName::activateSelectedMacHashtag},
        {"escape", CommandName::clearMacHashtagSearch},
        {"edit", CommandName::editSelectedMacNotlet},
        {"delete", CommandName::deleteSelectedMacNotlet},
        {"save", CommandName::saveEditingMacNotlet},
        {"cancel", CommandName::cancelEditingMacNotlet},
        {"field", CommandName::focusMacArchiveSearchField},
    };
    const std::string argument = word.substr(std::min(word.size(), word.find('-') + 1));
    if (const auto command = commands.find(word); command != commands.end())
      center.post(command->second);
    else if (word.starts_with("click-"))
      browser->select(browser->resultAt(std::stoul(argument)).id);
    else if (word.starts_with("chip-"))
      clickChip(std::stoul(argument));
    else if (word.starts_with("key-"))
      center.post(CommandName::searchMacHashtags, argument);
    else if (word.starts_with("search-"))
      browser->setSearchText(argument);
    else
      FAIL() << "no such step: " << word;
  }
};

} // namespace

TEST_F(ArchiveBrowserTest, TheKeyboardWalksThroughFieldHashtagsAndResults) {
  fill({"a #work", "b #work #home", "c"});
  struct {
    const char* steps;
    Section section;
    const char* selected;
    bool fieldFocused;
    int pointedAt;
  } const cases[] = {
      {"", Section::results, "-", false, 0},
      {"down", Section::results, "a #work", false, 0},
      {"up", Section::results, "c", false, 0},
      {"down down down down", Section::results, "c", false, 0},
      {"down up", Section::hashtags, "a #work", false, 0},
      {"down up up", Section::search, "a #work", true, 0},
      {"down up up up", Section::search, "a #work", true, 0},
      {"down up up down", Section::hashtags, "a #work", false, 0},
      {"down down up up up down down", Section::results, "a #work", false, 0},
      {"down up right", Section::hashtags, "a #work", false, 1},
      {"down up right right right", Section::hashtags, "a #work", false, 1},
      {"down up right left left", Section::hashtags, "a #work", false, 0},
      {"down up right up down", Section::hashtags, "a #work", false, 1},
      {"right", Section::results, "-", false, 0},
      {"click-1 up up", Section::hashtags, "a #work", false, 0},
      {"field", Section::search, "-", true, 0},
      {"field down", Section::hashtags, "-", false, 0},
      {"field down down", Section::results, "a #work", false, 0},
      {"field click-2", Section::results, "c", false, 0},
      {"field escape", Section::results, "-", false, 0},
      {"chip-1", Section::hashtags, "-", false, 1},
      {"chip-1 down", Section::results, "b #work #home", false, 1},
      {"click-2 chip-1 down", Section::results, "b #work #home", false, 1},
      {"click-1 chip-1 down", Section::results, "b #work #home", false, 1},
      {"search-zzz down", Section::results, "-", false, 0},
      {"search-zzz up", Section::hashtags, "-", false, 0},
      {"click-2 search-zzz up down", Section::results, "-", false, 0},
      {"click-2 search-b down", Section::results, "b #work #home", false, 0},
      {"chip-1 key-x right down up", Section::hashtags, "b #work #home", false, 0},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.steps);
    start();
    play(expected.steps);
    EXPECT_EQ(state().keyboardSection, expected.section);
    EXPECT_EQ(selectedText(), expected.selected);
    EXPECT_EQ(state().searchFocused, expected.fieldFocused);
    EXPECT_EQ(state().activeHashtagIndex, expected.pointedAt);
    EXPECT_EQ(flags.searchFieldActive, expected.fieldFocused);
    EXPECT_EQ(flags.hashtagNavigationActive, expected.section == Section::hashtags);
  }
}

// The newest notlets are there at once, the others a moment later.
TEST_F(ArchiveBrowserTest, UpSelectsTheLastResultOnceThatIsKnown) {
  std::vector<NotletEntry> notlets;
  for (int second = 0; second < 5000; ++second)
    notlets.push_back(notletAt(second, "note " + std::to_string(second)));
  storeElsewhere(notlets);
  const struct {
    const char* steps;
    const char* selected;
    Section section;
  } cases[] = {
      {"up", "note 0", Section::results},
      {"up up", "note 0", Section::results},
      {"up down", "note 4999", Section::results},
      {"up click-1", "note 4998", Section::results},
      {"search-49 up", "note 49", Section::results},
      {"search-zzz up", "-", Section::hashtags},
      {"up field", "-", Section::search},
  };
  for (const auto& [steps, selected, section] : cases) {
    SCOPED_TRACE(steps);
    start();
    ASSERT_FALSE(context->isComplete());
    play(steps);
    EXPECT_NE(selectedText(), "note 4800") << "the last one so far";
    ASSERT_TRUE(QTest::qWaitFor([&] { return context->isComplete() && !browser->isSearching(); }));
    EXPECT_EQ(selectedText(), selected);
    EXPECT_EQ(state().keyboardSection, section);
  }
}

TEST_F(ArchiveBrowserTest, WithoutHashtagsTheKeyboardSkipsTheirBar) {
  fill({"a", "b"});
  play("down up");
  EXPECT_EQ(state().keyboardSection, Section::search);
  EXPECT_TRUE(state().searchFocused);
  browser->select(context->at(1).id);
  browser->setSearchFocused(true);
  play("down");
  EXPECT_EQ(state().keyboardSection, Section::results);
  EXPECT_EQ(selectedText(), "a");
}

TEST_F(ArchiveBrowserTest, HashtagsNarrowTheListTogetherAndInAnyLetterCase) {
  fill({"a #Work", "b #work #HOME", "c #home"});
  browser->toggleTag("WORK");
  EXPECT_THAT(results(), ElementsAre("a #Work", "b #work #HOME"));
  browser->toggleTag("home");
  EXPECT_THAT(results(), ElementsAre("b #work #HOME"));
  browser->toggleTag("work");
  EXPECT_THAT(results(), ElementsAre("b #work #HOME", "c #home"));
}

TEST_F(ArchiveBrowserTest, AFilterGoesWithTheLastNotletThatCarriesItsHashtag) {
  const auto ids = fill({"a #work", "b #home", "c"});
  play("chip-0 down delete");
  breakStore();
  browser->deleteSelectedNotlet();
  EXPECT_THAT(state().selectedTags, ElementsAre("work")) << "it failed";
  mendStore();
  browser->deleteSelectedNotlet();
  EXPECT_THAT(results(), ElementsAre("b #home", "c"));
  play("chip-0");
  browser->beginEditing(ids[1]);
  browser->setEditDraft("b");
  play("save");
  EXPECT_THAT(results(), ElementsAre("b", "c"));
  EXPECT_EQ(state().keyboardSection, Section::results) << "there are no hashtags to walk through";
}

// That one is not loaded yet says nothing.
TEST_F(ArchiveBrowserTest, AFilterWaitsForTheOldestNotlets) {
  std::vector<NotletEntry> notlets;
  for (int second = 0; second < 1000; ++second)
    notlets.push_back(notletAt(second));
  notlets[0].hashtags = {"old"};
  storeElsewhere(notlets);
  start();
  ASSERT_FALSE(context->isComplete());
  browser->toggleTag("old");
  ASSERT_TRUE(QTest::qWaitFor([&] { return browser->resultCount() == 1; }));
  storeElsewhere({}, {notlets[0].id});
  EXPECT_TRUE(QTest::qWaitFor([&] { return browser->resultCount() == 999; }));
}

TEST_F(ArchiveBrowserTest, TypingSearchesTheHashtags) {
  fill({"#work #home #Workshop", "#work #home", "#caf\xC3\xA9 #work"});
  struct {
    const char* steps;
    const char* input;
    std::vector<std::string> visible;
  } const cases[] = {
      {"", "", {"work", "home", "caf\xC3\xA9", "workshop"}},
      {"key-w key-o", "wo", {"work", "workshop"}},
      {"key-W key-O", "WO", {"work", "workshop"}},
      {"key-o key-m", "om", {"home"}},
      {"key-w key-x", "wx", {}},
      {"key-\xC3\x89", "\xC3\x89", {"caf\xC3\xA9"}},
      {"key-\xC3\xA9 key-backspace", "", {"work", "home", "caf\xC3\xA9", "workshop"}},
      {"key-backspace", "", {"work", "home", "caf\xC3\xA9", "workshop"}},
      {"key-w key-x escape", "", {"work", "home", "caf\xC3\xA9", "workshop"}},
  };
  for (const auto& [steps, input, visible] : cases) {
    SCOPED_TRACE(steps);
    start();
    play("chip-1 right");
    play(steps);
    EXPECT_EQ(state().hashtagSearchInput, input);
    EXPECT_THAT(browser->visibleHashtags(), testing::UnorderedElementsAreArray(visible));
    EXPECT_EQ(state().activeHashtagIndex, *steps == '\0' ? 2 : 0);
  }
}

TEST_F(ArchiveBrowserTest, ActivatingWhereNoHashtagIsDoesNothing) {
  fill({"#work"});
  play("activate");
  EXPECT_THAT(state().selectedTags, IsEmpty()) << "the keyboard is not there";
  play("down up key-x activate right");
  EXPECT_THAT(state().selectedTags, IsEmpty()) << "none is visible";
  play("key-backspace activate");
  EXPECT_THAT(state().selectedTags, ElementsAre("work"));
  play("activate");
  EXPECT_THAT(state().selectedTags, IsEmpty());
  center.post(CommandName::searchMacHashtags);
  EXPECT_EQ(state().hashtagSearchInput, "") << "a key without a name";
}

TEST_F(ArchiveBrowserTest, EscapeDropsHashtagFiltersAndKeepsTheTextSearch) {
  fill({"plan #work", "plan"});
  play("search-plan chip-0 key-w escape");
  EXPECT_EQ(state().searchText, "plan");
  EXPECT_THAT(state().selectedTags, IsEmpty());
  EXPECT_EQ(browser->resultCount(), 2U);
}

TEST_F(ArchiveBrowserTest, ADraftWithoutTextLeavesTheEditorOpen) {
  const Uuid id = fill({"old"})[0];
  play("down edit");
  browser->setEditDraft(" \n\t ");
  play("save");
  EXPECT_EQ(state().editingID, id);
  EXPECT_EQ(state().editDraft, " \n\t ");
  EXPECT_FALSE(state().saveError);
  EXPECT_EQ(storedText(id), "old");
}

TEST_F(ArchiveBrowserTest, WhatClosesTheEditorAndWhatDoesNot) {
  struct {
    const char* steps;
    bool isEditing;
  } const cases[] = {
      {"cancel", false}, {"down", false},        {"up", false},    {"field", false}, {"click-1", false},
      {"click-0", true}, {"save", false},        {"edit", true},   {"delete", true}, {"search-x", true},
      {"chip-0", true},  {"chip-0 right", true}, {"escape", true},
  };
  fill({"a #work #home", "b"});
  for (const auto& [steps, isEditing] : cases) {
    SCOPED_TRACE(steps);
    start();
    play("down edit");
    const std::string draft = std::string("a #work #home, typed before ") + steps;
    browser->setEditDraft(draft);
    play(steps);
    EXPECT_EQ(state().editingID.has_value(), isEditing);
    EXPECT_EQ(flags.editingActive, isEditing);
    EXPECT_EQ(state().editDraft, isEditing ? draft : "");
  }
}

TEST_F(ArchiveBrowserTest, AFailedSaveLeavesNotletAndDraftAsTheyWere) {
  const Uuid id = fill({"old #tag"})[0];
  play("down edit");
  browser->setEditDraft("precious");
  const NotletEntry before = *context->find(id);
  breakStore();
  play("save");
  EXPECT_EQ(state().saveError, "This notlet was not updated. Please try again.");
  EXPECT_NE(state().saveFailureReason, "");
  EXPECT_EQ(state().editingID, id);
  EXPECT_EQ(state().editDraft, "precious");
  EXPECT_EQ(*context->find(id), before);
  mendStore();
  browser->dismissSaveError();
  EXPECT_FALSE(state().saveError);
  clock.time += std::chrono::hours(1);
  play("save");
  EXPECT_EQ(storedText(id), "precious");
  EXPECT_EQ(context->find(id)->updatedAt, clock.time);
}

TEST_F(ArchiveBrowserTest, DeletingAsksFirstAndThenNothingIsSelected) {
  const auto ids = fill({"a", "b", "c"});
  play("down down delete");
  EXPECT_TRUE(state().showingDeleteConfirmation);
  browser->dismissDeleteConfirmation();
  EXPECT_EQ(context->size(), 3U);
  play("edit delete");
  browser->deleteSelectedNotlet();
  EXPECT_THAT(results(), ElementsAre("a", "c"));
  EXPECT_EQ(storedText(ids[1]), "");
  EXPECT_FALSE(state().selectedID);
  EXPECT_FALSE(state().editingID);
  EXPECT_FALSE(state().showingDeleteConfirmation);
  play("delete edit save");
  EXPECT_FALSE(state().showingDeleteConfirmation) << "nothing is selected";
  play("down");
  EXPECT_EQ(selectedText(), "a");
}

TEST_F(ArchiveBrowserTest, AFailedDeletionKeepsNotletSelectionAndEditor) {
  const Uuid id = fill({"a", "b"})[0];
  play("down edit");
  browser->setEditDraft("a, changed");
  play("delete");
  breakStore();
  browser->deleteSelectedNotlet();
  EXPECT_EQ(state().saveError, "This notlet was not deleted. Please try again.");
  EXPECT_EQ(state().selectedID, id);
  EXPECT_EQ(state().editingID, id);
  EXPECT_EQ(state().editDraft, "a, changed");
  EXPECT_THAT(results(), ElementsAre("a", "b"));
  mendStore();
}

TEST_F(ArchiveBrowserTest, AHiddenSelectionIsStillEditedAndDeleted) {
  fill({"a", "b"});
  play("down search-b edit");
  EXPECT_EQ(state().editDraft, "a");
  browser->setEditDraft("a, changed");
  play("save delete");
  browser->deleteSelectedNotlet();
  browser->setSearchText("");
  EXPECT_THAT(results(), ElementsAre("b"));
}

TEST_F(ArchiveBrowserTest, StartsAnewAndLeavesNoFlagBehindWhenItGoesAway) {
  fill({"a #work"});
  play("down edit search-a chip-0 field");
  EXPECT_TRUE(flags.searchFieldActive);
  browser->disappear();
  EXPECT_EQ(flags, ArchiveKeyboardFlags());
  EXPECT_EQ(state(), ArchiveBrowser::State());
  EXPECT_EQ(browser->resultCount(), 1U);
  play("down field");
  EXPECT_EQ(state(), ArchiveBrowser::State()) << "out of view, commands do nothing";
  browser->appear();
  EXPECT_TRUE(flags.searchFieldActive) << "but the screen may be shown for this one";
  browser->disappear();
  browser->appear();
  play("down edit");
  EXPECT_TRUE(flags.editingActive);
  browser.reset();
  EXPECT_EQ(flags, ArchiveKeyboardFlags());
  center.post(CommandName::selectNextMacNotlet);
}

TEST_F(ArchiveBrowserTest, TellsOnlyOfChanges) {
  fill({"a"});
  const QSignalSpy spy(browser.get(), &ArchiveBrowser::changed);
  play("cancel escape left right activate save");
  browser->setSearchText("");
  browser->setSearchFocused(false);
  browser->dismissSaveError();
  EXPECT_EQ(spy.count(), 0);
  play("down");
  EXPECT_EQ(spy.count(), 1);
}

// Whatever is pressed in whatever order: nothing out of bounds, flags that agree with the state, and the
// same lists as the plain rules give.
TEST_F(ArchiveBrowserTest, KeepsItsPromisesOnLongRandomWalks) {
  const std::vector<std::string> steps = {
      "down",   "down",          "up",          "up",      "left",     "right",   "activate", "escape",
      "edit",   "delete",        "save",        "cancel",  "field",    "click-0", "chip-0",   "chip-1",
      "key-w",  "key-backspace", "search-work", "search-", "search-a", "CONFIRM", "DISMISS",  "TYPE",
      "INSERT", "BREAK"};
  RandomText random(7);
  fill({"a #work", "b #work #home", "c", "work in progress #wip", "d #home"});
  bool isBroken = false;
  for (int round = 0; round < 6000; ++round) {
    const std::string step = steps[random.below(steps.size())];
    SCOPED_TRACE(step + " in round " + std::to_string(round));
    const std::size_t before = context->size();
    if (step == "CONFIRM" && state().showingDeleteConfirmation)
      browser->deleteSelectedNotlet();
    else if (step == "DISMISS") {
      browser->dismissDeleteConfirmation();
      browser->dismissSaveError();
    } else if (step == "TYPE")
      browser->setEditDraft(random.text(4));
    else if (step == "INSERT" && before < 30 && !isBroken)
      fill({random.text(6) + "x #w" + std::to_string(random.below(9))});
    else if (step == "BREAK") {
      isBroken ? mendStore() : breakStore();
      isBroken = !isBroken;
    } else if (std::islower(step[0]) != 0 && (step != "click-0" || browser->resultCount() > 0))
      play(step);

    EXPECT_EQ(flags.editingActive, state().editingID.has_value());
    EXPECT_EQ(flags.searchFieldActive, state().searchFocused);
    EXPECT_EQ(flags.hashtagNavigationActive, state().keyboardSection == Section::hashtags);
    EXPECT_GE(state().activeHashtagIndex, 0);
    EXPECT_TRUE(state().editingID || state().editDraft.empty());
    EXPECT_TRUE(!state().editingID || context->find(*state().editingID));
    EXPECT_TRUE(state().saveError || state().saveFailureReason.empty());
    EXPECT_FALSE(context->hasUnsavedChanges());
    EXPECT_GE(context->size() + 1, before);
    std::vector<NotletEntry> all;
    for (std::size_t position = 0; position < context->size(); ++position)
      all.push_back(context->at(position));
    ASSERT_EQ(browser->usedHashtags(), HashtagSuggestionService::usedHashtags(all));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !browser->isSearching(); }));
    std::erase_if(all, [filter = ArchiveFilter::make(state().searchText, state().selectedTags)](
                           const NotletEntry& notlet) { return !filter.admits(notlet); });
    ASSERT_EQ(browser->resultCount(), all.size());
    if (HasFailure())
      break;
  }
  if (isBroken)
    mendStore();
}

} // namespace notlet
