#include "shortcuts/KeyRecording.h"

#include <gmock/gmock.h>

#include "shortcuts/ShortcutWarnings.h"

namespace notlet {
namespace {

using testing::HasSubstr;
using enum ShortcutField;

constexpr std::uint32_t control = KeyModifier::control;
constexpr std::uint32_t shift = KeyModifier::shift;

KeyPress typed(const char* characters, std::uint32_t modifiers = 0) {
  return {KeyCode::other, characters, characters, modifiers};
}

KeyPress placed(std::uint16_t keyCode, std::uint32_t modifiers = 0) {
  return {keyCode, std::nullopt, std::nullopt, modifiers};
}

/// What the Russian layout types where the Latin one has "s".
KeyPress russian(std::uint32_t modifiers = 0) {
  return {KeyCode::other, "ы", "s", modifiers};
}

TEST(KeyRecordingTest, TheFieldHoldsWhatTheKeyboardThenObeys) {
  struct Case {
    ShortcutField field;
    KeyPress press;
    const char* recorded;
  };
  for (const auto& [field, press, recorded] : {
           Case{leader, typed("s", control), "control+s"},
           Case{leader, typed("K", KeyModifier::command | shift | KeyModifier::option | control),
                "control+alt+shift+command+k"},
           Case{leader, placed(KeyCode::up, control), "control+up"},
           Case{leader, typed(";", control | 1U), "control+;"},
           Case{leader, russian(control), "control+s"},
           Case{leader, russian(), "ы"},
           Case{notlet, typed("J", shift), "j"},
           Case{archive, russian(), "s"},
           Case{search, russian(), "ы"},
           Case{search, typed("+"), "+"},
           Case{search, typed("/", shift), "/"},
           Case{next, typed(" "), " "},
           Case{next, placed(KeyCode::keypadEnter), "return"},
           Case{remove, placed(KeyCode::backspace), "backspace"},
       }) {
    const Result<std::string> value = recordedKey(field, press);
    ASSERT_TRUE(value) << recorded << ": " << value.error().message;
    EXPECT_EQ(*value, recorded);
  }
}

TEST(KeyRecordingTest, AKeyThatNoTextOfTheFieldMeansIsRefusedWithASentence) {
  struct Case {
    ShortcutField field;
    KeyPress press;
    const char* reason;
  };
  for (const auto& [field, press, reason] : {
           Case{leader, typed("+", control), "cannot be the leader"},
           Case{leader, typed(" ", control), "cannot be the leader"},
           Case{leader, placed(KeyCode::other, control), "no name"}, // Such as F5.
           Case{next, typed("\t"), "no name"},
           Case{next, typed("\x7f"), "no name"},
           Case{next, typed("n", control), "without Shift, Control"},
           Case{search, typed("F", shift), "without Shift"},
           Case{archive, typed("a", KeyModifier::command), "without Control"},
       }) {
    const Result<std::string> value = recordedKey(field, press);
    ASSERT_FALSE(value) << *value;
    EXPECT_THAT(value.error().message, HasSubstr(reason));
  }
}

TEST(ShortcutWarningsTest, TheDefaultsAreFineAndFieldsThatShadowOneAnotherAreNamed) {
  for (const ShortcutField field : allShortcutFields)
    EXPECT_EQ(shortcutWarning(MacShortcutConfig::defaults(), field), "");

  struct Case {
    ShortcutField changed;
    const char* value;
    ShortcutField field;
    const char* warning;
  };
  for (const auto& [changed, value, field, warning] : {
           Case{archive, "J", archive, "“Notlet” takes this key first."},
           Case{archive, "J", notlet, "Takes this key from “Archive”."},
           Case{search, "d", remove, "“Search” takes this key first."},
           Case{remove, "j", nextAlternate, "“Delete selected notlet” takes this key first."},
           Case{previous, "j", previous, "“Next alternate” takes this key first."},
           // The same effect either way.
           Case{nextAlternate, "down", nextAlternate, ""},
           // Only one of the two is looked at after the leader.
           Case{archive, "e", archive, ""},
           Case{leader, "k", previousAlternate, "The leader takes this key first."},
           Case{leader, "a", archive, "The leader takes this key first."},
           Case{leader, "j", leader,
                "Without Control, Alt or Super this key can no longer be typed. Takes this key from “Notlet” "
                "and "
                "“Next alternate”."},
           Case{leader, "control+j", nextAlternate, ""},
       }) {
    MacShortcutConfig config;
    setValue(config, changed, value);
    EXPECT_EQ(shortcutWarning(config, field), warning) << title(changed) << " " << value;
  }
}

TEST(ShortcutWarningsTest, KeysThatNobodyCanPressAndKeysThatAreMissedAreTold) {
  struct Case {
    ShortcutField field;
    const char* value;
    const char* warning;
  };
  for (const auto& [field, value, warning] : {
           Case{leader, "", "Not a key combination, such as control+s."},
           Case{leader, "hyper+s", "Not a key combination, such as control+s."},
           Case{leader, "control+", "No key is called “control”."},
           Case{leader, "cmd + K", ""},
           Case{leader, "ctrl+q", "This key then no longer quits Notlet."},
           Case{leader, "control+,", "This key then no longer opens the settings."},
           Case{leader, "Control+C", "This key then no longer copies."},
           Case{next, "", "No key: keys that type nothing, such as F5, then do this."},
           Case{next, " ", "This is the space bar."},
           Case{next, "n ", "The key is not found because of the spaces around it."},
           Case{next, "control+n", "Name a single key: a combination is not found here."},
           Case{next, "page down", "No key is called “page down”."},
           Case{next, "+", ""},
           Case{next, "Right", ""},
           Case{next, "é", ""},
       }) {
    MacShortcutConfig config;
    setValue(config, field, value);
    EXPECT_EQ(shortcutWarning(config, field), warning) << "“" << value << "”";
  }
}

} // namespace
} // namespace notlet
