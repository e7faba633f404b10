#include "shell/BubblePosition.h"

#include <gtest/gtest.h>

#include <limits>

#include "shell/ExampleScreens.h"
#include "support/MemoryDefaults.h"

namespace notlet {
namespace {

constexpr const char* displayKey = "macFloatingBubbleDisplayID";
constexpr const char* xKey = "macFloatingBubbleNormalizedX";
constexpr const char* yKey = "macFloatingBubbleNormalizedY";

TEST(BubblePositionTest, WhateverIsStoredGivesAPlace) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  const QPointF usualPlace(1384, 779);
  const QPointF usualPlaceOnTheRight(3304, 1084);
  const struct {
    const char* what;
    std::optional<std::int64_t> displayID;
    std::optional<double> x;
    std::optional<double> y;
    QPointF expected;
  } cases[] = {
      {"nothing", {}, {}, {}, usualPlace},
      {"a whole position", 2, 0.5, 0.25, {2400, 370}},
      {"half a position", 2, 0.5, {}, usualPlaceOnTheRight},
      {"the other half", {}, {}, 0.5, usualPlace},
      {"a screen that is gone", 99, 0.25, 0.5, {360, 437.5}},
      {"beyond the edges", 1, -0.5, 7.0, {0, 875}},
      {"endless", 1, infinity, -infinity, {1440, 0}},
      {"no number", 1, notANumber, 0.5, usualPlace},
      {"no other number", 1, 0.5, notANumber, usualPlace},
  };
  for (const auto& [what, displayID, x, y, expected] : cases) {
    MemoryDefaults defaults;
    ASSERT_TRUE(!displayID || defaults.setInteger(displayKey, *displayID));
    ASSERT_TRUE(!x || defaults.setNumber(xKey, *x));
    ASSERT_TRUE(!y || defaults.setNumber(yKey, *y));
    const BubblePosition position(defaults);
    EXPECT_EQ(position.restoredBubbleCenter({{laptop, onTheRight}, laptop}), expected) << what;
    EXPECT_EQ(position.restoredBubbleCenter({{}, std::nullopt}), std::nullopt) << what;
  }
}

TEST(BubblePositionTest, APlaceComesBackOnItsScreenAlsoWhenThatHasAnotherSizeNow) {
  MemoryDefaults defaults;
  BubblePosition position(defaults);
  position.persistBubblePosition({2400, 640}, onTheRight);
  position.persistBubblePosition({0, 0}, {1, {0, 0, 1440, 900}, {0, 0, 1440, 0}}); // has no visible area
  EXPECT_EQ(position.restoredBubbleCenter({{laptop, onTheRight}, laptop}), QPointF(2400, 640));
  const ScreenArea larger{2, {0, 0, 3840, 2160}, {0, 0, 3840, 2000}};
  EXPECT_EQ(position.restoredBubbleCenter({{laptop, larger}, laptop}), QPointF(1920, 1000));
}

} // namespace
} // namespace notlet
