#include "shell/FloatingGeometry.h"

#include <gtest/gtest.h>

#include "shell/ExampleScreens.h"

namespace notlet {
namespace {

TEST(FloatingGeometryTest, FramesStandInTheScreenThatTheyWouldMostlyLieOn) {
  using Areas = std::vector<ScreenArea>;
  const struct {
    const char* what;
    Areas screens;
    QPointF corner;
    QPointF expected;
    QSizeF size{64, 64};
  } cases[] = {
      {"inside", {laptop}, {1352, 747}, {1352, 747}},
      {"lower left corner", {laptop}, {0, 0}, {8, 8}},
      {"beyond the upper right corner", {laptop}, {1500, 900}, {1368, 803}},
      {"on no screen", {laptop, onTheRight}, {-500, 300}, {8, 300}},
      {"too large", {laptop}, {0, 0}, {-568, -133}, {2000, 1000}},
      {"mostly on the right", {laptop, onTheRight}, {1420, 500}, {1448, 500}},
      {"halves on both", {laptop, onTheRight}, {1408, 500}, {1368, 500}},
      {"halves, other order", {onTheRight, laptop}, {1408, 500}, {1448, 500}},
      {"beside the laptop's upper edge", {laptop, onTheLeft}, {-30, 990}, {-72, 952}},
      {"mostly above", {laptop, above}, {700, 880}, {700, 908}},
      {"mostly on the laptop's bar", {laptop, above}, {700, 866}, {700, 803}},
      {"below, on the panel", {laptop, below}, {205, -760}, {208, -720}},
      {"no screen at all", {}, {-10, 5000}, {-10, 5000}},
  };
  for (const auto& row : cases) {
    const FloatingGeometry geometry(row.screens, std::nullopt);
    EXPECT_EQ(geometry.clamped({row.corner, row.size}), QRectF(row.expected, row.size)) << row.what;
  }
}

TEST(FloatingGeometryTest, ThePanelGrowsToTheLeftAndUpFromTheBubble) {
  const struct {
    const char* what;
    std::vector<ScreenArea> screens;
    QPointF center;
    QPointF expected;
  } cases[] = {
      {"below the upper edge", {laptop}, {1384, 779}, {1036, 607}},
      {"at the left edge", {laptop}, {100, 100}, {8, 68}},
      {"with room around", {laptop}, {700, 300}, {352, 268}},
      {"reaches mostly into the left screen", {laptop, onTheRight}, {1480, 500}, {1052, 468}},
      {"mostly on the lower screen", {laptop, below}, {700, -100}, {352, -268}},
      {"on a screen smaller than itself", {tiny}, {100, 100}, {-28, -28}},
  };
  for (const auto& [what, screens, center, expected] : cases)
    EXPECT_EQ(FloatingGeometry(screens, std::nullopt).captureFrameAnchoredAt(center),
              QRectF(expected, QSizeF(380, 260)))
        << what;
}

TEST(FloatingGeometryTest, AScreenIsFoundByItsNumberOrElseTheMainOneIs) {
  const FloatingGeometry geometry({laptop, onTheRight, below}, onTheRight);
  EXPECT_EQ(geometry.screenNumbered(5), below);
  EXPECT_EQ(geometry.screenNumbered(99), onTheRight);
  EXPECT_EQ(FloatingGeometry({laptop, below}, std::nullopt).screenNumbered(99), laptop);
  EXPECT_EQ(FloatingGeometry({}, below).screenContaining({0, 0, 64, 64}), below);
}

} // namespace
} // namespace notlet
