#include "shell/PopoverPlacement.h"

#include <gtest/gtest.h>

#include <vector>

namespace notlet {
namespace {

constexpr QSize popover{380, 260};
// A bar of 24 pixels at the top, or a panel of 32 at the bottom; and a bare screen on the right.
constexpr PopoverScreen barAtTop{{0, 0, 1280, 800}, {0, 24, 1280, 776}};
constexpr PopoverScreen panelAtBottom{{0, 0, 1280, 800}, {0, 0, 1280, 768}};
constexpr PopoverScreen onTheRight{{1280, -200, 1920, 1080}, {1280, -200, 1920, 1080}};
constexpr QPoint middle{640, 400};

TEST(PopoverPlacementTest, ThePopoverStandsAtItsAnchorInsideOneScreen) {
  using Screens = std::vector<PopoverScreen>;
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

} // namespace
} // namespace notlet
