#include "themes/ThemeConfigurationDocument.h"

#include <QTemporaryDir>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "fuzz/ThemeFileCheck.h"
#include "themes/AppThemeCatalog.h"

namespace notlet {
namespace {

using testing::HasSubstr;
using Json = nlohmann::json;

Json validTheme() {
  return {{"id", "custom-A"},
          {"name", "Mine"},
          {"category", "Custom"},
          {"isDark", true},
          {"backgroundHex", "000000"},
          {"surfaceHex", "111111"},
          {"primaryHex", "FFFFFF"},
          {"secondaryHex", "AAAAAA"},
          {"accentHex", "FF0000"},
          {"followsSystem", false},
          {"alternateAccentHex", "00FF00"}};
}

TEST(ThemeConfigurationDocumentTest, AllThemesSurviveWritingAndReading) {
  ThemeConfigurationDocument document;
  document.themes.assign(AppThemeCatalog::themes().begin(), AppThemeCatalog::themes().end());
  document.themes[3].followsSystem = true;
  document.themes[4].name = "\"Tea\"/\u8336\U0001F375\n";
  document.themes[5].accentHex = "no colour at all";
  EXPECT_EQ(ThemeConfigurationDocument::read(document.json()), document);
  EXPECT_EQ(ThemeConfigurationDocument::read(document.compactJson()), document);
  EXPECT_EQ(ThemeConfigurationDocument::read(ThemeConfigurationDocument{}.json()),
            ThemeConfigurationDocument{});
}

TEST(ThemeConfigurationDocumentTest, FilesAreIndentedWithSortedKeys) {
  const std::string expected = R"([
  {
    "accentHex": "FF0000",
    "alternateAccentHex": "00FF00",
    "backgroundHex": "000000",
    "category": "Custom",
    "followsSystem": false,
    "id": "custom-A",
    "isDark": true,
    "name": "Mine",
    "primaryHex": "FFFFFF",
    "secondaryHex": "AAAAAA",
    "surfaceHex": "111111"
  }
]
)";
  const auto document = ThemeConfigurationDocument::read(Json::array({validTheme()}).dump());
  ASSERT_TRUE(document);
  EXPECT_EQ(document->json(), expected);
}

TEST(ThemeConfigurationDocumentTest, EveryKeyIsRequiredWithItsOwnType) {
  const Json valid = validTheme();
  for (const auto& [key, value] : valid.items()) {
    Json lacking = validTheme();
    lacking.erase(key);
    const auto incomplete = ThemeConfigurationDocument::read(Json::array({validTheme(), lacking}).dump());
    ASSERT_FALSE(incomplete) << key;
    EXPECT_EQ(incomplete.error().message, "Theme 2 in the file lacks \"" + key + "\".");
    for (const Json& wrong :
         {Json(nullptr), Json(1), Json::array(), value.is_string() ? Json(true) : Json("true")}) {
      Json mistyped = validTheme();
      mistyped[key] = wrong;
      const auto read = ThemeConfigurationDocument::read(Json::array({mistyped}).dump());
      ASSERT_FALSE(read) << mistyped;
      EXPECT_THAT(read.error().message, HasSubstr('"' + key + '"'));
    }
  }
  Json more = validTheme();
  more["comment"] = {{"by", "me"}};
  EXPECT_TRUE(ThemeConfigurationDocument::read(Json::array({more}).dump()));
}

TEST(ThemeConfigurationDocumentTest, OtherTextIsRefused) {
  for (const std::string text : {"[1]", "[[]]", "null", "[{]"}) {
    const auto document = ThemeConfigurationDocument::read(text);
    ASSERT_FALSE(document) << text;
    EXPECT_THAT(document.error().message, testing::EndsWith("."));
  }
}

TEST(ThemeConfigurationDocumentTest, OnlyARegularFileCanBeRead) {
  const QTemporaryDir directory;
  const std::filesystem::path folder = directory.path().toStdString();
  EXPECT_FALSE(ThemeConfigurationDocument::readFile(folder));
  EXPECT_FALSE(ThemeConfigurationDocument::readFile(folder / "missing.json"));
  const ThemeConfigurationDocument document{{AppThemeCatalog::themeWithID("nord")}};
  ASSERT_TRUE(document.writeFile(folder / "notlet-themes.json"));
  EXPECT_EQ(ThemeConfigurationDocument::readFile(folder / "notlet-themes.json"), document);
  EXPECT_FALSE(document.writeFile(folder / "missing" / "themes.json"));
}

TEST(ThemeConfigurationDocumentTest, TheFuzzersCorpusKeepsItsPromises) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(NOTLET_THEME_CORPUS)) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(complaintAboutThemeFile(bytes), std::nullopt) << entry.path();
    ++files;
  }
  EXPECT_GE(files, 10);
}

TEST(ThemeConfigurationDocumentTest, WhatIsStoredMayHoldMoreThemesThanAFile) {
  const ThemeConfigurationDocument document{std::vector(1001, AppThemeCatalog::themeWithID("nord"))};
  EXPECT_EQ(ThemeConfigurationDocument::read(document.compactJson()), document);
  EXPECT_FALSE(ThemeConfigurationDocument::readFileContents(document.compactJson()));
}

} // namespace
} // namespace notlet
