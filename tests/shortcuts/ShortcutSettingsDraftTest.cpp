#include "shortcuts/ShortcutSettingsDraft.h"

#include <QSignalSpy>
#include <gmock/gmock.h>
#include <limits>

#include "shortcuts/SettingsFixture.h"

namespace notlet {
namespace {

using testing::SizeIs;
using testing::StartsWith;

class ShortcutSettingsDraftTest : public SettingsFixture {};

TEST_F(ShortcutSettingsDraftTest, EachFieldIsOneOfTheFileAndOnlySavingWritesIt) {
  const std::string before = contents();
  for (const ShortcutField field : allShortcutFields) {
    const std::string value = "x" + std::to_string(static_cast<int>(field));
    draft.setText(field, value);
    EXPECT_EQ(valueOf(shown(), field), value);
  }
  EXPECT_TRUE(draft.state().isUnsaved());
  EXPECT_EQ(contents(), before);
  EXPECT_EQ(settings.config(), MacShortcutConfig::defaults());

  draft.save();
  EXPECT_EQ(alert(), "");
  EXPECT_FALSE(draft.state().isUnsaved());
  EXPECT_EQ(MacShortcutConfig::decode(contents()).value(), shown());
  EXPECT_EQ(settings.config().commands.remove, "x5");
  EXPECT_EQ(settings.config().archiveNavigation.previousAlternate, "x9");
}

TEST_F(ShortcutSettingsDraftTest, WhatCannotBeSavedStaysInTheFormAndOutOfForce) {
  draft.setText(ShortcutField::leader, "");
  draft.setText(ShortcutField::edit, "");
  draft.save();
  EXPECT_EQ(alert(), "The leader must include a key, for example control+s.");
  EXPECT_EQ(settings.config().leader, "control+s");
  draft.dismissAlert();
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(shown().leader, "");

  draft.setText(ShortcutField::leader, "control+k");
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  draft.save();
  EXPECT_THAT(alert(), StartsWith("Notlet could not save the shortcut config: "));
  EXPECT_EQ(shown().leader, "control+k");
  EXPECT_EQ(settings.config().leader, "control+s");

  std::filesystem::remove(file);
  draft.save();
  EXPECT_EQ(alert(), "");
  EXPECT_EQ(settings.config().leader, "control+k");
  EXPECT_EQ(settings.config().commands.edit, "") << "keys may be empty";
}

TEST_F(ShortcutSettingsDraftTest, TheTimeoutMovesInStepsAndStaysInItsRange) {
  struct Case {
    std::int64_t before;
    std::int64_t raised;
    std::int64_t lowered;
  };
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  for (const auto& [before, raised, lowered] :
       {Case{1200, 1300, 1100}, Case{100, 200, 100}, Case{150, 250, 100}, Case{5000, 5000, 4900},
        Case{4950, 5000, 4850}, Case{50, 150, 50}, Case{9000, 9000, 5000}, Case{largest, largest, 5000},
        Case{least, 100, least}}) {
    MacShortcutConfig config;
    config.leaderTimeoutMilliseconds = before;
    put(config);
    draft.reload();
    EXPECT_EQ(shown().leaderTimeoutMilliseconds, before);
    draft.raiseTimeout();
    EXPECT_EQ(shown().leaderTimeoutMilliseconds, raised) << before;
    EXPECT_EQ(draft.state().isUnsaved(), raised != before);
    draft.reload();
    draft.lowerTimeout();
    EXPECT_EQ(shown().leaderTimeoutMilliseconds, lowered) << before;
  }
}

TEST_F(ShortcutSettingsDraftTest, AShortTimeoutOfTheFileLoadsButIsNotSaved) {
  MacShortcutConfig config;
  config.leaderTimeoutMilliseconds = 99;
  put(config);
  draft.reload();
  draft.save();
  EXPECT_EQ(alert(), "The leader timeout must be at least 100 milliseconds.");
  draft.raiseTimeout();
  draft.save();
  EXPECT_EQ(alert(), "");
  EXPECT_EQ(settings.config().leaderTimeoutMilliseconds, 199);
}

TEST_F(ShortcutSettingsDraftTest, ReloadingAndTheDefaultsReplaceWhatWasTyped) {
  put(withLeader("control+o"));
  draft.setText(ShortcutField::next, "n");
  draft.reload();
  EXPECT_EQ(shown(), withLeader("control+o"));

  draft.setText(ShortcutField::next, "n");
  draft.restoreDefaults();
  EXPECT_EQ(shown(), MacShortcutConfig::defaults());
  EXPECT_EQ(contents(), MacShortcutConfig::defaults().encode());

  put("{ broken");
  draft.setText(ShortcutField::next, "n");
  draft.reload();
  EXPECT_THAT(alert(), StartsWith("Notlet could not load the shortcut config: "));
  EXPECT_EQ(shown(), MacShortcutConfig::defaults()) << "those in force";
  EXPECT_EQ(contents(), "{ broken");
}

TEST_F(ShortcutSettingsDraftTest, EditsByHandReachAnUntouchedFormAndNeverReplaceWhatWasTyped) {
  put(withLeader("control+o"));
  settings.reload();
  EXPECT_EQ(shown().leader, "control+o") << "saving would have undone the edit";

  draft.setText(ShortcutField::next, "n");
  put(withLeader("control+p"));
  settings.reload();
  EXPECT_EQ(shown().leader, "control+o");
  EXPECT_EQ(shown().archiveNavigation.next, "n");
  draft.openConfigFile();
  EXPECT_THAT(opener.opened, SizeIs(1));
  EXPECT_EQ(shown().archiveNavigation.next, "n");
}

TEST_F(ShortcutSettingsDraftTest, OneKeyIsRecordedAndNoOtherIsTaken) {
  EXPECT_FALSE(draft.record(typed("n")));
  draft.toggleRecording(ShortcutField::next);
  EXPECT_TRUE(draft.record(typed("n", KeyModifier::control)));
  EXPECT_NE(draft.state().recordingProblem, "");
  EXPECT_EQ(shown().archiveNavigation.next, "down");
  EXPECT_TRUE(draft.record(typed("n")));
  EXPECT_EQ(shown().archiveNavigation.next, "n");
  EXPECT_EQ(draft.state().recordingProblem, "");
  EXPECT_FALSE(draft.record(typed("m")));

  draft.toggleRecording(ShortcutField::leader);
  draft.toggleRecording(ShortcutField::search);
  EXPECT_TRUE(draft.record(escape));
  EXPECT_EQ(draft.state().recording, std::nullopt);
  EXPECT_EQ(shown().commands.search, "/");
  draft.toggleRecording(ShortcutField::leader);
  draft.toggleRecording(ShortcutField::leader);
  EXPECT_FALSE(draft.record(typed("n")));
}

TEST_F(ShortcutSettingsDraftTest, AHeldKeyIsNoSecondPress) {
  const auto held = [](KeyPress press) {
    press.isRepeat = true;
    return press;
  };
  EXPECT_FALSE(draft.record(held(typed("x"))));
  draft.toggleRecording(ShortcutField::next);
  EXPECT_TRUE(draft.record(held({KeyCode::returnKey, std::nullopt, std::nullopt, 0})))
      << "it pressed the button";
  EXPECT_EQ(draft.state().recording, ShortcutField::next);
  const KeyPress quits = typed("q", KeyModifier::control);
  draft.toggleRecording(ShortcutField::leader);
  EXPECT_TRUE(draft.record(quits));
  EXPECT_TRUE(draft.record(held(quits)));
  EXPECT_FALSE(draft.record(quits));
  EXPECT_FALSE(draft.record(held(quits)));

  draft.toggleRecording(ShortcutField::next);
  EXPECT_TRUE(draft.record(escape));
  EXPECT_TRUE(draft.record(held(escape))) << "it would close the window";
}

TEST_F(ShortcutSettingsDraftTest, NothingIsAnnouncedWhenNothingChanges) {
  const QSignalSpy changes(&draft, &ShortcutSettingsDraft::changed);
  draft.setText(ShortcutField::leader, "control+s");
  draft.reload();
  draft.stopRecording();
  EXPECT_THAT(changes, SizeIs(0));
  settings.setErrorMessage("The hot key is taken.");
  EXPECT_THAT(changes, SizeIs(1));
  EXPECT_EQ(alert(), "The hot key is taken.");
}

} // namespace
} // namespace notlet
