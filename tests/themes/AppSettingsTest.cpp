#include "themes/AppSettings.h"

#include <QSignalSpy>
#include <fstream>
#include <gmock/gmock.h>

#include "support/CustomTheme.h"
#include "support/MemoryDefaults.h"
#include "support/TemporaryDirectory.h"
#include "themes/AppThemeCatalog.h"
#include "themes/ThemeConfigurationDocument.h"

namespace notlet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

class AppSettingsTest : public testing::Test {
 protected:
  /// What a new start of the program would find.
  [[nodiscard]] std::vector<AppTheme> storedThemes() {
    const auto bytes = defaults.binary(AppSettings::customThemesKey);
    const auto document = ThemeConfigurationDocument::read(bytes.value_or("absent"));
    return document ? document->themes : std::vector<AppTheme>{};
  }
  [[nodiscard]] std::vector<std::string> ids(const AppSettings& settings) {
    std::vector<std::string> found;
    for (const AppTheme& theme : settings.customThemes())
      found.push_back(theme.id);
    return found;
  }

  MemoryDefaults defaults;
};

TEST_F(AppSettingsTest, SelectionAtStart) {
  struct Case {
    std::optional<std::string> stored;
    std::optional<std::int64_t> version;
    std::string selected;
    std::string themeInForce;
  };
  const std::vector<Case> cases = {
      {std::nullopt, std::nullopt, "midnight-mono", "midnight-mono"},
      {std::nullopt, 1, "midnight-mono", "midnight-mono"},
      {"system", std::nullopt, "midnight-mono", "midnight-mono"},
      {"system", 0, "midnight-mono", "midnight-mono"},
      {"system", 1, "system", "system"},
      {"dracula", std::nullopt, "dracula", "dracula"},
      {"unheard-of", 1, "unheard-of", "system"},
      {"", 1, "", "system"},
  };
  for (const Case& start : cases) {
    SCOPED_TRACE(start.selected);
    defaults = {};
    if (start.stored) {
      ASSERT_TRUE(defaults.setString("selectedThemeID", *start.stored));
    }
    if (start.version) {
      ASSERT_TRUE(defaults.setInteger("themeConfigurationVersion", *start.version));
    }
    const AppSettings settings(defaults);
    EXPECT_EQ(settings.selectedThemeID(), start.selected);
    EXPECT_EQ(settings.theme().id, start.themeInForce);
    EXPECT_EQ(defaults.string("selectedThemeID"), start.selected);
    EXPECT_EQ(defaults.integer("themeConfigurationVersion"), 1);
  }
}

TEST_F(AppSettingsTest, ASelectionIsKeptAndAnnouncedOnce) {
  AppSettings settings(defaults);
  QSignalSpy changes(&settings, &AppSettings::changed);
  QSignalSpy themeChanges(&settings, &AppSettings::themeChanged);
  settings.setSelectedThemeID("dracula");
  settings.setSelectedThemeID("dracula");
  EXPECT_THAT(changes, SizeIs(1));
  EXPECT_THAT(themeChanges, SizeIs(1));
  EXPECT_EQ(settings.theme(), AppThemeCatalog::themeWithID("dracula"));
  EXPECT_EQ(AppSettings(defaults).selectedThemeID(), "dracula");
}

TEST_F(AppSettingsTest, AnUnknownSelectionChangesNoColours) {
  AppSettings settings(defaults);
  settings.setSelectedThemeID("system");
  QSignalSpy themeChanges(&settings, &AppSettings::themeChanged);
  settings.setSelectedThemeID("unheard-of");
  EXPECT_EQ(settings.selectedThemeID(), "unheard-of");
  EXPECT_THAT(themeChanges, IsEmpty());
}

TEST_F(AppSettingsTest, BuiltInThemesCannotBeSavedOver) {
  AppSettings settings(defaults);
  QSignalSpy changes(&settings, &AppSettings::changed);
  settings.saveCustomTheme(customTheme("nord"));
  EXPECT_THAT(settings.customThemes(), IsEmpty());
  EXPECT_EQ(settings.selectedThemeID(), "midnight-mono");
  EXPECT_THAT(changes, IsEmpty());
}

TEST_F(AppSettingsTest, SavingAgainReplacesInPlaceAndSelects) {
  AppSettings settings(defaults);
  settings.saveCustomTheme(customTheme("custom-A"));
  settings.saveCustomTheme(customTheme("custom-B"));
  const AppTheme second = customTheme("custom-A", "Second");
  settings.saveCustomTheme(second);
  EXPECT_THAT(ids(settings), ElementsAre("custom-A", "custom-B"));
  EXPECT_EQ(settings.theme(), second);
  EXPECT_EQ(storedThemes(), settings.customThemes());
  EXPECT_EQ(AppSettings(defaults).theme(), second);
}

TEST_F(AppSettingsTest, EditingTheThemeInForceIsAnnounced) {
  AppSettings settings(defaults);
  settings.saveCustomTheme(customTheme("custom-A"));
  QSignalSpy themeChanges(&settings, &AppSettings::themeChanged);
  settings.saveCustomTheme(customTheme("custom-A", "Other name"));
  settings.saveCustomTheme(customTheme("custom-A", "Other name"));
  EXPECT_THAT(themeChanges, SizeIs(1));
}

TEST_F(AppSettingsTest, DeletingSelectsSystemOnlyForTheSelectedTheme) {
  AppSettings settings(defaults);
  for (const char* id : {"custom-A", "custom-B", "custom-C"})
    settings.saveCustomTheme(customTheme(id));
  settings.deleteCustomTheme(settings.customThemes()[1]);
  EXPECT_THAT(ids(settings), ElementsAre("custom-A", "custom-C"));
  EXPECT_EQ(settings.selectedThemeID(), "custom-C");
  settings.deleteCustomTheme(settings.customThemes()[1]);
  EXPECT_THAT(ids(settings), ElementsAre("custom-A"));
  EXPECT_EQ(defaults.string("selectedThemeID"), "system");
  EXPECT_THAT(storedThemes(), SizeIs(1));
  EXPECT_EQ(AppSettings(defaults).selectedThemeID(), "system") << "a deleted theme is no first start";
}

TEST_F(AppSettingsTest, ImportedThemesBecomeCustomOnes) {
  AppSettings settings(defaults);
  settings.saveCustomTheme(customTheme("custom-A"));
  settings.saveCustomTheme(customTheme("custom-B"));
  settings.setSelectedThemeID("ink");

  AppTheme known = customTheme("custom-A", "From file");
  known.category = "Popular";
  known.followsSystem = true;
  const std::vector<AppTheme> file = {known, customTheme("mine"), customTheme("nord"),
                                      customTheme("Custom-x")};
  settings.importCustomThemes(file);

  EXPECT_THAT(ids(settings),
              ElementsAre("custom-A", "custom-B", MatchesRegex("custom-[0-9A-F-]{36}"),
                          MatchesRegex("custom-[0-9A-F-]{36}"), MatchesRegex("custom-[0-9A-F-]{36}")));
  EXPECT_EQ(settings.customThemes()[0], customTheme("custom-A", "From file"));
  EXPECT_EQ(settings.selectedThemeID(), "ink");
  EXPECT_EQ(storedThemes(), settings.customThemes());

  settings.importCustomThemes(file);
  EXPECT_THAT(settings.customThemes(), SizeIs(8)) << "only \"custom-\" identifiers are known again";
  settings.importCustomThemes({});
  EXPECT_THAT(settings.customThemes(), SizeIs(8));
}

TEST_F(AppSettingsTest, ThemesThatCannotBeReadAreKeptElsewhereBeforeTheyAreOverwritten) {
  const std::string unreadable = R"([{"id": "custom-A"}])";
  ASSERT_TRUE(defaults.setBinary("customThemes", unreadable));
  {
    AppSettings settings(defaults);
    EXPECT_THAT(settings.customThemes(), IsEmpty());
    EXPECT_EQ(defaults.binary("customThemes"), unreadable) << "starting overwrites nothing";
    settings.saveCustomTheme(customTheme("custom-B"));
    settings.saveCustomTheme(customTheme("custom-C"));
  }
  EXPECT_EQ(defaults.binary("customThemes.unreadable-1"), unreadable);
  EXPECT_THAT(storedThemes(), SizeIs(2));

  ASSERT_TRUE(defaults.setBinary("customThemes", "again"));
  AppSettings(defaults).saveCustomTheme(customTheme("custom-D"));
  EXPECT_EQ(defaults.binary("customThemes.unreadable-1"), unreadable);
  EXPECT_EQ(defaults.binary("customThemes.unreadable-2"), "again");
}

TEST_F(AppSettingsTest, AChangeThatCannotBeWrittenIsToldAndTriedAgain) {
  for (const bool triesBeforeTheEnd : {true, false}) {
    const TemporaryDirectory directory;
    const std::filesystem::path folder = directory.path() / "state";
    std::ofstream(folder) << "a file where the folder should be";
    JsonFileDefaults disk(folder / "defaults.json");
    {
      AppSettings settings(disk);
      EXPECT_EQ(settings.warning(), "") << "nobody has changed anything";
      settings.saveCustomTheme(customTheme("custom-A"));
      EXPECT_EQ(settings.theme(), customTheme("custom-A"));
      EXPECT_THAT(settings.warning(), HasSubstr(folder.string()));
      settings.dismissWarning();
      settings.tryAgain();
      EXPECT_EQ(settings.warning(), "") << "told twice";
      settings.setSelectedThemeID("ink");
      EXPECT_NE(settings.warning(), "");
      std::filesystem::remove(folder);
      if (triesBeforeTheEnd) {
        settings.tryAgain();
        EXPECT_EQ(settings.warning(), "");
      }
    }
    JsonFileDefaults next(folder / "defaults.json");
    const AppSettings settings(next);
    EXPECT_EQ(settings.selectedThemeID(), "ink");
    EXPECT_THAT(ids(settings), ElementsAre("custom-A"));
  }
}

} // namespace
} // namespace notlet
