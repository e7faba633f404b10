#include "shortcuts/MacShortcutSettings.h"

#include <QSignalSpy>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

#include "support/FakeFileOpener.h"
#include "support/TemporaryDirectory.h"

namespace notlet {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::StartsWith;

constexpr const char* loadPrefix = "Notlet could not load the shortcut config: ";
constexpr const char* savePrefix = "Notlet could not save the shortcut config: ";

MacShortcutConfig otherConfig() {
  MacShortcutConfig config;
  config.leader = "cmd+k";
  config.commands.archive = "b";
  return config;
}

void setMode(const fs::path& path, mode_t mode) {
  EXPECT_EQ(::chmod(path.c_str(), mode), 0) << path;
}

/// Lets permissions count for the super-user too, to whom the files then belong no longer.
class AsNobody {
 public:
  explicit AsNobody(const fs::path& directory) {
    if (::geteuid() != 0)
      return;
    for (const auto& entry : fs::recursive_directory_iterator(directory))
      EXPECT_EQ(::lchown(entry.path().c_str(), nobody, nobody), 0);
    EXPECT_EQ(::lchown(directory.c_str(), nobody, nobody), 0);
    m_changed = ::seteuid(nobody) == 0;
    EXPECT_TRUE(m_changed);
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;
  ~AsNobody() {
    if (m_changed) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

 private:
  static constexpr uid_t nobody = 65534;
  bool m_changed = false;
};

class MacShortcutSettingsTest : public testing::Test {
 protected:
  void put(std::string_view contents) {
    fs::create_directories(directory);
    std::ofstream(file, std::ios::binary) << contents;
  }
  [[nodiscard]] std::string contents() const {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  TemporaryDirectory home;
  fs::path directory = home.path() / ".config" / "notlet";
  fs::path file = directory / "config.json";
  FakeFileOpener opener;
};

TEST_F(MacShortcutSettingsTest, TheFirstStartWritesTheDefaults) {
  const mode_t former = ::umask(0);
  const MacShortcutSettings settings(directory, opener);
  ::umask(former);
  EXPECT_EQ(fs::status(directory.parent_path()).permissions(), fs::perms::owner_all);
  EXPECT_EQ(settings.config(), MacShortcutConfig::defaults());
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(contents(), MacShortcutConfig::defaults().encode());
  EXPECT_THAT(opener.opened, IsEmpty());
}

TEST_F(MacShortcutSettingsTest, AHandWrittenFileStaysAsItIs) {
  const std::string handWritten =
      R"({ "commands":{"search":"\/","notlet":"n","archive":"b","edit":"e","delete":"x"}, "mine": 1,
 "configurationVersion":4,"leaderTimeoutMilliseconds":50, "leader":"hyper+s",
 "archiveNavigation":{"next":"1","nextAlternate":"2","previous":"3","previousAlternate":"4"} })";
  put(handWritten);
  const auto written = fs::last_write_time(file);
  MacShortcutSettings settings(directory, opener);
  settings.reload();
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(settings.config().leader, "hyper+s");
  EXPECT_EQ(settings.config().commands.remove, "x");
  EXPECT_EQ(contents(), handWritten);
  EXPECT_EQ(fs::last_write_time(file), written);
}

TEST_F(MacShortcutSettingsTest, AnOlderFileIsUpgradedAtOnceThroughItsLink) {
  const fs::path kept = home.path() / "dotfiles.json";
  put("");
  fs::remove(file);
  fs::create_symlink("../../dotfiles.json", file);
  std::ofstream(kept) << R"({"leader":"alt+x","leaderTimeoutMilliseconds":700,
    "commands":{"notlet":"n","archive":"b","search":"s","edit":"y"},
    "archiveNavigation":{"next":"1","nextAlternate":"2","previous":"3","previousAlternate":"4"}})";
  setMode(kept, 0640);
  const MacShortcutSettings settings(directory, opener);
  EXPECT_EQ(settings.errorMessage(), std::nullopt);

  MacShortcutConfig expected;
  expected.leader = "alt+x";
  expected.leaderTimeoutMilliseconds = 700;
  expected.commands = {"n", "b", "/", "y", "d"};
  expected.archiveNavigation = {"1", "2", "3", "4"};
  EXPECT_EQ(settings.config(), expected);
  EXPECT_EQ(contents(), expected.encode());
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(fs::status(kept).permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

// Whoever follows the shortcuts hears of what the file says and of what was made of it.
TEST_F(MacShortcutSettingsTest, AnUpgradeIsAnnounced) {
  MacShortcutSettings settings(directory, opener);
  MacShortcutConfig old;
  old.configurationVersion = 2;
  old.commands.search = "s";
  put(old.encode());
  std::vector<std::string> searchKeys;
  QObject::connect(&settings, &MacShortcutSettings::changed,
                   [&] { searchKeys.push_back(settings.config().commands.search); });
  settings.reload();
  EXPECT_THAT(searchKeys, ElementsAre("s", "/"));
}

TEST_F(MacShortcutSettingsTest, ADeletedFileComesBackWithTheShortcutsInForce) {
  MacShortcutSettings settings(directory, opener);
  settings.save(otherConfig());
  fs::remove_all(directory);
  settings.reload();
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(settings.config(), otherConfig());
  EXPECT_EQ(contents(), otherConfig().encode());
}

TEST_F(MacShortcutSettingsTest, ABrokenFileIsToldAndLeftAlone) {
  MacShortcutSettings settings(directory, opener);
  settings.save(otherConfig());
  const QSignalSpy changes(&settings, &MacShortcutSettings::changed);
  put("{\"leader\": ");
  settings.reload();
  ASSERT_TRUE(settings.errorMessage());
  EXPECT_THAT(*settings.errorMessage(),
              StartsWith(std::string(loadPrefix) + "The file ends too early, in line 1, column"));
  EXPECT_EQ(settings.config(), otherConfig());
  EXPECT_EQ(contents(), "{\"leader\": ");
  EXPECT_EQ(changes.count(), 1);

  // Mended by hand, the file counts again and the message goes.
  put(MacShortcutConfig::defaults().encode());
  settings.reload();
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(settings.config(), MacShortcutConfig::defaults());
}

TEST_F(MacShortcutSettingsTest, SavingTakesEffectAtOnce) {
  MacShortcutSettings settings(directory, opener);
  const QSignalSpy changes(&settings, &MacShortcutSettings::changed);
  settings.setErrorMessage("An earlier message.");
  settings.save(otherConfig());
  EXPECT_EQ(settings.config(), otherConfig());
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(MacShortcutSettings(directory, opener).config(), otherConfig());
  EXPECT_EQ(changes.count(), 3);
  settings.save(otherConfig());
  EXPECT_EQ(changes.count(), 3);
}

TEST_F(MacShortcutSettingsTest, AnInvalidConfigurationIsNotSaved) {
  MacShortcutSettings settings(directory, opener);
  settings.save(otherConfig());
  MacShortcutConfig invalid;
  invalid.leader = "";
  settings.save(invalid);
  EXPECT_EQ(settings.errorMessage(), "The leader must include a key, for example control+s.");
  invalid.leader = "s";
  invalid.leaderTimeoutMilliseconds = 99;
  settings.save(invalid);
  EXPECT_EQ(settings.errorMessage(), "The leader timeout must be at least 100 milliseconds.");
  EXPECT_EQ(settings.config(), otherConfig());
  EXPECT_EQ(contents(), otherConfig().encode());
}

/// Ways in which files and folders get in the way, each with what reload() and save() then do.
struct Obstacle {
  std::string name;
  std::function<void(const fs::path& directory, const fs::path& file)> put;
  bool loads;
  bool saves;
};

class MacShortcutSettingsObstacleTest : public MacShortcutSettingsTest,
                                        public testing::WithParamInterface<Obstacle> {};

TEST_P(MacShortcutSettingsObstacleTest, TheShortcutsInForceStay) {
  const Obstacle& obstacle = GetParam();
  setMode(home.path(), 0755);
  MacShortcutSettings settings(directory, opener);
  settings.save(otherConfig());
  const AsNobody unprivileged(home.path());
  obstacle.put(directory, file);

  settings.reload();
  EXPECT_EQ(settings.config(), otherConfig());
  if (obstacle.loads) {
    EXPECT_EQ(settings.errorMessage(), std::nullopt);
  } else {
    EXPECT_THAT(settings.errorMessage(), Optional(StartsWith(loadPrefix)));
  }

  settings.save(MacShortcutConfig::defaults());
  if (obstacle.saves) {
    EXPECT_EQ(settings.errorMessage(), std::nullopt);
    EXPECT_EQ(settings.config(), MacShortcutConfig::defaults());
  } else {
    EXPECT_THAT(settings.errorMessage(), Optional(StartsWith(savePrefix)));
    EXPECT_EQ(settings.config(), otherConfig());
  }
  ::chmod(directory.c_str(), 0700); // Some obstacles are no directory.
}

void replaceByFile(const fs::path& place) {
  fs::remove_all(place);
  std::ofstream(place) << "in the way";
}

void replaceByDirectory(const fs::path& place) {
  fs::remove_all(place);
  fs::create_directories(place / "something");
}

INSTANTIATE_TEST_SUITE_P(
    Obstacles, MacShortcutSettingsObstacleTest,
    testing::Values(
        Obstacle{"DirectoryIsAFile", [](auto& directory, auto&) { replaceByFile(directory); }, false, false},
        Obstacle{"ParentIsAFile", [](auto& directory, auto&) { replaceByFile(directory.parent_path()); },
                 false, false},
        Obstacle{"FileIsADirectory", [](auto&, auto& file) { replaceByDirectory(file); }, false, false},
        Obstacle{"FileIsUnreadable", [](auto&, auto& file) { setMode(file, 0200); }, false, true},
        Obstacle{"DirectoryIsReadOnly", [](auto& directory, auto&) { setMode(directory, 0500); }, true,
                 false},
        Obstacle{"FileIsGoneFromAReadOnlyDirectory",
                 [](auto& directory, auto& file) {
                   fs::remove(file);
                   setMode(directory, 0500);
                 },
                 false, false},
        Obstacle{"DirectoryIsClosed", [](auto& directory, auto&) { setMode(directory, 0); }, false, false},
        Obstacle{"LinkLeadsNowhere",
                 [](auto&, auto& file) {
                   fs::remove(file);
                   fs::create_symlink("missing/config.json", file);
                 },
                 false, false},
        Obstacle{"LinkLeadsToItself",
                 [](auto&, auto& file) {
                   fs::remove(file);
                   fs::create_symlink("config.json", file);
                 },
                 false, true},
        Obstacle{"FileIsHuge", [](auto&, auto& file) { fs::resize_file(file, 3U << 20U); }, false, true}),
    [](const auto& instance) { return instance.param.name; });

// The new shortcuts count although the file could not be brought up to date.
TEST_F(MacShortcutSettingsTest, AnOldFileThatCannotBeRewrittenStillCounts) {
  setMode(home.path(), 0755);
  MacShortcutConfig old = otherConfig();
  old.configurationVersion = 2;
  put(old.encode());
  const AsNobody unprivileged(home.path());
  setMode(directory, 0500);
  const MacShortcutSettings settings(directory, opener);
  EXPECT_EQ(settings.config(), otherConfig());
  EXPECT_THAT(settings.errorMessage(), Optional(StartsWith(loadPrefix)));
  EXPECT_EQ(contents(), old.encode());
  setMode(directory, 0700);
}

TEST_F(MacShortcutSettingsTest, WithoutAHomeTheDefaultsAreInForce) {
  MacShortcutSettings settings(std::nullopt, opener);
  EXPECT_EQ(settings.config(), MacShortcutConfig::defaults());
  EXPECT_EQ(settings.errorMessage(), std::string(loadPrefix) + "There is no home folder.");
  settings.save(otherConfig());
  EXPECT_EQ(settings.config(), MacShortcutConfig::defaults());
  settings.setErrorMessage(std::nullopt);
  settings.openConfigFile();
  EXPECT_EQ(settings.errorMessage(), std::string(savePrefix) + "There is no home folder.");
  EXPECT_THAT(opener.opened, IsEmpty());
  EXPECT_FALSE(settings.write(otherConfig()));
}

TEST_F(MacShortcutSettingsTest, OpeningTheFileMakesSureOfIt) {
  MacShortcutSettings settings(directory, opener);
  settings.openConfigFile();
  fs::remove(file);
  settings.openConfigFile();
  EXPECT_TRUE(fs::exists(file));
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_THAT(opener.opened, ElementsAre(file, file));

  opener.fails = true;
  settings.openConfigFile();
  EXPECT_EQ(settings.errorMessage(), "No application opens this file.");
}

TEST_F(MacShortcutSettingsTest, OpeningAMissingFileTellsWhyItCannotBeSaved) {
  MacShortcutConfig invalid;
  invalid.leader = "hyper+s";
  put(invalid.encode());
  MacShortcutSettings settings(directory, opener);
  fs::remove(file);
  opener.fails = true;
  settings.openConfigFile();
  EXPECT_EQ(settings.errorMessage(), "The leader must include a key, for example control+s.");
  EXPECT_FALSE(fs::exists(file));
  EXPECT_THAT(opener.opened, ElementsAre(file));
}

} // namespace
} // namespace notlet
