#include "shortcuts/MacKeyCombination.h"

#include <gmock/gmock.h>

#include "platform/KeyPress.h"

namespace notlet {
namespace {

using testing::Eq;
using testing::Optional;

TEST(MacKeyName, KeysGoByWordOrByCharacter) {
  struct Case {
    std::uint16_t keyCode;
    std::optional<std::string_view> characters;
    std::string name;
  };
  const std::vector<Case> cases = {
      {36, "\r", "return"},
      {76, "\x03", "return"},
      {51, "\x7f", "backspace"},
      {53, "\x1b", "escape"},
      {123, std::nullopt, "left"},
      {124, std::nullopt, "right"},
      {125, std::nullopt, "down"},
      {126, "\xEF\x9C\x80", "up"},
      {KeyCode::other, "j", "j"},
      {KeyCode::other, "J", "j"},
      {KeyCode::other, "Ä", "ä"},
      {KeyCode::other, "Ы", "ы"},
      {KeyCode::other, " ", " "},
      {KeyCode::other, "/", "/"},
      {KeyCode::other, "\t", "\t"},
      {KeyCode::other, "", ""},
      {KeyCode::other, std::nullopt, ""},
      {0, "A", "a"},
  };
  for (const Case& key : cases)
    EXPECT_EQ(macKeyName(key.keyCode, key.characters), key.name)
        << key.keyCode << " " << key.characters.value_or("none");
}

TEST(MacKeyCombination, Notations) {
  constexpr std::uint32_t shift = 0x20000;
  constexpr std::uint32_t control = 0x40000;
  constexpr std::uint32_t option = 0x80000;
  constexpr std::uint32_t command = 0x100000;
  struct Case {
    std::string notation;
    std::string key;
    std::uint32_t modifiers;
  };
  const std::vector<Case> cases = {
      {"control+s", "s", control},
      {"ctrl+s", "s", control},
      {"Control + S", "s", control},
      {"\tCTRL\n+\u00a0s ", "s", control},
      {"control++s", "s", control},
      {"+control+s+", "s", control},
      {"control+ +s", "s", control},
      {"control+ctrl+s", "s", control},
      {"cmd+shift+k", "k", command | shift},
      {"shift+command+k", "k", command | shift},
      {"option+return", "return", option},
      {"alt+down", "down", option},
      {"shift+control+alt+cmd+Ä", "ä", shift | control | option | command},
      {"s", "s", 0},
      {"page up", "page up", 0},
      // The last piece is the key, whatever it says.
      {"control+", "control", 0},
      {"control+  ", "control", 0},
      {"control+shift", "shift", control},
  };
  for (const Case& valid : cases)
    EXPECT_THAT(MacKeyCombination::parse(valid.notation),
                Optional(MacKeyCombination{valid.key, valid.modifiers}))
        << valid.notation;
  for (const char* invalid : {"", "+", " + ", "\n", "hyper+s", "control+fn+s", "s+control+x", "con trol+s"})
    EXPECT_THAT(MacKeyCombination::parse(invalid), Eq(std::nullopt)) << invalid;
}

TEST(MacKeyCombination, AKeyMatchesWithExactlyItsModifiers) {
  const auto combination = MacKeyCombination::parse("control+s").value();
  constexpr std::uint32_t capsLockAndKeypad = 0x10000 | 0x200000;
  EXPECT_TRUE(combination.matches("s", 0x40000));
  EXPECT_TRUE(combination.matches("s", 0x40000 | capsLockAndKeypad));
  EXPECT_FALSE(combination.matches("s", 0));
  EXPECT_FALSE(combination.matches("s", 0x40000 | 0x20000));
  EXPECT_FALSE(combination.matches("s", 0x100000));
  EXPECT_FALSE(combination.matches("S", 0x40000));
  EXPECT_FALSE(combination.matches("a", 0x40000));
}

} // namespace
} // namespace notlet
