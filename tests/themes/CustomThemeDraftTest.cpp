#include "themes/CustomThemeDraft.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

#include "themes/AppThemeCatalog.h"

namespace notlet {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

AppTheme theme() {
  AppTheme made = AppThemeCatalog::themeWithID("dracula");
  made.id = "custom-A";
  return made;
}

TEST(CustomThemeDraft, ANameIsNeededAndTrimmed) {
  CustomThemeDraft draft(theme());
  for (const char* blank : {"", "  ", " \n\t", "\u00A0\u2028"}) {
    draft.setName(blank);
    EXPECT_FALSE(draft.canSave());
  }
  draft.setName("\n Night  ");
  EXPECT_TRUE(draft.canSave());
  EXPECT_EQ(draft.themeToSave().name, "Night");
  EXPECT_EQ(draft.state().theme.name, "\n Night  ") << "what is being typed stays as it is";
}

TEST(CustomThemeDraft, WhatIsSavedIsACustomThemeWithColoursOfItsOwn) {
  AppTheme foreign = theme();
  foreign.category = "Popular";
  foreign.followsSystem = true;
  CustomThemeDraft draft(foreign);
  draft.setDark(false);
  AppTheme expected = theme();
  expected.category = customThemeCategory;
  expected.isDark = false;
  EXPECT_EQ(draft.themeToSave(), expected);
}

TEST(CustomThemeDraft, EachColourHasItsOwnField) {
  CustomThemeDraft draft(theme());
  std::uint8_t shade = 16;
  for (const ThemeColor color : allThemeColors)
    draft.setColor(color, {shade++, 0, 255});
  const AppTheme made = draft.themeToSave();
  EXPECT_THAT((std::vector{made.backgroundHex, made.surfaceHex, made.primaryHex, made.secondaryHex,
                           made.accentHex, made.alternateAccentHex}),
              ElementsAre("1000FF", "1100FF", "1200FF", "1300FF", "1400FF", "1500FF"));
}

TEST(CustomThemeDraft, CodesCanBeTyped) {
  struct Case {
    std::string typed;
    std::string stored;
    bool isCode = true;
  };
  const std::string before = theme().accentHex;
  for (const Case& each : std::vector<Case>{{"00ff7f", "00FF7F"},
                                            {"#00FF7F", "00FF7F"},
                                            {"  #f80 ", "FF8800"},
                                            {"", before, false},
                                            {"#", before, false},
                                            {"00FF7", before, false},
                                            {"00FF7F00", before, false},
                                            {"##00FF7F", before, false},
                                            {"00FF7G", before, false},
                                            {"12 345", before, false},
                                            {"１２３", before, false}}) {
    CustomThemeDraft draft(theme());
    draft.typeCode(ThemeColor::accent, each.typed);
    EXPECT_EQ(draft.isCode(ThemeColor::accent), each.isCode) << each.typed;
    EXPECT_EQ(draft.canSave(), each.isCode) << "another colour than the one that was typed must not be saved";
    EXPECT_EQ(draft.state().theme.accentHex, each.stored) << each.typed;
    EXPECT_EQ(draft.typedCode(ThemeColor::accent), each.typed);
  }
}

TEST(CustomThemeDraft, APickedColourReplacesAnUnfinishedCode) {
  CustomThemeDraft draft(theme());
  draft.typeCode(ThemeColor::surface, "12");
  draft.setColor(ThemeColor::surface, {1, 2, 3});
  EXPECT_TRUE(draft.canSave());
  EXPECT_EQ(draft.typedCode(ThemeColor::surface), "010203");
}

TEST(CustomThemeDraft, AnOddStoredCodeIsKeptUntilItIsChanged) {
  AppTheme odd = theme();
  odd.accentHex = "no colour";
  const CustomThemeDraft draft(odd);
  EXPECT_EQ(draft.typedCode(ThemeColor::accent), "000000");
  EXPECT_TRUE(draft.canSave());
  EXPECT_EQ(draft.themeToSave().accentHex, "no colour");
}

TEST(CustomThemeDraft, FaintTextIsPointedOutAndNotForbidden) {
  struct Case {
    const char* background;
    const char* primary;
    const char* secondary;
    std::vector<ThemeColor> faint;
  };
  using enum ThemeColor;
  // 767676 on white is the well-known grey at 4.54; one step lighter is 4.48.
  for (const Case& each : std::vector<Case>{{"FFFFFF", "000000", "767676", {}},
                                            {"FFFFFF", "000000", "777777", {secondaryText}},
                                            {"FFFFFF", "777777", "000000", {primaryText}},
                                            {"808080", "808080", "808080", {primaryText, secondaryText}}}) {
    CustomThemeDraft draft(theme());
    draft.typeCode(background, each.background);
    draft.typeCode(primaryText, each.primary);
    draft.typeCode(secondaryText, each.secondary);
    std::vector<ThemeColor> found;
    for (const auto& faint : draft.faintTexts())
      found.push_back(faint.color);
    EXPECT_EQ(found, each.faint) << each.background << each.primary << each.secondary;
    EXPECT_TRUE(draft.canSave());
  }
  CustomThemeDraft draft(theme());
  draft.typeCode(background, "fff");
  draft.typeCode(primaryText, "fff");
  EXPECT_DOUBLE_EQ(draft.faintTexts().front().contrast, 1.0);
}

TEST(CustomThemeDraft, AnnouncesDifferencesOnly) {
  CustomThemeDraft draft(theme());
  const QSignalSpy changes(&draft, &CustomThemeDraft::changed);
  draft.setName(theme().name);
  draft.setDark(true);
  draft.typeCode(ThemeColor::accent, theme().accentHex);
  EXPECT_THAT(changes, SizeIs(0));
  draft.typeCode(ThemeColor::accent, "x");
  EXPECT_THAT(changes, SizeIs(1));
}

} // namespace
} // namespace notlet
