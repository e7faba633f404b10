#include "widgets/ThemePalette.h"

#include <QGuiApplication>
#include <gmock/gmock.h>

#include "widgets/CatalogParameters.h"

namespace notlet {
namespace {

QPalette desktopPalette() {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(239, 240, 241));
  palette.setColor(QPalette::WindowText, QColor(35, 38, 41));
  palette.setColor(QPalette::Base, QColor(255, 255, 255));
  palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
  return palette;
}

double onBoth(const QPalette& palette, const QColor& color) {
  return std::min(contrastRatio(color, palette.color(ThemeRole::background)),
                  contrastRatio(color, palette.color(ThemeRole::surface)));
}

class EveryThemeTest : public testing::TestWithParam<AppTheme> {};

TEST_P(EveryThemeTest, CatalogColoursArePassedOnAsTheyAre) {
  const AppTheme& theme = GetParam();
  const QPalette palette = themePalette(theme, desktopPalette());
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    EXPECT_EQ(palette.color(group, ThemeRole::background), colorFromHex(theme.backgroundHex));
    EXPECT_EQ(palette.color(group, ThemeRole::surface), colorFromHex(theme.surfaceHex));
    EXPECT_EQ(palette.color(group, ThemeRole::primaryText), colorFromHex(theme.primaryHex));
    EXPECT_EQ(palette.color(group, QPalette::Text), colorFromHex(theme.primaryHex));
    EXPECT_EQ(palette.color(group, ThemeRole::accent), colorFromHex(theme.accentHex));
    EXPECT_EQ(palette.color(group, ThemeRole::alternateAccent), colorFromHex(theme.alternateAccentHex));
  }
}

TEST_P(EveryThemeTest, LinesAndGroundsAreThereButQuiet) {
  const QPalette palette = themePalette(GetParam(), desktopPalette());
  const QColor background = palette.color(ThemeRole::background);
  const double separator = contrastRatio(palette.color(ThemeRole::separator), background);
  const double outline = contrastRatio(palette.color(ThemeRole::outline), background);
  EXPECT_GT(separator, 1.1);
  EXPECT_GT(outline, separator);
  EXPECT_LT(outline, 3.5);
  EXPECT_NE(palette.color(ThemeRole::hover), palette.color(ThemeRole::surface));
  EXPECT_NE(palette.color(ThemeRole::pressed), palette.color(ThemeRole::hover));
}

INSTANTIATE_TEST_SUITE_P(Catalog, EveryThemeTest, everyTheme(), themeTestName);

TEST(ThemePaletteTest, FollowingTheSystemTakesAllButTheAlternateAccentFromTheDesktop) {
  AppTheme theme = AppThemeCatalog::themeWithID("dracula");
  theme.followsSystem = true;
  const QPalette desktop = desktopPalette();
  const QPalette palette = themePalette(theme, desktop);
  EXPECT_EQ(palette.color(ThemeRole::background), desktop.color(QPalette::Window));
  EXPECT_EQ(palette.color(ThemeRole::surface), desktop.color(QPalette::Base));
  EXPECT_EQ(palette.color(ThemeRole::primaryText), desktop.color(QPalette::WindowText));
  EXPECT_EQ(palette.color(ThemeRole::accent), desktop.color(QPalette::Highlight));
  EXPECT_EQ(palette.color(ThemeRole::alternateAccent), colorFromHex(theme.alternateAccentHex));
  EXPECT_GE(onBoth(palette, palette.color(ThemeRole::secondaryText)), 4.5);
}

TEST(ThemePaletteTest, AThemeWithoutAnyContrastIsMadeLegible) {
  AppTheme theme = AppThemeCatalog::themeWithID("ink");
  theme.backgroundHex = theme.surfaceHex = theme.primaryHex = theme.secondaryHex = theme.accentHex = "808080";
  const QPalette palette = themePalette(theme, desktopPalette());
  EXPECT_EQ(palette.color(ThemeRole::background), QColor(0x80, 0x80, 0x80));
  EXPECT_GE(onBoth(palette, palette.color(ThemeRole::primaryText)), 4.5);
  EXPECT_GE(onBoth(palette, palette.color(ThemeRole::focusRing)), 3.0);
  EXPECT_EQ(palette.color(ThemeRole::onAccent), QColor(Qt::black));
}

} // namespace
} // namespace notlet
