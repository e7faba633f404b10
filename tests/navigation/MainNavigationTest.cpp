#include "navigation/MainNavigation.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <algorithm>

#include "navigation/NavigationFixture.h"

namespace notlet {

namespace {

using MainNavigationTest = NavigationFixture;

} // namespace

TEST_F(MainNavigationTest, CommandsSelectTheirSectionAndThenGiveItTheKeyboard) {
  const struct {
    CommandName command;
    MacSection section;
    std::optional<CommandName> followUp;
  } cases[] = {
      {CommandName::openMacArchive, MacSection::archive, std::nullopt},
      {CommandName::openMacNotlet, MacSection::notlet, CommandName::focusMacNotletInput},
      {CommandName::focusMacArchiveSearch, MacSection::archive, CommandName::focusMacArchiveSearchField},
      {CommandName::showMacCapture, MacSection::notlet, std::nullopt},
  };
  for (const auto& [command, section, followUp] : cases) {
    navigation.select(MacSection::themes);
    posted.clear();
    center.post(command);
    EXPECT_EQ(navigation.state().selection, section) << text(command);
    std::vector expected{command};
    if (followUp)
      expected.push_back(*followUp);
    EXPECT_TRUE(std::ranges::is_permutation(posted, expected)) << text(command);
  }
}

TEST_F(MainNavigationTest, TheKeyboardKnowsWhetherTheArchiveIsShown) {
  EXPECT_FALSE(coordinator.archiveActive);
  for (const std::optional<MacSection> section :
       {std::optional(MacSection::archive), std::optional(MacSection::themes),
        std::optional(MacSection::archive), std::optional<MacSection>(), std::optional(MacSection::notlet)}) {
    navigation.select(section);
    EXPECT_EQ(coordinator.archiveActive, section == MacSection::archive);
  }
  EXPECT_EQ(MainNavigation::State{std::nullopt}.shownSection(), MacSection::notlet);
}

TEST_F(MainNavigationTest, SelectingTheSectionOnShowChangesNothing) {
  navigation.select(MacSection::archive);
  const QSignalSpy spy(&navigation, &MainNavigation::changed);
  center.post(CommandName::openMacArchive);
  EXPECT_EQ(spy.count(), 0);
}

} // namespace notlet
