#include "shell/MacFloatingPanelController.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "shell/ShellFixture.h"

namespace notlet {
namespace {

using Content = FloatingPanel::Content;

class MacFloatingPanelControllerTest : public ShellFixture {
 protected:
  enum class State { off, bubble, expanded };

  void start(State state) {
    controller.exitFloatingMode();
    if (state != State::off)
      controller.enterFloatingMode();
    if (state == State::expanded)
      controller.expandCapture();
    posted.clear();
  }
  [[nodiscard]] State state() const {
    return !controller.isFloatingMode() ? State::off
           : controller.isExpanded()    ? State::expanded
                                        : State::bubble;
  }
  /// The bubble is dragged by that much, and let go.
  void drag(const QPointF& movement) {
    controller.dragBubble(movement, false);
    controller.dragBubble({}, true);
  }
  void dragPanelTo(const QPointF& corner) {
    panel.currentFrame.moveTo(corner);
    controller.captureDragEnded();
  }
  [[nodiscard]] std::optional<std::int64_t> storedScreen() const {
    return defaults.integer("macFloatingBubbleDisplayID");
  }

  void checkInvariants() const {
    ASSERT_TRUE(!controller.isExpanded() || controller.isFloatingMode());
    ASSERT_EQ(coordinator.floatingCaptureExpanded, controller.isFloatingMode() && controller.isExpanded());
    ASSERT_EQ(panel.isShown, controller.isFloatingMode() && !screens.areas.empty());
    ASSERT_TRUE(controller.isExpanded() || !panel.hasKeyboard);
    if (!panel.isShown)
      return;
    ASSERT_EQ(panel.content, controller.isExpanded() ? Content::capture : Content::bubble);
    ASSERT_EQ(panel.currentFrame.size(), controller.isExpanded() ? QSizeF(380, 260) : QSizeF(64, 64));
    ASSERT_TRUE(
        std::ranges::any_of(screens.areas,
                            [&](const ScreenArea& screen) {
                              return screen.visibleFrame.adjusted(8, 8, -8, -8).contains(panel.currentFrame);
                            }))
        << panel.currentFrame.x() << " " << panel.currentFrame.y();
  }
};

TEST_F(MacFloatingPanelControllerTest, EachEventLeadsFromEachStateToTheRightOne) {
  using Event = void (MacFloatingPanelController::*)();
  const struct {
    const char* what;
    Event event;
    State fromOff;
    State fromBubble;
    State fromExpanded;
  } cases[] = {
      {"enter", &MacFloatingPanelController::enterFloatingMode, State::bubble, State::bubble,
       State::expanded},
      {"exit", &MacFloatingPanelController::exitFloatingMode, State::off, State::off, State::off},
      {"expand", &MacFloatingPanelController::expandCapture, State::off, State::expanded, State::expanded},
      {"collapse", &MacFloatingPanelController::collapseCapture, State::off, State::bubble, State::bubble},
      {"toggle", &MacFloatingPanelController::toggleCapture, State::off, State::expanded, State::bubble},
      {"return", &MacFloatingPanelController::returnToMainApp, State::off, State::off, State::off},
  };
  for (const auto& row : cases) {
    for (const auto& [from, to] :
         {std::pair(State::off, row.fromOff), std::pair(State::bubble, row.fromBubble),
          std::pair(State::expanded, row.fromExpanded)}) {
      SCOPED_TRACE(row.what);
      start(from);
      (controller.*row.event)();
      EXPECT_EQ(state(), to);
      // The composer stops dictation and gives up the focus when it goes.
      const bool goes = from == State::expanded && to != State::expanded;
      EXPECT_TRUE(!goes || timesPosted(CommandName::stopMacFloatingCapture) == 1);
      ASSERT_NO_FATAL_FAILURE(checkInvariants());
    }
  }
}

TEST_F(MacFloatingPanelControllerTest, ExpandingPutsThePanelAtTheBubbleWithTheKeyboardHoweverOften) {
  controller.enterFloatingMode();
  EXPECT_EQ(panel.currentFrame, QRectF(1352, 747, 64, 64));
  for (int time = 0; time < 2; ++time) {
    controller.expandCapture();
    EXPECT_EQ(panel.currentFrame, QRectF(1036, 607, 380, 260));
    EXPECT_TRUE(panel.hasKeyboard && panel.wasAnimated);
    panel.currentFrame.moveTo(300, 300);
    panel.hasKeyboard = false;
  }
  controller.collapseCapture();
  EXPECT_EQ(panel.currentFrame, QRectF(1352, 747, 64, 64));
  EXPECT_FALSE(panel.wasAnimated);
}

TEST_F(MacFloatingPanelControllerTest, ADraggedBubbleStopsAtTheEdgesAndIsFoundThereAtTheNextStart) {
  const struct {
    QPointF movement;
    QPointF expected;
  } cases[] = {
      {{-100, -50}, {1252, 697}},
      {{500, 0}, {1368, 747}},
      {{0, 500}, {1352, 803}},
      {{-5000, -5000}, {8, 8}},
  };
  drag({5, 5});
  controller.captureDragEnded();
  EXPECT_EQ(storedScreen(), std::nullopt) << "nothing is on show that could be dragged";
  for (const auto& [movement, expected] : cases) {
    defaults = MemoryDefaults();
    start(State::bubble);
    controller.dragBubble(movement, false);
    EXPECT_EQ(panel.currentFrame, QRectF(expected, QSizeF(64, 64)));
    EXPECT_EQ(storedScreen(), std::nullopt) << "the drag goes on";
    controller.dragBubble({}, true);

    FakeFloatingPanel nextPanel;
    MacFloatingPanelController next({nextPanel, screens, defaults, center, coordinator});
    next.enterFloatingMode();
    EXPECT_NEAR(nextPanel.currentFrame.x(), expected.x(), 1e-6);
    EXPECT_NEAR(nextPanel.currentFrame.y(), expected.y(), 1e-6);
  }
}

TEST_F(MacFloatingPanelControllerTest, ADragInSmallStepsFollowsThePointerOverTheSeamThoughTheWindowIsLate) {
  screens.areas = {laptop, onTheRight};
  start(State::bubble);
  const QRectF before = panel.currentFrame;
  for (int step = 0; step < 100; ++step) {
    controller.dragBubble({10, -5}, false);
    panel.currentFrame = before;
  }
  controller.dragBubble({}, true);
  EXPECT_EQ(panel.currentFrame, before.translated(1000, -500));
}

TEST_F(MacFloatingPanelControllerTest, AfterADragOfThePanelTheBubbleIsInItsLowerRightCorner) {
  start(State::expanded);
  drag({-100, -100}); // What is left of a drag of the bubble moves no panel.
  EXPECT_EQ(panel.currentFrame.topLeft(), QPointF(1036, 607));
  dragPanelTo({-200, 400});
  EXPECT_EQ(panel.currentFrame, QRectF(8, 400, 380, 260));
  controller.collapseCapture();
  EXPECT_EQ(panel.currentFrame, QRectF(324, 400, 64, 64));
  start(State::bubble);
  EXPECT_EQ(panel.currentFrame, QRectF(324, 400, 64, 64));
}

TEST_F(MacFloatingPanelControllerTest, ABubbleWhoseScreenGoesAwayMovesToAnotherAndStaysThere) {
  screens.areas = {laptop, onTheRight};
  start(State::bubble);
  drag({1000, 0});
  controller.expandCapture();
  screens.set({laptop});
  EXPECT_EQ(panel.currentFrame, QRectF(1052, 607, 380, 260));
  EXPECT_EQ(storedScreen(), 2) << "the panel's move does not count";
  controller.collapseCapture();
  screens.set({laptop});
  EXPECT_EQ(panel.currentFrame, QRectF(1368, 747, 64, 64));
  EXPECT_EQ(storedScreen(), 1);
  screens.set({laptop, onTheRight});
  EXPECT_EQ(panel.currentFrame, QRectF(1368, 747, 64, 64));
}

TEST_F(MacFloatingPanelControllerTest, WithoutAScreenThePanelIsHiddenUntilOneComesBack) {
  screens.areas = {};
  start(State::bubble);
  EXPECT_TRUE(controller.isFloatingMode() && !panel.isShown);
  screens.set({laptop});
  EXPECT_TRUE(panel.isShown);
  EXPECT_EQ(panel.currentFrame, QRectF(1352, 747, 64, 64));

  drag({-600, -300});
  screens.set({});
  drag({100, 100});
  controller.expandCapture();
  controller.captureDragEnded();
  EXPECT_FALSE(panel.isShown);
  screens.set({laptop});
  EXPECT_EQ(panel.currentFrame, QRectF(436, 447, 380, 260)) << "at the bubble's remembered place";
  EXPECT_FALSE(panel.hasKeyboard) << "a new screen is no reason to take the keyboard";
}

TEST_F(MacFloatingPanelControllerTest, NoOrderOfEventsBreaksTheRules) {
  std::mt19937 random(20261123);
  const auto number = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  const auto somewhere = [&] { return QPointF(number(-3000, 4000), number(-2000, 3000)); };
  const auto someScreens = [&] {
    std::vector<ScreenArea> some{laptop, onTheRight, onTheLeft, above, below};
    std::erase_if(some, [&](const ScreenArea&) { return number(0, 2) > 0; });
    std::ranges::shuffle(some, random);
    return some;
  };
  const std::function<void()> events[] = {
      [&] { controller.enterFloatingMode(); },
      [&] { controller.exitFloatingMode(); },
      [&] { controller.expandCapture(); },
      [&] { controller.collapseCapture(); },
      [&] { controller.toggleCapture(); },
      [&] { controller.dragBubble(somewhere() / 4, number(0, 1) == 0); },
      [&] { drag({double(number(-90, 90)), double(number(-90, 90))}); },
      [&] {
        if (controller.isExpanded())
          dragPanelTo(somewhere());
      },
      [&] { screens.set(someScreens()); },
  };
  for (int step = 0; step < 20'000; ++step) {
    events[std::size_t(number(0, int(std::size(events)) - 1))]();
    ASSERT_NO_FATAL_FAILURE(checkInvariants()) << "step " << step;
  }
}

} // namespace
} // namespace notlet
