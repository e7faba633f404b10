#include "shell/NotletMacAppDelegate.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <fstream>
#include <functional>
#include <memory>
#include <random>

#include "shell/ShellFixture.h"
#include "support/FakeGlobalHotKey.h"
#include "support/FakeShellSurfaces.h"
#include "support/FakeStatusItem.h"
#include "support/TemporaryDirectory.h"

namespace notlet {
namespace {

using std::chrono::milliseconds;
using Kind = LaunchRequest::Kind;
using Surface = FakeShellSurfaces::Surface;

const LaunchRequest activate{Kind::activate, {}, {}};
const LaunchRequest capture{Kind::capture, {}, {}};

LaunchRequest opening(std::vector<std::string> urls) {
  return {Kind::open, std::move(urls), {}};
}

class NotletMacAppDelegateTest : public ShellFixture {
 protected:
  /// The program starts, its windows closed.
  void launch(const LaunchRequest& request = {}, bool withStore = true) {
    controller.exitFloatingMode();
    surfaces = FakeShellSurfaces();
    posted.clear();
    delegate = std::make_unique<NotletMacAppDelegate>(
        NotletMacAppDelegate::Surroundings{surfaces, withStore ? &controller : nullptr, center, coordinator,
                                           fileSettings, hotKey, statusItem, clock});
    delegate->applicationDidFinishLaunching(request);
    nextTurn();
  }
  void launchInFloatingMode() {
    launch();
    center.post(CommandName::enterMacFloatingMode);
  }
  /// Long after the last one.
  void click() {
    clock.time += milliseconds(1000);
    Q_EMIT statusItem.clicked();
  }
  static void nextTurn() {
    // The hot key takes a turn, and so does the focus after it.
    for (int turn = 0; turn < 2; ++turn)
      QCoreApplication::processEvents();
  }

  TemporaryDirectory directory;
  MacShortcutSettings fileSettings{directory.path(), opener};
  FakeShellSurfaces surfaces;
  FakeGlobalHotKey hotKey;
  FakeStatusItem statusItem;
  std::unique_ptr<NotletMacAppDelegate> delegate;
};

TEST_F(NotletMacAppDelegateTest, AStartShowsWhatItWasStartedFor) {
  const struct {
    LaunchRequest request;
    Surface active;
    bool showsMainWindow;
    bool selectsCapture;
  } cases[] = {
      {activate, Surface::mainWindow, true, false},
      {capture, Surface::popover, false, false},
      {opening({"notlet://capture"}), Surface::mainWindow, true, true},
      {opening({"https://example.org"}), Surface::mainWindow, true, false},
  };
  for (const auto& [request, active, showsMainWindow, selectsCapture] : cases) {
    launch(request);
    EXPECT_EQ(surfaces.active, active);
    EXPECT_EQ(surfaces.mainWindowShown, showsMainWindow);
    EXPECT_EQ(timesPosted(CommandName::showMacCapture), selectsCapture ? 1 : 0);
  }
}

TEST_F(NotletMacAppDelegateTest, WaysToTheMainWindowEndFloatingModeAndShowItOneTurnLater) {
  const std::function<void()> ways[] = {
      [this] { delegate->handle(activate); },
      [this] { Q_EMIT statusItem.openChosen(); },
      [this] { controller.returnToMainApp(); },
      [this] { center.post(CommandName::openMacNotlet); },
      [this] { center.post(CommandName::openMacArchive); },
      [this] { center.post(CommandName::focusMacArchiveSearch); },
  };
  for (const auto& openAgain : ways) {
    launchInFloatingMode();
    openAgain();
    EXPECT_FALSE(controller.isFloatingMode() || surfaces.mainWindowShown);
    nextTurn();
    EXPECT_EQ(surfaces.active, Surface::mainWindow);
  }
}

TEST_F(NotletMacAppDelegateTest, NavigationOutsideFloatingModeTouchesNoWindow) {
  launch();
  surfaces.showPopover(false);
  center.post(CommandName::openMacArchive);
  nextTurn();
  EXPECT_EQ(surfaces.active, Surface::popover);
}

TEST_F(NotletMacAppDelegateTest, TheMenuReachesTheOwner) {
  launch();
  const QSignalSpy settings(delegate.get(), &NotletMacAppDelegate::settingsRequested);
  const QSignalSpy quit(delegate.get(), &NotletMacAppDelegate::quitRequested);
  Q_EMIT statusItem.settingsChosen();
  Q_EMIT statusItem.quitChosen();
  EXPECT_TRUE(settings.count() == 1 && quit.count() == 1);
}

TEST_F(NotletMacAppDelegateTest, AClickOnTheStatusItemTogglesWhatIsShown) {
  launch();
  for (const bool shown : {true, false, true, false}) {
    click();
    EXPECT_EQ(surfaces.popoverShown, shown);
  }
  launchInFloatingMode();
  delegate->popoverClosedByItself();
  for (const bool expanded : {true, false, true}) {
    click();
    EXPECT_EQ(controller.isExpanded(), expanded);
  }
}

// Between the clicks the popover may close by itself, or stay.
TEST_F(NotletMacAppDelegateTest, ADoubleClickOnTheStatusItemIsAsOne) {
  for (const bool closesBetween : {true, false}) {
    launch();
    for (const bool shown : {true, false}) {
      click();
      if (surfaces.popoverShown && closesBetween) {
        surfaces.closePopover();
        delegate->popoverClosedByItself();
      }
      clock.time += milliseconds(400);
      Q_EMIT statusItem.clicked();
      EXPECT_EQ(surfaces.popoverShown, shown);
    }
  }
  launchInFloatingMode();
  click();
  Q_EMIT statusItem.clicked();
  EXPECT_TRUE(controller.isExpanded());
}

TEST_F(NotletMacAppDelegateTest, TheClickThatClosedThePopoverDoesNotReopenItButTheHotKeyDoes) {
  launch();
  for (const auto& [later, reopens] : {std::pair(0, false), std::pair(300, false), std::pair(301, true)}) {
    surfaces.closePopover();
    clock.time += milliseconds(1000);
    delegate->popoverClosedByItself();
    clock.time += milliseconds(later);
    Q_EMIT statusItem.clicked();
    EXPECT_EQ(surfaces.popoverShown, reopens) << later;
  }
  surfaces.closePopover();
  delegate->popoverClosedByItself();
  Q_EMIT hotKey.pressed();
  nextTurn();
  EXPECT_TRUE(surfaces.popoverShown);
}

TEST_F(NotletMacAppDelegateTest, EveryWayToTheQuickCaptureShowsItAndThenFocusesIt) {
  const std::function<void()> ways[] = {
      [this] { Q_EMIT hotKey.pressed(); },
      [this] { Q_EMIT statusItem.quickNotletChosen(); },
      [this] { delegate->handle(capture); },
      [this] { center.post(CommandName::openGlobalMacQuickNotlet); },
  };
  for (const auto& way : ways) {
    for (const bool wasShown : {false, true}) {
      launch();
      surfaces.popoverShown = wasShown;
      way();
      EXPECT_EQ(timesPosted(CommandName::focusMacCaptureInput), 0) << "not on screen yet";
      nextTurn();
      EXPECT_TRUE(surfaces.popoverShown);
      EXPECT_EQ(surfaces.active, Surface::popover);
      EXPECT_EQ(timesPosted(CommandName::openGlobalMacQuickNotlet), 1);
      EXPECT_EQ(posted.back(), CommandName::focusMacCaptureInput);
    }
    launchInFloatingMode();
    way();
    nextTurn();
    EXPECT_TRUE(controller.isExpanded());
    EXPECT_EQ(posted.back(), CommandName::focusMacCaptureInput);
  }
}

TEST_F(NotletMacAppDelegateTest, TheBubbleTakesThePlaceOfThePopoverAndTheMainWindow) {
  launch();
  surfaces.showPopover(false);
  coordinator.archiveActive = true;
  delegate->activateMainWindow();
  center.post(CommandName::enterMacFloatingMode);
  EXPECT_TRUE(panel.isShown);
  EXPECT_FALSE(coordinator.archiveActive);
  controller.expandCapture();
  center.post(CommandName::enterMacFloatingMode);
  nextTurn();
  EXPECT_TRUE(controller.isExpanded());
  EXPECT_FALSE(surfaces.popoverShown || surfaces.mainWindowShown);
  center.post(CommandName::collapseMacFloatingCapture);
  EXPECT_TRUE(controller.isFloatingMode() && !controller.isExpanded());
}

TEST_F(NotletMacAppDelegateTest, WithoutAStoreThereIsAPopoverButNoFloatingMode) {
  launch({}, false);
  center.post(CommandName::enterMacFloatingMode);
  center.post(CommandName::collapseMacFloatingCapture);
  EXPECT_TRUE(surfaces.mainWindowShown);
  Q_EMIT statusItem.clicked();
  EXPECT_EQ(surfaces.active, Surface::popover);
  surfaces.closePopover();
  Q_EMIT hotKey.pressed();
  nextTurn();
  EXPECT_EQ(surfaces.active, Surface::popover);
  center.post(CommandName::openMacArchive);
  delegate->handle(opening({"notlet:"}));
  delegate->handle(activate);
  nextTurn();
  EXPECT_EQ(surfaces.active, Surface::mainWindow);
}

TEST_F(NotletMacAppDelegateTest, OnlyALinkOfTheOwnSchemeShowsTheCapture) {
  using namespace std::string_literals;
  const std::string megabyte(std::size_t(1) << 20, ':');
  const struct {
    std::vector<std::string> urls;
    bool counts;
  } cases[] = {
      {{}, false},
      {{"", "notlet", "Notlet://capture", " notlet://capture", "notlet2://capture", "notlet\0:"s}, false},
      {{"https://example.org/notlet:"}, false},
      {{megabyte, "file:///etc/passwd", "notlet" + std::string(megabyte.size(), 'x')}, false},
      {{"notlet:"}, true},
      {{"https://example.org", "notlet:1", "notlet:2"}, true},
      {{megabyte, "notlet:" + megabyte + "\xff\0"s}, true},
  };
  for (const auto& [urls, counts] : cases) {
    SCOPED_TRACE(urls.empty() ? "" : urls.back().substr(0, 30));
    launch();
    surfaces.mainWindowShown = false;
    delegate->handle(opening(urls));
    nextTurn();
    EXPECT_EQ(timesPosted(CommandName::showMacCapture), counts ? 1 : 0);
    EXPECT_EQ(surfaces.mainWindowShown, counts);

    launchInFloatingMode();
    delegate->handle(opening(urls));
    nextTurn();
    EXPECT_EQ(controller.isExpanded(), counts);
    EXPECT_EQ(timesPosted(CommandName::showMacCapture), 0);
    EXPECT_FALSE(surfaces.mainWindowShown);
  }
}

TEST_F(NotletMacAppDelegateTest, ARefusedHotKeyIsToldUntilTheUserHasSeenItOrItIsHad) {
  const struct {
    GlobalHotKey::Failure failure;
    const char* message;
  } cases[] = {
      {GlobalHotKey::Failure::notInstalled, "Notlet could not install the global Quick Notlet shortcut."},
      {GlobalHotKey::Failure::taken, "Control-Command-J is already registered by another app."},
  };
  for (const auto& [failure, message] : cases) {
    for (const bool atOnce : {true, false}) {
      hotKey.refusal = atOnce ? std::optional(failure) : std::nullopt;
      launch();
      if (!atOnce)
        Q_EMIT hotKey.failed(failure);
      EXPECT_EQ(fileSettings.errorMessage(), message);
      delegate->applicationDidBecomeActive();
      EXPECT_EQ(fileSettings.errorMessage(), message) << "no window was there to show it before";
      EXPECT_FALSE(delegate->waysBack().hotKey);
      if (atOnce)
        hotKey.refusal.reset();
      else
        fileSettings.setErrorMessage(std::nullopt);
      delegate->applicationDidBecomeActive();
      EXPECT_EQ(fileSettings.errorMessage(), std::nullopt);
      EXPECT_EQ(delegate->waysBack().hotKey, atOnce);
    }
  }
}

TEST_F(NotletMacAppDelegateTest, BecomingActiveReadsTheShortcutFile) {
  launch();
  std::ofstream(directory.path() / "config.json", std::ios::trunc) << "no json";
  delegate->applicationDidBecomeActive();
  EXPECT_TRUE(fileSettings.errorMessage());
}

TEST_F(NotletMacAppDelegateTest, AFaultyShortcutFileCoversARefusedHotKeyUntilItIsRead) {
  hotKey.refusal = GlobalHotKey::Failure::taken;
  std::ofstream(directory.path() / "config.json", std::ios::trunc) << "no json";
  launch();
  delegate->applicationDidBecomeActive();
  EXPECT_THAT(fileSettings.errorMessage(), testing::Optional(testing::HasSubstr("could not load")));
  fileSettings.setErrorMessage(std::nullopt);
  EXPECT_THAT(fileSettings.errorMessage(), testing::Optional(testing::HasSubstr("already registered")));
  fileSettings.setErrorMessage(std::nullopt);
  EXPECT_EQ(fileSettings.errorMessage(), std::nullopt);
}

TEST_F(NotletMacAppDelegateTest, TheWaysBackAreThoseThatWorkNow) {
  launch();
  EXPECT_TRUE(hotKey.isInstalled);
  EXPECT_EQ(delegate->waysBack(), (WaysBack{.statusItem = true, .bubble = false, .hotKey = true}));
  delegate->applicationWillTerminate();
  EXPECT_FALSE(hotKey.isInstalled);
  statusItem.shown = false;
  hotKey.refusal = GlobalHotKey::Failure::taken;
  launchInFloatingMode();
  EXPECT_EQ(delegate->waysBack(), (WaysBack{.statusItem = false, .bubble = true, .hotKey = false}));
}

TEST_F(NotletMacAppDelegateTest, ATrayThatGoesAwayLeavesNoProgramBehindThatNobodyCanReach) {
  for (const bool hasHotKey : {true, false}) {
    hotKey.refusal = hasHotKey ? std::nullopt : std::optional(GlobalHotKey::Failure::notInstalled);
    launch();
    surfaces.hideMainWindow();
    for (const bool shown : {true, false}) {
      statusItem.shown = shown;
      Q_EMIT statusItem.shownChanged();
      nextTurn();
      EXPECT_EQ(surfaces.mainWindowShown, !shown && !hasHotKey);
    }
  }
}

TEST_F(NotletMacAppDelegateTest, NoOrderOfEventsShowsTheBubbleBesideTheOtherSurfaces) {
  std::mt19937 random(1123);
  const std::function<void()> events[] = {
      [this] { Q_EMIT statusItem.clicked(); },
      [this] { Q_EMIT hotKey.pressed(); },
      [this] { center.post(CommandName::enterMacFloatingMode); },
      [this] { center.post(CommandName::openMacArchive); },
      [this] { center.post(CommandName::collapseMacFloatingCapture); },
      [this] { delegate->handle(activate); },
      [this] { delegate->handle(capture); },
      [this] { delegate->handle(opening({"notlet:"})); },
      [this] { controller.expandCapture(); },
      [this] { controller.returnToMainApp(); },
      [] { nextTurn(); },
  };
  launch();
  for (int step = 0; step < 5'000; ++step) {
    const std::size_t chosen = std::uniform_int_distribution<std::size_t>(0, std::size(events) - 1)(random);
    events[chosen]();
    ASSERT_FALSE(controller.isFloatingMode() && (surfaces.popoverShown || surfaces.mainWindowShown))
        << "step " << step << ", event " << chosen;
  }
}

} // namespace
} // namespace notlet
