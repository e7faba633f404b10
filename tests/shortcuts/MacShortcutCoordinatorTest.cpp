#include "shortcuts/MacShortcutCoordinator.h"

#include <gmock/gmock.h>
#include <limits>
#include <random>

#include "support/FakeFileOpener.h"
#include "support/FakeFocusedControl.h"
#include "support/FakeSteadyClock.h"
#include "support/TemporaryDirectory.h"

namespace notlet {
namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t shift = 0x20000;
constexpr std::uint32_t control = 0x40000;
constexpr std::uint32_t option = 0x80000;
constexpr std::uint32_t command = 0x100000;
constexpr std::uint32_t capsLockAndKeypad = 0x10000 | 0x200000;

/// What the screens show when a key is pressed.
struct Situation {
  bool archive = false;
  bool editing = false;
  bool searchField = false;
  bool hashtags = false;
  bool panel = false;
  bool textInput = false;
  bool button = false;
  bool ownSearch = false;
};

constexpr Situation elsewhere{};
constexpr Situation typing{.textInput = true};
constexpr Situation archiveList{.archive = true};
constexpr Situation hashtagStrip{.archive = true, .hashtags = true};
constexpr Situation searchField{.archive = true, .searchField = true, .textInput = true};
constexpr Situation editing{.archive = true, .editing = true, .textInput = true};
constexpr Situation panel{.panel = true, .textInput = true};
constexpr Situation themes{.ownSearch = true};

class MacShortcutCoordinatorTest : public testing::Test {
 protected:
  MacShortcutCoordinatorTest() {
    for (std::size_t index = 0; index < commandNameTexts.size(); ++index) {
      const auto name = static_cast<CommandName>(index);
      center.observe(name, &center, [this, name](const CommandObject& object) {
        posts.push_back(std::string(text(name)) + (object ? " " + *object : ""));
      });
    }
  }

  void show(const Situation& situation) {
    coordinator.archiveActive = situation.archive;
    coordinator.archiveEditingActive = situation.editing;
    coordinator.archiveSearchFieldActive = situation.searchField;
    coordinator.archiveHashtagNavigationActive = situation.hashtags;
    coordinator.floatingCaptureExpanded = situation.panel;
    focus.textInputFocused = situation.textInput;
    focus.buttonFocused = situation.button;
    focus.ownSearch = situation.ownSearch;
  }

  /// What became of the key: "pass", "consume", or the command that it became.
  std::string press(std::string_view key, std::uint32_t modifiers = 0) {
    return outcome(coordinator.handle(key, modifiers));
  }
  std::string press(const KeyPress& key) { return outcome(coordinator.handle(key)); }
  std::string outcome(bool consumed) {
    const std::vector<std::string> posted = std::exchange(posts, {});
    EXPECT_LE(posted.size(), 1U);
    EXPECT_TRUE(consumed || posted.empty());
    return !posted.empty() ? posted.front() : consumed ? "consume" : "pass";
  }
  void arm() { EXPECT_EQ(press("s", control), "consume"); }
  /// Looks by pressing a key that nothing else takes, which also disarms.
  bool isArmed() {
    show(typing);
    return press("a") == "openMacArchive";
  }

  TemporaryDirectory directory;
  FakeFileOpener opener;
  NotificationCenter center;
  MacShortcutSettings settings{directory.path(), opener};
  FakeSteadyClock clock;
  FakeFocusedControl focus;
  MacShortcutCoordinator coordinator{{center, settings, clock, focus}};
  std::vector<std::string> posts;
};

struct KeyCase {
  std::string situationName;
  Situation situation;
  std::string key;
  std::uint32_t modifiers;
  std::string outcome;
};

// The popover has the keyboard while the main window behind it shows the archive and an open editor.
TEST_F(MacShortcutCoordinatorTest, KeysInOtherWindowsLeaveTheArchiveAlone) {
  focus.inWindow = FocusedControl::Window::other;
  for (const Situation& behind : {archiveList, hashtagStrip, searchField, editing}) {
    for (const char* key : {"return", "down", "j", "e", "d", "right", "backspace", "/"}) {
      show(behind);
      EXPECT_EQ(press(key), "pass") << key;
    }
    show(behind);
    EXPECT_EQ(press("escape"), behind.textInput ? "consume" : "pass");
    arm();
    EXPECT_EQ(press("a"), "openMacArchive");
  }
  show({.panel = true}); // It gives way to the main window.
  EXPECT_EQ(press("/"), "focusMacArchiveSearch");
}

// What stands behind the settings stays as it is; their own search is theirs.
TEST_F(MacShortcutCoordinatorTest, KeysInTheSettingsLeadNowhereElse) {
  focus.inWindow = FocusedControl::Window::settings;
  for (Situation shown : {elsewhere, archiveList, editing, panel}) {
    shown.textInput = false;
    show(shown);
    for (const char* key : {"/", "escape", "return", "j"})
      EXPECT_EQ(press(key), "pass") << key;
    EXPECT_EQ(press("s", control), "pass");
    EXPECT_EQ(press("a"), "pass");
  }
  show(themes);
  EXPECT_EQ(press("/"), "consume");
  EXPECT_TRUE(focus.textInputFocused);
  EXPECT_EQ(press("escape"), "consume");
  EXPECT_FALSE(focus.textInputFocused);
}

// One key in one situation, with nothing armed before.
TEST_F(MacShortcutCoordinatorTest, EachSituationGivesKeysItsOwnMeaning) {
  const std::vector<KeyCase> cases = {
      {"elsewhere", elsewhere, "j", 0, "pass"},
      {"elsewhere", elsewhere, "e", 0, "pass"},
      {"elsewhere", elsewhere, "escape", 0, "pass"},
      {"elsewhere", elsewhere, "return", 0, "pass"},
      {"elsewhere", elsewhere, "", 0, "pass"},
      {"elsewhere", elsewhere, "/", 0, "focusMacArchiveSearch"},
      {"elsewhere", elsewhere, "/", capsLockAndKeypad, "focusMacArchiveSearch"},
      {"elsewhere", elsewhere, "/", shift, "pass"},
      {"elsewhere", elsewhere, "s", control | shift, "pass"},
      {"elsewhere", elsewhere, "s", command, "pass"},
      {"elsewhere", elsewhere, "s", control | capsLockAndKeypad, "consume"},

      {"typing", typing, "/", 0, "pass"},
      {"typing", typing, "j", 0, "pass"},
      {"typing", typing, "return", 0, "pass"},
      {"typing", typing, "s", control, "consume"},
      {"typing", typing, "escape", 0, "consume"},
      {"typing", typing, "escape", shift | command, "consume"},

      {"list", archiveList, "down", 0, "selectNextMacNotlet"},
      {"list", archiveList, "j", 0, "selectNextMacNotlet"},
      {"list", archiveList, "up", 0, "selectPreviousMacNotlet"},
      {"list", archiveList, "k", 0, "selectPreviousMacNotlet"},
      {"list", archiveList, "e", 0, "editSelectedMacNotlet"},
      {"list", archiveList, "d", 0, "deleteSelectedMacNotlet"},
      {"list", archiveList, "/", 0, "focusMacArchiveSearch"},
      {"list", archiveList, "x", 0, "pass"},
      {"list", archiveList, "right", 0, "pass"},
      {"list", archiveList, "return", 0, "pass"},
      {"list", archiveList, "escape", 0, "pass"},
      {"list", archiveList, "backspace", 0, "pass"},
      {"list", archiveList, "down", capsLockAndKeypad, "selectNextMacNotlet"},
      {"list", archiveList, "down", shift, "pass"},
      {"list", archiveList, "j", option, "pass"},
      {"list", archiveList, "d", command, "pass"},
      {"list", archiveList, "e", control, "pass"},

      {"strip", hashtagStrip, "right", 0, "selectNextMacHashtag"},
      {"strip", hashtagStrip, "left", 0, "selectPreviousMacHashtag"},
      {"strip", hashtagStrip, "return", 0, "activateSelectedMacHashtag"},
      {"strip", hashtagStrip, " ", 0, "activateSelectedMacHashtag"},
      {"strip", hashtagStrip, "escape", 0, "clearMacHashtagSearch"},
      {"strip", hashtagStrip, "backspace", 0, "searchMacHashtags backspace"},
      {"strip", hashtagStrip, "a", 0, "searchMacHashtags a"},
      {"strip", hashtagStrip, "j", 0, "searchMacHashtags j"},
      {"strip", hashtagStrip, "d", 0, "searchMacHashtags d"},
      {"strip", hashtagStrip, "7", 0, "searchMacHashtags 7"},
      {"strip", hashtagStrip, "ä", 0, "searchMacHashtags ä"},
      {"strip", hashtagStrip, "-", 0, "searchMacHashtags -"},
      {"strip", hashtagStrip, "_", 0, "searchMacHashtags _"},
      {"strip", hashtagStrip, ".", 0, "pass"},
      {"strip", hashtagStrip, "", 0, "pass"},
      {"strip", hashtagStrip, "/", 0, "focusMacArchiveSearch"},
      {"strip", hashtagStrip, "down", 0, "selectNextMacNotlet"},
      {"strip", hashtagStrip, "up", 0, "selectPreviousMacNotlet"},
      {"strip", hashtagStrip, "right", shift, "pass"},
      {"strip", hashtagStrip, "_", shift, "pass"},
      {"strip", hashtagStrip, "escape", shift, "pass"},

      {"search", searchField, "down", 0, "selectNextMacNotlet"},
      {"search", searchField, "up", 0, "selectPreviousMacNotlet"},
      {"search", searchField, "down", shift, "pass"},
      {"search", searchField, "up", option, "pass"},
      {"search", searchField, "j", 0, "pass"},
      {"search", searchField, "/", 0, "pass"},
      {"search", searchField, "return", 0, "pass"},
      {"search", searchField, "right", 0, "pass"},
      {"search", searchField, "escape", 0, "clearMacHashtagSearch"},
      {"search", searchField, "escape", control, "clearMacHashtagSearch"},
      {"search", searchField, "s", control, "consume"},
      {"search left behind", {.searchField = true, .textInput = true}, "escape", 0, "consume"},
      {"search left behind", {.searchField = true, .textInput = true}, "down", 0, "pass"},

      {"editing", editing, "escape", 0, "cancelEditingMacNotlet"},
      {"editing", editing, "escape", command, "cancelEditingMacNotlet"},
      {"editing", editing, "return", 0, "saveEditingMacNotlet"},
      {"editing", editing, "return", capsLockAndKeypad, "saveEditingMacNotlet"},
      {"editing", editing, "return", shift, "pass"},
      {"editing", editing, "down", 0, "pass"},
      {"editing", editing, "e", 0, "pass"},
      {"editing", editing, "s", control, "consume"},
      {"button of the editor", {.archive = true, .editing = true, .button = true}, "return", 0, "pass"},
      {"button of the editor", {.archive = true, .editing = true, .button = true}, "d", 0, "pass"},
      {"button of the editor", {.archive = true, .editing = true, .button = true}, "down", 0, "pass"},
      {"button beside the strip", {.archive = true, .hashtags = true, .button = true}, "return", 0, "pass"},
      {"button beside the strip", {.archive = true, .hashtags = true, .button = true}, " ", 0, "pass"},
      {"themes", themes, "/", 0, "consume"},
      {"themes", {.textInput = true, .ownSearch = true}, "/", 0, "pass"},

      {"panel", panel, "escape", 0, "collapseMacFloatingCapture"},
      {"panel", panel, "escape", shift, "collapseMacFloatingCapture"},
      {"panel", panel, "return", 0, "pass"},
      {"panel", panel, "/", 0, "pass"},
      {"panel over an edit",
       {.archive = true, .editing = true, .panel = true},
       "escape",
       0,
       "collapseMacFloatingCapture"},
      {"strip beside an edit",
       {.archive = true, .editing = true, .hashtags = true},
       "return",
       0,
       "activateSelectedMacHashtag"},
      {"search beside an edit",
       {.archive = true, .editing = true, .searchField = true, .textInput = true},
       "return",
       0,
       "pass"},
      {"edit with search field",
       {.archive = true, .editing = true, .searchField = true},
       "escape",
       0,
       "cancelEditingMacNotlet"},
      {"strip beside a text field", {.archive = true, .hashtags = true, .textInput = true}, "a", 0, "pass"},
      {"strip beside a text field",
       {.archive = true, .hashtags = true, .textInput = true},
       "escape",
       0,
       "consume"},
      {"strip of another section", {.hashtags = true}, "right", 0, "pass"},
  };
  for (const KeyCase& one : cases) {
    SCOPED_TRACE(one.situationName + ": " + one.key + " with " + std::to_string(one.modifiers));
    press("x", shift); // Disarms.
    show(one.situation);
    EXPECT_EQ(press(one.key, one.modifiers), one.outcome);
  }
}

TEST_F(MacShortcutCoordinatorTest, TheLeaderGivesTheNextKeyACommandInEverySituation) {
  for (const Situation& situation :
       {elsewhere, typing, archiveList, hashtagStrip, searchField, editing, panel}) {
    show(situation);
    arm();
    EXPECT_EQ(press("j"), "openMacNotlet");
    arm();
    // Modifiers that are still held do not count.
    EXPECT_EQ(press("a", control | shift), "openMacArchive");
    arm();
    EXPECT_EQ(press("x"), "pass");
    show(typing);
    EXPECT_EQ(press("j"), "pass") << "The leader counts for one key.";
  }
}

TEST_F(MacShortcutCoordinatorTest, AnArmedKeyThatIsNoCommandReachesItsControlUntouched) {
  show(archiveList);
  for (const char* key : {"d", "down", "/", ""}) {
    arm();
    EXPECT_EQ(press(key), "pass") << key;
  }
  show(hashtagStrip);
  arm();
  EXPECT_EQ(press("right"), "pass");
}

TEST_F(MacShortcutCoordinatorTest, TheLeaderWaitsUntilItsDeadline) {
  struct Case {
    int wait;
    std::string outcome;
  };
  for (const Case& pressed :
       {Case{0, "openMacNotlet"}, Case{1199, "openMacNotlet"}, Case{1200, "openMacNotlet"},
        Case{1201, "selectNextMacNotlet"}, Case{86'400'000, "selectNextMacNotlet"}}) {
    show(archiveList);
    arm();
    clock.time += milliseconds(pressed.wait);
    EXPECT_EQ(press("j"), pressed.outcome) << pressed.wait;
    EXPECT_FALSE(isArmed());
  }
  // Pressed again, it waits anew.
  arm();
  clock.time += milliseconds(1000);
  arm();
  clock.time += milliseconds(1000);
  EXPECT_TRUE(isArmed());
}

TEST_F(MacShortcutCoordinatorTest, TimeoutsOfAnySizeAreHarmless) {
  struct Case {
    std::int64_t timeout;
    int wait;
    bool armed;
  };
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();
  constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
  for (const Case& config : {Case{largest, 1'000'000'000, true}, Case{smallest, 0, false}, Case{-1, 0, false},
                             Case{0, 0, true}, Case{0, 1, false}}) {
    MacShortcutConfig edited;
    edited.leaderTimeoutMilliseconds = config.timeout;
    ASSERT_TRUE(settings.write(edited));
    settings.reload();
    arm();
    clock.time += milliseconds(config.wait);
    EXPECT_EQ(isArmed(), config.armed) << config.timeout;
  }
}

TEST_F(MacShortcutCoordinatorTest, KeysTakenBeforeTheLeaderDisarmItExceptMovesFromTheSearchField) {
  struct Case {
    Situation situation;
    std::string key;
    bool staysArmed;
  };
  const std::vector<Case> cases = {
      {panel, "escape", false},       {editing, "escape", false}, {editing, "return", false},
      {searchField, "escape", false}, {typing, "escape", false},  {elsewhere, "escape", false},
      {searchField, "down", true},    {searchField, "up", true},  {archiveList, "down", false},
      {hashtagStrip, "up", false},    {elsewhere, "/", false},
  };
  for (const Case& between : cases) {
    show(between.situation);
    arm();
    press(between.key);
    EXPECT_EQ(isArmed(), between.staysArmed) << between.key;
  }
}

TEST_F(MacShortcutCoordinatorTest, ConfiguredKeysCountAtTheNextPress) {
  MacShortcutConfig config;
  config.leader = "S";
  config.commands = {"N", "RETURN", "?", "F", "backspace"};
  config.archiveNavigation = {"right", "L", "left", ""};
  settings.save(config);

  show(typing);
  EXPECT_EQ(press("s", control), "pass");
  EXPECT_EQ(press("s"), "consume");
  EXPECT_EQ(press("return"), "openMacArchive");
  EXPECT_EQ(press("s"), "consume");
  EXPECT_EQ(press("n"), "openMacNotlet");
  show(archiveList);
  EXPECT_EQ(press("?"), "focusMacArchiveSearch");
  EXPECT_EQ(press("/"), "pass");
  EXPECT_EQ(press("f"), "editSelectedMacNotlet");
  EXPECT_EQ(press("backspace"), "deleteSelectedMacNotlet");
  EXPECT_EQ(press("right"), "selectNextMacNotlet");
  EXPECT_EQ(press("l"), "selectNextMacNotlet");
  EXPECT_EQ(press("left"), "selectPreviousMacNotlet");
  EXPECT_EQ(press(""), "selectPreviousMacNotlet") << "An empty value names the keys that type nothing.";
  EXPECT_EQ(press("down"), "pass");

  // Moving from the search field comes before the leader.
  config.leader = "down";
  settings.save(config);
  show(searchField);
  EXPECT_EQ(press("down"), "selectNextMacNotlet");
  show(typing);
  EXPECT_EQ(press("down"), "consume");
  EXPECT_EQ(press("n"), "openMacNotlet");

  // A combination is no key name, and the first of two equal values counts.
  config.leader = "s";
  config.commands = {"control+j", "j", "j", "j", "j"};
  settings.save(config);
  show(archiveList);
  EXPECT_EQ(press("s"), "consume");
  EXPECT_EQ(press("j", control), "openMacArchive");
  EXPECT_EQ(press("j"), "focusMacArchiveSearch");
}

TEST_F(MacShortcutCoordinatorTest, ALeaderThatIsNoneLeavesTheOtherKeysAtWork) {
  MacShortcutConfig config;
  for (const char* leader : {"hyper+s", "", "control+"}) {
    config.leader = leader;
    ASSERT_TRUE(settings.write(config));
    settings.reload();
    show(archiveList);
    EXPECT_EQ(press("s", control), "pass") << leader;
    EXPECT_EQ(press("s"), "pass") << leader;
    EXPECT_EQ(press("j"), "selectNextMacNotlet") << leader;
  }
}

TEST_F(MacShortcutCoordinatorTest, PressesAreNamedByPlaceOrByCharacters) {
  show(archiveList);
  EXPECT_EQ(press({KeyCode::down, std::nullopt, std::nullopt, 0}), "selectNextMacNotlet");
  EXPECT_EQ(press({KeyCode::other, "J", "j", capsLockAndKeypad}), "selectNextMacNotlet");
  EXPECT_EQ(press({KeyCode::other, std::nullopt, std::nullopt, 0}), "pass");
  show(editing);
  EXPECT_EQ(press({KeyCode::keypadEnter, "\r", "\r", 0}), "saveEditingMacNotlet");
}

// Where "s" cannot be typed, the key that it shares with another letter stands for it, but only in a chord.
TEST_F(MacShortcutCoordinatorTest, KeysAreFoundOnLayoutsWithoutLatinLetters) {
  const auto cyrillic = [](const char* typed, const char* latin, std::uint32_t modifiers = 0) {
    return KeyPress{KeyCode::other, typed, latin, modifiers};
  };
  show(typing);
  EXPECT_EQ(press(cyrillic("ы", "s", control)), "consume");
  EXPECT_EQ(press(cyrillic("о", "j")), "openMacNotlet");
  EXPECT_EQ(press(cyrillic("ы", "s", control)), "consume");
  EXPECT_EQ(press(cyrillic("ч", "x")), "pass");
  EXPECT_EQ(press(cyrillic("ф", "a")), "pass");

  show(archiveList);
  EXPECT_EQ(press(cyrillic("о", "j")), "selectNextMacNotlet");
  EXPECT_EQ(press(cyrillic(".", "/")), "focusMacArchiveSearch");
  EXPECT_EQ(press(cyrillic("О", "j", shift)), "pass");
  show(hashtagStrip);
  EXPECT_EQ(press(cyrillic("о", "j")), "searchMacHashtags о");
  show(typing);
  EXPECT_EQ(press(cyrillic(".", "/")), "pass");

  // What is really typed comes first.
  MacShortcutConfig config;
  config.commands.notlet = "ф";
  settings.save(config);
  EXPECT_EQ(press(cyrillic("ы", "s", control)), "consume");
  EXPECT_EQ(press(cyrillic("ф", "a")), "openMacNotlet");

  for (const char* plain : {"s", "shift+s"}) {
    config.leader = plain;
    settings.save(config);
    EXPECT_EQ(press(cyrillic("ы", "s")), "pass") << plain;
    EXPECT_EQ(press(cyrillic("ы", "s", shift)), "pass") << plain;
  }
}

// As "/" is on many keyboards.
TEST_F(MacShortcutCoordinatorTest, ShiftThatASignNeedsIsPartOfIt) {
  const auto shifted = [](const char* typed) { return KeyPress{KeyCode::other, typed, typed, shift}; };
  show(archiveList);
  EXPECT_EQ(press(shifted("/")), "focusMacArchiveSearch");
  EXPECT_EQ(press(shifted("D")), "pass");
  EXPECT_EQ(press({KeyCode::down, std::nullopt, std::nullopt, shift}), "pass");
  show(hashtagStrip);
  EXPECT_EQ(press(shifted("_")), "searchMacHashtags _");
  EXPECT_EQ(press(shifted(" ")), "pass");
}

// What a held key opened would get its repeats typed into it, or would be closed by them at once.
TEST_F(MacShortcutCoordinatorTest, AHeldKeyGoesOnWithWhatItBeganOrDoesNothing) {
  struct Case {
    Situation before;
    KeyPress press;
    Situation after;
    std::string repeat;
  };
  const auto letter = [](const char* typed) { return KeyPress{KeyCode::other, typed, typed}; };
  const auto placed = [](std::uint16_t keyCode) { return KeyPress{keyCode, std::nullopt, std::nullopt}; };
  for (Case held : {
           Case{archiveList, letter("j"), archiveList, "selectNextMacNotlet"},
           {searchField, placed(KeyCode::down), archiveList, "selectNextMacNotlet"},
           {hashtagStrip, letter("a"), hashtagStrip, "searchMacHashtags a"},
           {archiveList, letter("k"), hashtagStrip, "consume"},
           {archiveList, letter("e"), editing, "consume"},
           {elsewhere, letter("/"), searchField, "consume"},
           {editing, placed(KeyCode::returnKey), archiveList, "consume"},
           {editing, placed(KeyCode::escape), searchField, "consume"},
           {typing, letter("j"), archiveList, "pass"},
       }) {
    SCOPED_TRACE(macKeyName(held.press.keyCode, held.press.characters));
    show(held.before);
    press(held.press);
    show(held.after);
    held.press.isRepeat = true;
    EXPECT_EQ(press(held.press), held.repeat);
  }
}

TEST(HashtagSearchCharacter, IsOneLetterMarkOrDigit) {
  for (const char* yes :
       {"a", "Z", "ä", "ß", "ы", "字", "ก", "\u0301", "\u093E", "7", "٣", "½", "Ⅷ", "𝒳", "-", "_"})
    EXPECT_TRUE(isHashtagSearchCharacter(yes)) << yes;
  for (const char* no : {"", ".", " ", "/", "#", "\t", "\x7f", "–", "€", "\u200D", "👍", "ab", "a\u0301",
                         "--", "return", "\xFF", "\xC3", "\uFFFD"})
    EXPECT_FALSE(isHashtagSearchCharacter(no)) << no;
}

// Whatever is pressed in whatever order: a key that is typed into a text control is never taken for a command
// of the archive, one key is one command at most, and a forgotten leader never acts.
TEST_F(MacShortcutCoordinatorTest, RandomKeysKeepThePromises) {
  const std::vector<std::string> keys = {"j",  "k",    "a",     "e",      "d",         "s",     "/",
                                         " ",  "-",    ".",     "",       "x",         "ä",     "down",
                                         "up", "left", "right", "return", "backspace", "escape"};
  const std::vector<std::uint32_t> modifierChoices = {0, 0, 0, 0, control | shift, shift, option, command};
  std::mt19937 random(20260);
  const auto below = [&](std::size_t bound) { return std::size_t(random() % bound); };
  SteadyClock::Time lastLeader{};
  int commands = 0;
  for (int count = 0; count < 100'000; ++count) {
    Situation situation;
    for (bool* flag : {&situation.archive, &situation.editing, &situation.searchField, &situation.hashtags,
                       &situation.panel, &situation.textInput})
      *flag = below(3) == 0;
    show(situation);
    clock.time += milliseconds(below(2) * below(1500));
    const bool isLeader = below(4) == 0;
    const std::string key = isLeader ? "s" : keys[below(keys.size())];
    const std::uint32_t modifiers = isLeader ? control : modifierChoices[below(modifierChoices.size())];
    const std::string outcome = press(key, modifiers);
    SCOPED_TRACE(std::to_string(count) + ": " + key + " with " + std::to_string(modifiers) + " became " +
                 outcome);

    const bool fromSearchField = situation.archive && situation.searchField;
    if (isLeader) {
      ASSERT_EQ(outcome, "consume");
      lastLeader = clock.time;
    } else if (outcome == "consume") {
      ASSERT_TRUE(key == "escape" && situation.textInput && !focus.textInputFocused);
    }
    if (outcome == "openMacNotlet" || outcome == "openMacArchive") {
      ASSERT_LE(clock.time - lastLeader, milliseconds(1200));
      lastLeader = {};
      ++commands;
    }
    if (situation.textInput && !fromSearchField && !situation.editing && key != "escape" && !isLeader) {
      ASSERT_THAT(outcome, testing::AnyOf("pass", "openMacNotlet", "openMacArchive"));
    }
    if (!situation.archive) {
      ASSERT_THAT(outcome, testing::Not(testing::AnyOf("editSelectedMacNotlet", "deleteSelectedMacNotlet",
                                                       "selectNextMacNotlet", "selectPreviousMacNotlet",
                                                       "clearMacHashtagSearch")));
    }
    if (modifiers != 0 && key != "escape" && !isLeader) {
      ASSERT_THAT(outcome, testing::AnyOf("pass", "openMacNotlet", "openMacArchive"));
    }
  }
  EXPECT_GT(commands, 1000);
}

} // namespace
} // namespace notlet
