#include "themes/AppThemeCatalog.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <set>

namespace notlet {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(AppThemeCatalogTest, CategoriesComeInOrderWithAllTheirThemes) {
  std::vector<std::pair<std::string, int>> counts;
  for (const AppTheme& theme : AppThemeCatalog::themes()) {
    if (counts.empty() || counts.back().first != theme.category)
      counts.emplace_back(theme.category, 0);
    ++counts.back().second;
  }
  EXPECT_THAT(counts, ElementsAre(Pair("Notlet", 1), Pair("Monochrome", 13), Pair("Popular", 17),
                                  Pair("Vibrant", 8), Pair("Nature", 8), Pair("Warm", 7), Pair("Soft", 8)));
}

TEST(AppThemeCatalogTest, EveryRowIsWellFormed) {
  std::set<std::string> ids;
  std::set<std::string> names;
  for (const AppTheme& theme : AppThemeCatalog::themes()) {
    SCOPED_TRACE(theme.id);
    EXPECT_TRUE(ids.insert(theme.id).second);
    EXPECT_TRUE(names.insert(theme.name).second);
    EXPECT_FALSE(theme.id.starts_with(customThemePrefix));
    EXPECT_FALSE(theme.followsSystem);
    for (const std::string& code : {theme.backgroundHex, theme.surfaceHex, theme.primaryHex,
                                    theme.secondaryHex, theme.accentHex, theme.alternateAccentHex})
      EXPECT_THAT(code, testing::MatchesRegex("[0-9A-F]{6}"));
    // A row with two columns swapped or the wrong darkness would show here.
    const auto brightness = [](const std::string& code) {
      return std::stoi(code.substr(0, 2), nullptr, 16) + std::stoi(code.substr(2, 2), nullptr, 16) +
             std::stoi(code.substr(4, 2), nullptr, 16);
    };
    EXPECT_EQ(brightness(theme.primaryHex) > brightness(theme.backgroundHex), theme.isDark);
  }
}

TEST(AppThemeCatalogTest, LookUpIsExactAndFallsBackToSystem) {
  const AppTheme dracula{"dracula", "Dracula", "Popular", true,     "282A36", "44475A",
                         "F8F8F2",  "BFBFC7",  "BD93F9",  "FF79C6", false};
  const AppTheme dustyRose{"dusty-rose", "Dusty Rose", "Soft",   false,    "FAF1F3", "EEDDE1",
                           "453338",     "806A70",     "B56576", "6D597A", false};
  const AppTheme system{"system", "Notlet System", "Notlet", true,     "000000", "000000",
                        "FFFFFF", "FFFFFF",        "FFFFFF", "FFFFFF", false};
  EXPECT_EQ(AppThemeCatalog::themeWithID("dracula"), dracula);
  EXPECT_EQ(AppThemeCatalog::themes()[14], dracula);
  EXPECT_EQ(AppThemeCatalog::themes().back(), dustyRose);
  EXPECT_EQ(AppThemeCatalog::themeWithID("rose-pine").name, "Ros\u00e9 Pine");
  for (const char* unknown : {"Dracula", "", "dracula ", "custom-1", "system"})
    EXPECT_EQ(AppThemeCatalog::themeWithID(unknown), system) << unknown;
}

TEST(AppThemeTest, EqualityAndHashCoverEveryField) {
  const AppTheme original = AppThemeCatalog::themeWithID("nord");
  std::vector<AppTheme> others(11, original);
  others[0].id += "x";
  others[1].name += "x";
  others[2].category += "x";
  others[3].isDark = !original.isDark;
  others[4].backgroundHex += "x";
  others[5].surfaceHex += "x";
  others[6].primaryHex += "x";
  others[7].secondaryHex += "x";
  others[8].accentHex += "x";
  others[9].alternateAccentHex += "x";
  others[10].followsSystem = !original.followsSystem;
  std::set<std::size_t> hashes = {std::hash<AppTheme>{}(original)};
  for (const AppTheme& other : others) {
    EXPECT_NE(other, original);
    EXPECT_TRUE(hashes.insert(std::hash<AppTheme>{}(other)).second);
  }
  EXPECT_EQ(std::hash<AppTheme>{}(original), std::hash<AppTheme>{}(AppTheme(original)));
}

} // namespace
} // namespace notlet
