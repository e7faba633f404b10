#include <gtest/gtest.h>

#include <QSignalSpy>

#include "capture/ComposerFixture.h"

namespace notlet {

namespace {

using namespace std::chrono_literals;

class CaptureComposerTest : public ComposerFixture {
 protected:
  CaptureComposerTest() { composer.appear(); }
};

} // namespace

TEST_F(CaptureComposerTest, SavesTheTrimmedTextWithItsTagsAndEmptiesTheInput) {
  save("  hello #Work  ");
  ASSERT_EQ(context.size(), 1U);
  const NotletEntry& saved = context.at(0);
  EXPECT_EQ(saved.content, "hello #Work");
  EXPECT_EQ(saved.hashtags, WordList{"Work"});
  EXPECT_EQ(saved.createdAt, clock.time);
  EXPECT_FALSE(saved.updatedAt);
  EXPECT_EQ(composer.state().input, "");
  EXPECT_TRUE(composer.state().showConfirmation);
  EXPECT_TRUE(composer.state().inputFocused);
}

TEST_F(CaptureComposerTest, LeavesADraftWithoutTextAsItIs) {
  for (const std::string text : {"", "   ", "\n\t \xE2\x80\xA8\xE2\x80\xA9\xC2\xA0\xC2\x85"}) {
    composer.setInput(text);
    EXPECT_FALSE(composer.state().canSave());
    composer.save();
    EXPECT_EQ(composer.state().input, text);
    EXPECT_FALSE(composer.state().saveError);
    EXPECT_FALSE(composer.state().showConfirmation);
  }
  EXPECT_EQ(context.size(), 0U);
}

TEST_F(CaptureComposerTest, AFailedSaveKeepsTheDraftAndARetryStoresItOnce) {
  const std::string draft = "  not lost \n";
  breakStore();
  save(draft);
  EXPECT_EQ(composer.state().saveError, "Your draft is still here. Please try again.");
  EXPECT_NE(composer.state().saveFailureReason, "");
  EXPECT_EQ(composer.state().input, draft);
  EXPECT_FALSE(composer.state().showConfirmation);
  EXPECT_EQ(context.size(), 0U);

  composer.dismissSaveError();
  EXPECT_FALSE(composer.state().saveError);
  mendStore();
  composer.save();
  EXPECT_EQ(contents(), std::vector<std::string>{"not lost"});
  EXPECT_EQ(composer.state().input, "");
  EXPECT_EQ(ModelContext(openDatabase()).size(), 1U);
}

TEST_F(CaptureComposerTest, TheFirstOfTwoConfirmationsToFinishHidesBoth) {
  save("one");
  scheduler.advance(1000ms);
  save("two");
  scheduler.advance(199ms);
  EXPECT_TRUE(composer.state().showConfirmation);
  scheduler.advance(1ms);
  EXPECT_FALSE(composer.state().showConfirmation);
}

TEST_F(CaptureComposerTest, OffersUsedTagsForTheOneBeingTypedAtTheEnd) {
  for (const char* text : {"a #project", "b #project", "c #pro", "d #work"})
    save(text);
  const struct {
    const char* input;
    std::vector<std::string> offered;
  } cases[] = {
      {"note #", {"project", "pro", "work"}},
      {"note #pro", {"project"}},
      {"#Pro", {"project"}},
      {"note#pro", {}},
      {"#pro more", {}},
      {"note #project", {}},
      {"note", {}},
      {"", {}},
  };
  for (const auto& [input, offered] : cases) {
    composer.setInput(input);
    EXPECT_EQ(composer.suggestions(), offered) << input;
  }
}

TEST_F(CaptureComposerTest, AChosenTagCompletesTheTextAndTheEditorTakesTheFocusBack) {
  composer.setInput("plan #pro");
  composer.setInputFocused(false);
  composer.acceptSuggestion("project");
  EXPECT_EQ(composer.state().input, "plan #project ");
  EXPECT_TRUE(composer.state().inputFocused);
}

TEST_F(CaptureComposerTest, FollowsTheFocusCommandsOfTheMainWindowOnly) {
  const struct {
    CommandName command;
    bool before;
    bool after;
  } cases[] = {
      {CommandName::showMacCapture, false, true},        {CommandName::focusMacNotletInput, false, true},
      {CommandName::enterMacFloatingMode, true, false},  {CommandName::focusMacCaptureInput, false, false},
      {CommandName::stopMacFloatingCapture, true, true},
  };
  for (const auto& [command, before, after] : cases) {
    composer.setInputFocused(before);
    center.post(command);
    EXPECT_EQ(composer.state().inputFocused, after) << text(command);
  }
}

TEST_F(CaptureComposerTest, RedrawsWhenTheStoredNotletsChange) {
  composer.setInput("note #");
  const QSignalSpy spy(&composer, &CaptureComposer::changed);
  auto other = makeNotlet("elsewhere #new", clock.time);
  ASSERT_TRUE(other);
  context.insert(*other);
  EXPECT_GE(spy.count(), 1);
  EXPECT_EQ(composer.suggestions(), std::vector<std::string>{"new"});
}

TEST_F(CaptureComposerTest, BringsTheDraftBackAfterACrashAndForgetsItOnceSaved) {
  composer.setInput("half a sen");
  drafts.flush();
  {
    DraftKeeper next(directory.path() / "drafts", "main-window", scheduler);
    CaptureComposer restarted({context, center, clock, scheduler, next});
    restarted.appear();
    EXPECT_EQ(restarted.state().input, "half a sen");
    EXPECT_TRUE(restarted.state().inputFocused);
    restarted.save();
  }
  DraftKeeper last(directory.path() / "drafts", "main-window", scheduler);
  EXPECT_EQ(last.restore(), "");
}

} // namespace notlet
