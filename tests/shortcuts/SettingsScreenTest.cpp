#include "shortcuts/SettingsScreen.h"

#include <gmock/gmock.h>

#include "shortcuts/DesktopNotes.h"
#include "shortcuts/SettingsFixture.h"

namespace notlet {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Tab = SettingsScreen::Tab;

class SettingsScreenTest : public SettingsFixture {
 protected:
  void open(Tab tab) {
    screen.open();
    screen.setActive(true);
    screen.select(tab);
  }
};

TEST_F(SettingsScreenTest, OpeningReadsTheFileButNotUnderWhatIsBeingTyped) {
  put(withLeader("control+o"));
  open(Tab::shortcuts);
  EXPECT_EQ(shown().leader, "control+o");
  draft.setText(ShortcutField::leader, "control+typed");
  screen.open();
  EXPECT_EQ(shown().leader, "control+typed");
  EXPECT_EQ(screen.state().tab, Tab::shortcuts);
}

TEST_F(SettingsScreenTest, EscapeClosesUnlessSomethingIsNotSaved) {
  struct Case {
    Tab tab;
    bool isTyping;
    bool isUnsaved;
    bool isConsumed;
    bool staysOpen;
  };
  for (const auto& [tab, isTyping, isUnsaved, isConsumed, staysOpen] : {
           Case{Tab::shortcuts, false, false, true, false},
           Case{Tab::shortcuts, true, false, true, false},
           Case{Tab::shortcuts, true, true, true, true},
           Case{Tab::themes, false, false, true, false},
           // There it first leaves the search field.
           Case{Tab::themes, true, false, false, true},
           Case{Tab::themes, false, true, true, true},
       }) {
    open(tab);
    focusedControl.textInputFocused = isTyping;
    if (isUnsaved)
      draft.setText(ShortcutField::next, "n");
    EXPECT_EQ(screen.handle(escape), isConsumed);
    EXPECT_EQ(screen.state().isShown, staysOpen);
    EXPECT_EQ(draft.state().isUnsaved(), isUnsaved);
    EXPECT_EQ(screen.state().tab, isUnsaved ? Tab::shortcuts : tab) << "where it is seen what is not saved";
    screen.discardAndClose();
  }
}

TEST_F(SettingsScreenTest, KeysOfOtherWindowsAreLeftAlone) {
  EXPECT_FALSE(screen.handle(escape)) << "not shown";
  open(Tab::shortcuts);
  EXPECT_FALSE(screen.handle(typed("j")));
  EXPECT_FALSE(screen.handle({KeyCode::escape, std::nullopt, std::nullopt, KeyModifier::shift}));
  screen.setActive(false);
  EXPECT_FALSE(screen.handle(escape));
  EXPECT_TRUE(screen.state().isShown);
}

TEST_F(SettingsScreenTest, ARecordedKeyComesBeforeEverything) {
  open(Tab::shortcuts);
  draft.toggleRecording(ShortcutField::leader);
  EXPECT_TRUE(screen.handle(typed("q", KeyModifier::control)));
  EXPECT_EQ(shown().leader, "control+q");
  EXPECT_FALSE(screen.handle(typed("q", KeyModifier::control)));

  draft.toggleRecording(ShortcutField::next);
  EXPECT_TRUE(screen.handle(escape));
  EXPECT_TRUE(screen.state().isShown);
  EXPECT_EQ(draft.state().recording, std::nullopt);

  draft.toggleRecording(ShortcutField::next);
  screen.select(Tab::themes);
  EXPECT_FALSE(screen.handle(typed("j"))) << "its field is out of sight";
}

TEST_F(SettingsScreenTest, ClosingTheWindowAsksBeforeSomethingIsLost) {
  open(Tab::themes);
  screen.close();
  EXPECT_FALSE(screen.state().isShown);

  open(Tab::shortcuts);
  draft.setText(ShortcutField::next, "n");
  screen.close();
  EXPECT_TRUE(screen.state().asksToDiscard);
  screen.keepOpen();
  EXPECT_TRUE(screen.state().isShown);
  EXPECT_EQ(shown().archiveNavigation.next, "n");
  screen.close();
  screen.discardAndClose();
  EXPECT_EQ(screen.state(), (SettingsScreen::State{.tab = Tab::shortcuts}));
  open(Tab::shortcuts);
  EXPECT_EQ(shown().archiveNavigation.next, "down");
}

TEST(DesktopNotesTest, EachRouteOfTheHotKeyAndEachLimitIsTold) {
  EXPECT_THAT(hotKeyNote(HotKeyRoute::x11), HasSubstr("Control+Super+J"));
  EXPECT_THAT(hotKeyNote(HotKeyRoute::portal), HasSubstr("through your desktop"));
  EXPECT_THAT(hotKeyNote(HotKeyRoute::none), HasSubstr("notlet capture"));
  EXPECT_THAT(desktopLimits({}), SizeIs(4));
  EXPECT_THAT(desktopLimits({StatusItemRoute::xembed, HotKeyRoute::none, true, true, true, false}),
              IsEmpty());
}

} // namespace
} // namespace notlet
