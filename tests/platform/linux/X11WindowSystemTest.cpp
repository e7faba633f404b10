#include "platform/linux/X11WindowSystem.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>
#include <QWidget>
#include <filesystem>
#include <fstream>

#include "platform/linux/DisplayServer.h"
#include "platform/linux/X11UserTime.h"
#include "support/TemporaryDirectory.h"
#include "support/TestDisplay.h"
#include "support/X11Client.h"
#include "support/X11Marker.h"

namespace notlet {

namespace {

using testing::Contains;

class X11WindowSystemTest : public testing::Test {
 protected:
  X11WindowSystemTest() {
    window.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    window.setGeometry(600, 300, 200, 100);
  }

  static xcb_window_t native(QWidget& widget) { return static_cast<xcb_window_t>(widget.winId()); }

  /// The other program has a window with the keyboard, in which the user has just clicked.
  void useOtherProgram() {
    otherWindow = other.showWindow(100, 100, 300, 200);
    ASSERT_TRUE(QTest::qWaitFor([&] { return other.isShown(otherWindow); }));
    other.click(200, 200);
    ASSERT_TRUE(QTest::qWaitFor([&] { return other.activeWindow() == otherWindow; }));
    other.noteUse(otherWindow);
  }

  X11Marker marker;
  X11Client other{testDisplay().name()};
  xcb_window_t otherWindow = XCB_NONE;
  X11UserTime userTime;
  std::unique_ptr<WindowSystem> system = makeWindowSystem(userTime);
  QWidget window;
};

} // namespace

TEST_F(X11WindowSystemTest, GivesTheKeyboardToAWindowThatIsShown) {
  useOtherProgram();
  // Shown at once, shown for long, and hidden in between.
  for (int count = 0; count < 3; ++count) {
    window.show();
    system->activate(window.winId());
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isActiveWindow(); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return other.activeWindow() == native(window); }));
    window.hide();
    ASSERT_TRUE(QTest::qWaitFor([&] { return other.activeWindow() == otherWindow; }));
    other.noteUse(otherWindow);
  }
  window.setAttribute(Qt::WA_ShowWithoutActivating);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  system->activate(window.winId());
  EXPECT_TRUE(QTest::qWaitFor([&] { return window.isActiveWindow(); }));
}

// Window managers distrust a window that comes up by itself while the user is at work elsewhere, the more so
// when the program has another one.
TEST_F(X11WindowSystemTest, GivesTheKeyboardBesideTheMainWindow) {
  QWidget mainWindow;
  mainWindow.setGeometry(500, 200, 300, 300);
  mainWindow.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&mainWindow));
  useOtherProgram();
  window.show();
  system->activate(window.winId());
  EXPECT_TRUE(QTest::qWaitFor([&] { return window.isActiveWindow(); }, 1000));
  other.click(200, 200);
  ASSERT_TRUE(QTest::qWaitFor([&] { return other.activeWindow() == otherWindow; }));
  other.noteUse(otherWindow);
  system->activate(mainWindow.winId());
  EXPECT_TRUE(QTest::qWaitFor([&] { return mainWindow.isActiveWindow(); }, 1000));
}

TEST_F(X11WindowSystemTest, UsesTheTimeOfAnActivationToken) {
  system->noteActivationToken("launcher_TIME4711");
  EXPECT_EQ(userTime.take(), 4711U);
  system->noteActivationToken("0e8b2f0c");
  EXPECT_EQ(userTime.take(), std::nullopt);
}

TEST_F(X11WindowSystemTest, IsOnAllWorkspacesEachTimeItIsShown) {
  constexpr std::uint32_t everywhere = 0xFFFFFFFF;
  window.setAttribute(Qt::WA_ShowWithoutActivating);
  system->putOnAllWorkspaces(window.winId());
  for (int count = 0; count < 5; ++count) {
    window.show();
    const auto has = [&](const char* state) {
      return testing::Matches(Contains(other.atom(state)))(other.property(native(window), "_NET_WM_STATE"));
    };
    const auto isEverywhere = [&] {
      return other.property(native(window), "_NET_WM_DESKTOP") == std::vector{everywhere} &&
             has("_NET_WM_STATE_SKIP_TASKBAR") && has("_NET_WM_STATE_SKIP_PAGER") &&
             has("_NET_WM_STATE_ABOVE");
    };
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_TRUE(QTest::qWaitFor(isEverywhere)) << count;
    window.hide();
  }
}

TEST_F(X11WindowSystemTest, TellsTheDesktopWhichFrameSuitsAWindow) {
  const TemporaryDirectory data;
  const QByteArray before = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", data.path().c_str());
  const std::filesystem::path schemes = data.path() / "color-schemes";
  std::filesystem::create_directory(schemes);
  const struct {
    FrameTone tone;
    std::string variant;
    std::string scheme;
  } cases[] = {{FrameTone::dark, "dark", schemes / "BreezeDark.colors"},
               {FrameTone::light, "light", schemes / "BreezeLight.colors"},
               {FrameTone::desktop, "", ""}};
  for (const auto& [tone, variant, scheme] : cases) {
    if (!scheme.empty())
      std::ofstream(scheme) << "[General]";
    system->setFrameTone(window.winId(), tone);
    ASSERT_TRUE(marker.catchUp());
    EXPECT_EQ(other.text(native(window), "_GTK_THEME_VARIANT"), variant);
    EXPECT_EQ(other.text(native(window), "_KDE_NET_WM_COLOR_SCHEME"), scheme);
  }
  qputenv("XDG_DATA_HOME", before);
}

TEST_F(X11WindowSystemTest, KnowsWhetherACompositorRuns) {
  const QSignalSpy changes(system.get(), &WindowSystem::compositorChanged);
  EXPECT_FALSE(system->hasCompositor());
  {
    const X11Client compositor(testDisplay().name());
    compositor.ownSelection("_NET_WM_CM_S0");
    EXPECT_TRUE(QTest::qWaitFor([&] { return system->hasCompositor(); }));
    EXPECT_TRUE(makeWindowSystem(userTime)->hasCompositor());
    compositor.giveUpSelection("_NET_WM_CM_S0");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !system->hasCompositor(); }));
    compositor.ownSelection("_NET_WM_CM_S0");
    EXPECT_TRUE(QTest::qWaitFor([&] { return system->hasCompositor(); }));
  }
  // It has ended without a word.
  EXPECT_TRUE(QTest::qWaitFor([&] { return !system->hasCompositor(); }));
  EXPECT_EQ(changes.count(), 4);
}

TEST_F(X11WindowSystemTest, HearsOfPressesInOtherProgramsWhileAsked) {
  useOtherProgram();
  QSignalSpy presses(system.get(), &WindowSystem::mousePressed);
  system->watchMouse(true);
  constexpr int wheelUp = 4;
  other.click(250, 220, wheelUp);
  other.click(250, 230);
  ASSERT_TRUE(QTest::qWaitFor([&] { return presses.count() > 0; }));
  const qreal ratio = qApp->devicePixelRatio();
  EXPECT_EQ(presses[0][0].toPoint(), (QPointF(250, 230) / ratio).toPoint());
  EXPECT_TRUE(QTest::qWaitFor([&] { return other.tookButtonPress(); }));
  other.click(5, 5, 3);
  EXPECT_TRUE(QTest::qWaitFor([&] { return presses.count() == 2; }));

  system->watchMouse(false);
  other.click(250, 230);
  EXPECT_TRUE(marker.catchUp());
  EXPECT_EQ(presses.count(), 2);
}

TEST_F(X11WindowSystemTest, TheShadowOfAWindowLeavesTheMouseToWhatIsBelow) {
  otherWindow = other.showWindow(500, 200, 400, 300);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  system->setShadow(window.winId(), {8, 8, 8, 8}, QRect(8, 8, 184, 84));
  ASSERT_TRUE(marker.catchUp());
  EXPECT_EQ(other.property(native(window), "_GTK_FRAME_EXTENTS"), (std::vector<std::uint32_t>{8, 8, 8, 8}));
  const QPoint corner = window.mapToGlobal(QPoint());
  for (const auto& [inset, isShadow] : {std::pair(4, true), std::pair(12, false)}) {
    other.click(static_cast<std::int16_t>(corner.x() + inset), static_cast<std::int16_t>(corner.y() + inset));
    ASSERT_TRUE(marker.catchUp());
    EXPECT_EQ(other.tookButtonPress(), isShadow) << inset;
  }
}

TEST_F(X11WindowSystemTest, KnowsWhatTheWindowManagerCanDo) {
  DesktopCapabilities expected;
  expected.placesWindows = true;
  expected.seesMouseEverywhere = true;
  expected.keepsWindowsAbove = true;
  expected.showsOnAllWorkspaces = true;
  EXPECT_EQ(windowCapabilities(), expected);
  testDisplay().stopWindowManager();
  expected.keepsWindowsAbove = false;
  expected.showsOnAllWorkspaces = false;
  EXPECT_EQ(windowCapabilities(), expected);
  ASSERT_TRUE(marker.catchUp());

  // The keyboard goes back to where it was, be that a window or wherever the pointer is.
  otherWindow = other.showWindow(100, 100, 300, 200);
  for (const xcb_window_t before : {otherWindow, xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}}) {
    other.takeKeyboard(before);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    for (int time = 0; time < 2; ++time) {
      system->activate(window.winId());
      EXPECT_TRUE(QTest::qWaitFor([&] { return other.keyboardOwner() == native(window); }));
      EXPECT_TRUE(QTest::qWaitFor([&] { return window.isActiveWindow(); }));
    }
    window.hide();
    EXPECT_TRUE(QTest::qWaitFor([&] { return other.keyboardOwner() == before; }));
  }

  testDisplay().startWindowManager();
  ASSERT_TRUE(marker.catchUp());
  useOtherProgram();
  window.show();
  system->activate(window.winId());
  EXPECT_TRUE(QTest::qWaitFor([&] { return other.activeWindow() == native(window); }));
}

} // namespace notlet
