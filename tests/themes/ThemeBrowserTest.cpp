#include "themes/ThemeBrowser.h"

#include <QSignalSpy>
#include <fstream>
#include <gmock/gmock.h>

#include "support/CustomTheme.h"
#include "support/FakeFileChooser.h"
#include "support/MemoryDefaults.h"
#include "support/TemporaryDirectory.h"
#include "themes/AppThemeCatalog.h"
#include "themes/ThemeConfigurationDocument.h"

namespace notlet {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class ThemeBrowserTest : public testing::Test {
 protected:
  void press(std::initializer_list<const char*> keys) {
    for (const char* key : keys)
      EXPECT_TRUE(browser.handleKey(key)) << key;
  }
  [[nodiscard]] std::string active() const { return browser.state().activeThemeID.value_or("none"); }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const AppTheme& theme : browser.filteredThemes())
      found.push_back(theme.name);
    return found;
  }
  std::filesystem::path fileWith(const std::string& contents) {
    const auto file = directory.path() / "themes.json";
    std::ofstream(file) << contents;
    return file;
  }
  void importFile(const std::filesystem::path& file) {
    browser.importThemes();
    fileChooser.toOpen(file);
  }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
  FakeFileChooser fileChooser;
  TemporaryDirectory directory;
  ThemeBrowser browser{{settings, fileChooser, "en_GB"}};
};

TEST_F(ThemeBrowserTest, BuiltInThemesComeFirstAndTheUsersOwnAfter) {
  EXPECT_THAT(browser.filteredThemes(), SizeIs(62));
  EXPECT_THAT(browser.categories(),
              ElementsAre("Notlet", "Monochrome", "Popular", "Vibrant", "Nature", "Warm", "Soft"));
  settings.saveCustomTheme(customTheme("custom-A"));
  settings.saveCustomTheme(customTheme("custom-B"));
  EXPECT_EQ(browser.filteredThemes()[62].id, "custom-A");
  EXPECT_EQ(browser.categories().back(), "Custom");
}

TEST_F(ThemeBrowserTest, SearchesNamesAndCategories) {
  settings.saveCustomTheme(customTheme("custom-A", "Großer İglu"));
  struct Case {
    std::string text;
    std::size_t count;
    std::string first;
  };
  for (const Case& each : std::vector<Case>{{"mono", 14, "Ink"}, // Monokai is no Monochrome theme.
                                            {"popular", 17, "Dracula"},
                                            {"DRACULA", 1, "Dracula"},
                                            {"rosé", 1, "Rosé Pine"},
                                            {"ROSE\u0301", 1, "Rosé Pine"},
                                            {"rose p", 0, ""},
                                            {"GROSSER", 1, "Großer İglu"},
                                            {" light", 3, "Solarized Light"},
                                            {"light ", 0, ""},
                                            {"custom", 1, "Großer İglu"}}) {
    browser.setSearchText(each.text);
    EXPECT_THAT(names(), SizeIs(each.count)) << each.text;
    if (each.count > 0) {
      EXPECT_EQ(names().front(), each.first) << each.text;
    }
  }
  browser.setSearchText("");
  EXPECT_THAT(names(), SizeIs(63));
}

TEST_F(ThemeBrowserTest, LetterCaseIsThatOfTheUsersLanguage) {
  ThemeBrowser turkish({settings, fileChooser, "tr_TR.UTF-8"});
  turkish.setSearchText("mıdnıght");
  EXPECT_THAT(turkish.filteredThemes(), IsEmpty()) << "the small letter in the name is another one";
  turkish.setSearchText("ınk");
  EXPECT_EQ(turkish.filteredThemes().front().id, "ink") << "its capital is that of the dotless one";
  turkish.setSearchText("ink");
  EXPECT_THAT(turkish.filteredThemes(), Not(Contains(AppThemeCatalog::themeWithID("ink"))));
  browser.setSearchText("ınk");
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ThemeBrowserTest, ChangingTheSearchLeavesTheRow) {
  press({"down"});
  browser.setSearchText("n");
  EXPECT_EQ(active(), "none");
}

TEST_F(ThemeBrowserTest, KeysWalkTheFilteredThemes) {
  browser.setSearchText("dark");
  browser.setSearchFocused(true);
  press({"down"});
  EXPECT_EQ(active(), "solarized-dark");
  EXPECT_FALSE(browser.state().searchFocused);
  press({"down", "down", "down", "down", "down"});
  EXPECT_EQ(active(), "github-dark") << "there is nothing below the last row";
  press({"up", "up", "up"});
  EXPECT_EQ(active(), "solarized-dark");
  press({"up"});
  EXPECT_EQ(active(), "none");
  EXPECT_TRUE(browser.state().searchFocused) << "above the first row is the search field";
  press({"up"});
  EXPECT_TRUE(browser.state().searchFocused);
  EXPECT_EQ(settings.selectedThemeID(), "midnight-mono") << "walking applies nothing";
}

TEST_F(ThemeBrowserTest, UpWithoutARowGoesToTheSearchField) {
  press({"up"});
  EXPECT_TRUE(browser.state().searchFocused);
}

TEST_F(ThemeBrowserTest, KeysDoNothingInAnEmptyList) {
  browser.setSearchText("no such theme");
  const auto before = browser.state();
  press({"down", "up"});
  EXPECT_EQ(browser.state(), before);
}

TEST_F(ThemeBrowserTest, ReturnAppliesTheRowOutsideOfTheSearchField) {
  EXPECT_FALSE(browser.handleKey("return")) << "there is no row";
  press({"down", "down", "return"});
  EXPECT_EQ(settings.selectedThemeID(), "ink");
  EXPECT_EQ(active(), "ink");
  press({"down"});
  browser.setSearchFocused(true);
  EXPECT_FALSE(browser.handleKey("return"));
  EXPECT_EQ(settings.selectedThemeID(), "ink");
}

TEST_F(ThemeBrowserTest, EscapeLeavesRowAndSearchField) {
  press({"down", "escape"});
  EXPECT_EQ(active(), "none");
  browser.setSearchFocused(true);
  press({"escape"});
  EXPECT_FALSE(browser.state().searchFocused);
}

TEST_F(ThemeBrowserTest, ASlashIsTypedOnlyInTheSearchField) {
  press({"down", "/"});
  EXPECT_TRUE(browser.state().searchFocused);
  EXPECT_EQ(active(), "none");
  EXPECT_FALSE(browser.handleKey("/"));
  EXPECT_FALSE(browser.handleKey("x"));
}

TEST_F(ThemeBrowserTest, AClickAppliesAndLeavesTheSearchField) {
  browser.setSearchFocused(true);
  browser.select(browser.filteredThemes()[14].id);
  EXPECT_EQ(settings.theme().id, "dracula");
  EXPECT_EQ(active(), "dracula");
  EXPECT_FALSE(browser.state().searchFocused);
}

TEST_F(ThemeBrowserTest, ANewThemeHasTheColoursInForceAndIsStoredWhenSaved) {
  settings.setSelectedThemeID("dracula");
  browser.beginNewTheme();
  ASSERT_TRUE(browser.state().editingTheme);
  const AppTheme made = *browser.state().editingTheme;
  AppTheme expected = AppThemeCatalog::themeWithID("dracula");
  expected.id = made.id;
  expected.name = "My Theme";
  expected.category = "Custom";
  EXPECT_EQ(made, expected);
  EXPECT_THAT(made.id, testing::MatchesRegex("custom-[0-9A-F-]{36}"));
  EXPECT_THAT(settings.customThemes(), IsEmpty());

  browser.cancelEditing();
  EXPECT_FALSE(browser.state().editingTheme);
  EXPECT_THAT(settings.customThemes(), IsEmpty());

  browser.beginNewTheme();
  const AppTheme second = *browser.state().editingTheme;
  EXPECT_NE(second.id, made.id);
  browser.saveEditedTheme(second);
  EXPECT_EQ(settings.theme(), second);
  EXPECT_FALSE(browser.state().editingTheme);
  EXPECT_EQ(browser.filteredThemes().back(), second);
}

TEST_F(ThemeBrowserTest, DeletingTheSelectedThemeShowsTheSystemOne) {
  settings.saveCustomTheme(customTheme("custom-A"));
  settings.saveCustomTheme(customTheme("custom-B"));
  browser.select("custom-B");
  browser.deleteTheme(browser.filteredThemes().back());
  EXPECT_EQ(settings.selectedThemeID(), "system");
  EXPECT_EQ(browser.filteredThemes().back().id, "custom-A");
  EXPECT_EQ(active(), "none") << "keys could not move on from a row that is gone";
  press({"down"});
  EXPECT_EQ(active(), "system");
}

TEST_F(ThemeBrowserTest, ImportsAllThemesOfAFile) {
  const ThemeConfigurationDocument document{{customTheme("custom-A"), customTheme("nord")}};
  const auto file = fileWith(document.json());
  browser.importThemes();
  EXPECT_TRUE(browser.state().showingImporter);
  fileChooser.toOpen(file);
  EXPECT_EQ(browser.state(), ThemeBrowser::State{});
  EXPECT_THAT(settings.customThemes(), SizeIs(2));
  importFile(file);
  EXPECT_THAT(settings.customThemes(), SizeIs(3)) << "only \"custom-\" identifiers are known again";
  EXPECT_EQ(settings.selectedThemeID(), "midnight-mono");
}

TEST_F(ThemeBrowserTest, ImportsNothingOfAFileThatIsPartlyBad) {
  settings.saveCustomTheme(customTheme("custom-A"));
  const auto themes = settings.customThemes();
  const std::string good = ThemeConfigurationDocument{{customTheme("custom-B")}}.compactJson();
  const auto joined = [&](std::size_t count) {
    return ThemeConfigurationDocument{std::vector(count, customTheme("nord"))}.compactJson();
  };
  struct Case {
    std::string contents;
    std::string reason;
  };
  for (const Case& each : std::vector<Case>{
           {"[\n  {\"id\": 1,}\n]", "line 2, column 12"},
           {good.substr(0, good.size() - 1) + ",{}]", "Theme 2 in the file lacks \"id\"."},
           {good.substr(1, good.size() - 2), "The file holds no list of themes."},
           {std::string((4U << 20U) + 1, ' '), "larger than 4194304 bytes"},
           {joined(1001), "The file holds 1001 themes. At most 1000 can be imported at once."}}) {
    importFile(fileWith(each.contents));
    ASSERT_TRUE(browser.state().importError) << each.reason;
    EXPECT_THAT(*browser.state().importError, HasSubstr(each.reason));
    EXPECT_EQ(settings.customThemes(), themes) << each.reason;
    browser.dismissImportError();
    EXPECT_EQ(browser.state(), ThemeBrowser::State{});
  }
  importFile(fileWith(joined(1000)));
  EXPECT_THAT(settings.customThemes(), SizeIs(1001));
}

TEST_F(ThemeBrowserTest, TellsWhatTheChooserOrTheFolderSays) {
  browser.importThemes();
  fileChooser.toOpen(failure("There is no file dialog."));
  EXPECT_EQ(browser.state().importError, "There is no file dialog.");
  importFile(directory.path());
  EXPECT_THAT(*browser.state().importError, HasSubstr("Is a directory"));
  importFile(directory.path() / "missing.json");
  EXPECT_THAT(*browser.state().importError, HasSubstr("does not exist"));
}

TEST_F(ThemeBrowserTest, AChooserThatIsCancelledChangesNothing) {
  settings.saveCustomTheme(customTheme("custom-A"));
  browser.importThemes();
  fileChooser.toOpen(std::nullopt);
  browser.exportThemes();
  fileChooser.toSave(std::nullopt);
  EXPECT_EQ(browser.state(), ThemeBrowser::State{});
}

TEST_F(ThemeBrowserTest, ExportsTheCustomThemesWhenThereAreAny) {
  EXPECT_FALSE(browser.canExport());
  browser.exportThemes();
  EXPECT_FALSE(browser.state().showingExporter);
  settings.saveCustomTheme(customTheme("custom-A", "Ümläut"));
  EXPECT_TRUE(browser.canExport());
  browser.exportThemes();
  EXPECT_TRUE(browser.state().showingExporter);
  EXPECT_EQ(fileChooser.proposedName, "notlet-themes");
  const auto file = directory.path() / "notlet-themes.json";
  fileChooser.toSave(file);
  EXPECT_EQ(ThemeConfigurationDocument::readFile(file)->themes, settings.customThemes());
  EXPECT_EQ(browser.state(), ThemeBrowser::State{});

  browser.exportThemes();
  fileChooser.toSave(directory.path() / "missing" / "themes.json");
  EXPECT_THAT(*browser.state().exportError, HasSubstr("could not be written"));
  browser.dismissExportError();
  EXPECT_EQ(browser.state(), ThemeBrowser::State{});
}

TEST_F(ThemeBrowserTest, AnAnswerAfterTheScreenIsGoneIsIgnored) {
  auto gone = std::make_unique<ThemeBrowser>(ThemeBrowser::Surroundings{settings, fileChooser, "en"});
  gone->importThemes();
  gone.reset();
  fileChooser.toOpen(fileWith(ThemeConfigurationDocument{{customTheme("custom-A")}}.json()));
  EXPECT_THAT(settings.customThemes(), IsEmpty());
}

TEST_F(ThemeBrowserTest, TwoScreensShowTheSame) {
  ThemeBrowser other({settings, fileChooser, "en"});
  const QSignalSpy changes(&other, &ThemeBrowser::changed);
  browser.select("nord");
  EXPECT_EQ(other.selectedThemeID(), "nord");
  EXPECT_THAT(changes, SizeIs(1));
  EXPECT_EQ(other.state(), ThemeBrowser::State{}) << "where the keyboard is belongs to each screen";
}

} // namespace
} // namespace notlet
