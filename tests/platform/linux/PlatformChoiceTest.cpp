#include "platform/linux/PlatformChoice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtGlobal>
#include <initializer_list>
#include <vector>

namespace notlet {
namespace {

using testing::HasSubstr;

TEST(PlatformChoice, IsX11WhereThereIsAChoice) {
  struct Case {
    const char* what;
    PlatformWishes wishes;
    const char* platform;
  };
  const Case cases[] = {
      {"an X11 session", {.hasX11 = true, .hasWaylandPlugin = true}, ""},
      {"no session", {.hasWaylandPlugin = true}, ""},
      {"a Wayland session", {.hasWayland = true, .hasX11 = true, .hasWaylandPlugin = true}, "xcb"},
      {"one without the plugin", {.hasWayland = true, .hasX11 = true}, "xcb"},
      {"one without an X server", {.hasWayland = true, .hasWaylandPlugin = true}, "wayland"},
      {"Qt was told", {.isChosen = true, .hasWayland = true, .hasX11 = true, .hasWaylandPlugin = true}, ""},
      {"Qt was told, without an X server or the plugin", {.isChosen = true, .hasWayland = true}, ""},
      {"asked for",
       {.asksForWayland = true, .hasWayland = true, .hasX11 = true, .hasWaylandPlugin = true},
       "wayland"},
      {"asked for, which is more recent than the environment",
       {.asksForWayland = true, .isChosen = true, .hasWayland = true, .hasWaylandPlugin = true},
       "wayland"},
  };
  for (const auto& [what, wishes, platform] : cases)
    EXPECT_EQ(choosePlatform(wishes).value_or("refused"), platform) << what;
}

TEST(PlatformChoice, SaysWhatIsMissing) {
  struct Case {
    PlatformWishes wishes;
    const char* message;
  };
  const Case cases[] = {
      {{.asksForWayland = true, .hasX11 = true, .hasWaylandPlugin = true}, "needs a Wayland session"},
      {{.asksForWayland = true, .hasWayland = true, .hasX11 = true}, "qt6-wayland"},
      {{.hasWayland = true}, "qt6-wayland"},
  };
  for (const auto& [wishes, message] : cases) {
    const auto platform = choosePlatform(wishes);
    ASSERT_FALSE(platform) << *platform;
    EXPECT_THAT(platform.error().message, HasSubstr(message));
  }
}

/// Sets some variables of the environment and puts them back.
class Environment {
 public:
  explicit Environment(std::initializer_list<std::pair<const char*, QByteArray>> values) {
    for (const auto& [name, value] : values) {
      m_before.emplace_back(name, qgetenv(name));
      qputenv(name, value);
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  ~Environment() {
    for (const auto& [name, value] : m_before)
      qputenv(name, value);
  }

 private:
  std::vector<std::pair<const char*, QByteArray>> m_before;
};

PlatformWishes wishesOf(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "notlet-desktop");
  return PlatformWishes::of(static_cast<int>(arguments.size()), arguments.data());
}

TEST(PlatformWishes, AreReadFromTheCommandLine) {
  const Environment environment({{"QT_QPA_PLATFORM", ""}});
  EXPECT_TRUE(wishesOf({"--capture", "--wayland"}).asksForWayland);
  EXPECT_FALSE(wishesOf({"--capture"}).asksForWayland);
  EXPECT_FALSE(wishesOf({"--", "--wayland"}).asksForWayland);
  for (const char* option : {"-platform", "--platform", "-platform=xcb"})
    EXPECT_TRUE(wishesOf({option, "offscreen"}).isChosen) << option;
  EXPECT_FALSE(wishesOf({"-platformtheme", "gtk3"}).isChosen);
}

TEST(PlatformWishes, AreReadFromTheEnvironment) {
  const Environment wayland(
      {{"WAYLAND_DISPLAY", "wayland-1"}, {"DISPLAY", ""}, {"QT_QPA_PLATFORM", "minimal"}});
  EXPECT_TRUE(wishesOf({}).hasWayland);
  EXPECT_FALSE(wishesOf({}).hasX11);
  EXPECT_TRUE(wishesOf({}).isChosen);
  const Environment x11({{"WAYLAND_DISPLAY", ""}, {"DISPLAY", ":0"}, {"QT_QPA_PLATFORM", ""}});
  EXPECT_FALSE(wishesOf({}).hasWayland);
  EXPECT_TRUE(wishesOf({}).hasX11);
  EXPECT_FALSE(wishesOf({}).isChosen);
}

} // namespace
} // namespace notlet
