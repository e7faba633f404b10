#include "shell/WindowPlacement.h"

#include <gtest/gtest.h>

#include <vector>

namespace notlet {
namespace {

constexpr QSize popover{380, 260};
// A bar of 24 pixels at the top, or a panel of 32 at the bottom; and a bare screen on the right.
constexpr PlacementScreen barAtTop{{0, 0, 1280, 800}, {0, 24, 1280, 776}};
constexpr PlacementScreen panelAtBottom{{0, 0, 1280, 800}, {0, 0, 1280, 768}};
constexpr PlacementScreen onTheRight{{1280, -200, 1920, 1080}, {1280, -200, 1920, 1080}};
constexpr QPoint middle{640, 400};

TEST(WindowPlacementTest, ThePopoverStandsAtItsAnchorInsideOneScreen) {
  using Screens = std::vector<PlacementScreen>;
  const struct {
    const char* what;
    PopoverAnchor anchor;
    Screens screens;
    QPoint expected;
  } cases[] = {
      {"under the icon, off the bar", {QRect(600, 2, 20, 20), middle}, {barAtTop}, {420, 32}},
      {"six pixels under an icon with room", {QRect(600, 100, 20, 20), middle}, {barAtTop}, {420, 126}},
      {"icon at the right end", {QRect(1256, 2, 20, 20), middle}, {barAtTop}, {892, 32}},
      {"icon at the left end", {QRect(2, 2, 20, 20), middle}, {barAtTop}, {8, 32}},
      {"icon in a panel at the bottom", {QRect(1000, 774, 20, 20), middle}, {panelAtBottom}, {820, 500}},
      {"six pixels above an icon without room below",
       {QRect(600, 700, 20, 20), middle},
       {barAtTop},
       {420, 434}},
      {"just enough room below", {QRect(600, 506, 20, 20), middle}, {barAtTop}, {420, 532}},
      {"one pixel too little", {QRect(600, 507, 20, 20), middle}, {barAtTop}, {420, 241}},
      {"the icon's screen, not the pointer's",
       {QRect(3100, -198, 20, 20), middle},
       {barAtTop, onTheRight},
       {2812, -172}},
      {"icon on no screen", {QRect(-900, 300, 20, 20), middle}, {barAtTop, onTheRight}, {8, 326}},
      {"an icon without size tells nothing", {QRect(5, 5, 0, 0), middle}, {barAtTop}, {892, 32}},
      {"at the pointer in the bar", {{}, QPoint(900, 12), true}, {barAtTop}, {710, 32}},
      {"at the pointer in the panel", {{}, QPoint(900, 790), true}, {panelAtBottom}, {710, 500}},
      {"in the corner of the pointer's screen",
       {{}, QPoint(1300, 500)},
       {barAtTop, onTheRight},
       {2812, -192}},
      {"in the corner below the bar", {{}, middle}, {barAtTop, onTheRight}, {892, 32}},
      {"on a screen that is too small", {{}, {5, 5}}, {{{0, 0, 300, 200}, {0, 0, 300, 200}}}, {8, 8}},
      {"under the icon without a screen", {QRect(600, 2, 20, 20), middle}, {}, {420, 28}},
      {"at the pointer without a screen", {{}, middle}, {}, {640, 400}},
  };
  for (const auto& [what, anchor, screens, expected] : cases)
    EXPECT_EQ(popoverFrame(popover, anchor, screens), QRect(expected, popover)) << what;
}

TEST(WindowPlacementTest, AWindowComesBackWhereItCanBeTakenHoldOf) {
  const std::vector<PlacementScreen> screens = {barAtTop, {{1280, 0, 400, 300}, {1280, 0, 400, 300}}};
  const struct {
    const char* what;
    QRect frame;
    QRect expected;
  } cases[] = {
      {"where it was", {100, 100, 840, 600}, {100, 100, 840, 600}},
      {"over two screens and the lower edge", {1000, 284, 840, 600}, {1000, 284, 840, 600}},
      {"on a monitor that is gone", {2000, 100, 300, 200}, {1380, 100, 300, 200}},
      {"larger than the screen that is left", {2000, 100, 840, 600}, {1280, 0, 400, 300}},
      {"below all screens", {100, 900, 840, 600}, {100, 200, 840, 600}},
      {"with its upper edge behind the bar", {100, 20, 840, 600}, {100, 24, 840, 600}},
      {"with a corner too small to hold", {-745, 100, 840, 600}, {0, 100, 840, 600}},
  };
  for (const auto& [what, frame, expected] : cases)
    EXPECT_EQ(frameWithinReach(frame, screens), expected) << what;
  EXPECT_EQ(frameWithinReach({2000, 100, 840, 600}, {}), QRect(2000, 100, 840, 600));
}

} // namespace
} // namespace notlet
