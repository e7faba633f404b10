#include <gtest/gtest.h>

#include <QSignalSpy>

#include "capture/ComposerFixture.h"
#include "support/FakeWidgetTimelines.h"

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

TEST_F(CaptureComposerTest, EachSurfaceFollowsTheFocusCommandsOfItsOwnOnly) {
  CaptureComposer quick({context, center, clock, scheduler, drafts}, CaptureComposer::Surface::quickCapture);
  enum class Effect { none, takes, givesUp };
  using enum Effect;
  const struct {
    CommandName command;
    Effect inMainWindow;
    Effect inQuickCapture;
  } cases[] = {
      {CommandName::showMacCapture, takes, none},           {CommandName::focusMacNotletInput, takes, none},
      {CommandName::enterMacFloatingMode, givesUp, none},   {CommandName::focusMacCaptureInput, none, takes},
      {CommandName::stopMacFloatingCapture, none, givesUp},
  };
  for (const auto& [command, inMainWindow, inQuickCapture] : cases) {
    for (const bool before : {false, true}) {
      const auto expected = [before](Effect effect) { return effect == none ? before : effect == takes; };
      composer.setInputFocused(before);
      quick.setInputFocused(before);
      center.post(command);
      EXPECT_EQ(composer.state().inputFocused, expected(inMainWindow)) << text(command);
      EXPECT_EQ(quick.state().inputFocused, expected(inQuickCapture)) << text(command);
    }
  }
}

TEST_F(CaptureComposerTest, TheDesktopWidgetsHearOfWhatAQuickCaptureSaved) {
  FakeWidgetTimelines timelines;
  CaptureComposer quick({context, center, clock, scheduler, drafts, &timelines},
                        CaptureComposer::Surface::quickCapture);
  CaptureComposer main({context, center, clock, scheduler, drafts, &timelines});
  for (CaptureComposer* surface : {&quick, &main}) {
    surface->setInput("  ");
    surface->save();
    breakStore();
    surface->setInput("kept");
    surface->save();
    mendStore();
    EXPECT_TRUE(timelines.reloaded.empty() || surface == &main);
    surface->save();
  }
  EXPECT_EQ(timelines.reloaded, std::vector<std::string>{"NotletMacQuickCapture"});
  EXPECT_EQ(context.size(), 2U);
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

TEST_F(CaptureComposerTest, ANoticeOfADraftSetAsideOutlastsTheNextWrites) {
  setAsideADraft();
  CaptureComposer other({context, center, clock, scheduler, drafts});
  other.appear();
  Q_EMIT drafts.reported("");
  EXPECT_NE(other.state().draftNotice, "");
  EXPECT_EQ(other.state().draftWarning, "") << "what is typed now is safe";
  other.dismissDraftNotice();
  EXPECT_EQ(other.state().draftNotice, "");
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
