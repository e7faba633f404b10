#include "platform/linux/QtScreens.h"

#include <gmock/gmock.h>

#include <set>

namespace notlet {

namespace {

using testing::Each;
using testing::Gt;

MonitorName monitor(const char* serialNumber, const char* connector) {
  return {QStringLiteral("Dell"), QStringLiteral("U2720Q"), QString::fromUtf8(serialNumber),
          QString::fromUtf8(connector)};
}

std::int64_t numberOf(const MonitorName& name) {
  return displayIDs({&name, 1}).front();
}

} // namespace

// They are stored: a later version of the program must find the same ones.
TEST(DisplayIDs, StayTheSame) {
  EXPECT_EQ(numberOf(monitor("CN-1", "DP-1")), 87689693731992);
  EXPECT_EQ(numberOf({}), 225792054739483);
}

TEST(DisplayIDs, FollowTheMonitorWhenItHasASerialNumberElseTheConnector) {
  EXPECT_EQ(numberOf(monitor("CN-1", "DP-1")), numberOf(monitor("CN-1", "HDMI-2")));
  EXPECT_NE(numberOf(monitor("", "DP-1")), numberOf(monitor("", "HDMI-2")));
  EXPECT_NE(numberOf(monitor("CN-1", "DP-1")), numberOf(monitor("CN-2", "DP-1")));
  EXPECT_NE(numberOf(monitor("", "DP-1")), numberOf({{}, {}, {}, QStringLiteral("DP-1")}));
}

// Cheap monitors share one serial number, and a mirrored desktop may name nothing at all.
TEST(DisplayIDs, DifferForMonitorsThatNameThemselvesAlike) {
  const std::vector<MonitorName> monitors{
      monitor("1", "DP-1"), monitor("1", "DP-2"), monitor("1", "DP-2"), {}, {}, {}};
  const auto numbers = displayIDs(monitors);
  EXPECT_EQ(std::set(numbers.begin(), numbers.end()).size(), monitors.size());
  EXPECT_THAT(numbers, Each(Gt(0)));
  EXPECT_EQ(numbers.front(), numberOf(monitors.front()));
}

TEST(UpwardCoordinates, TurnAtTheLowerLeftCornerOfTheMainScreen) {
  struct Case {
    QPoint origin;
    QRect qt;
    QRectF upward;
  };
  const Case cases[] = {
      // The main screen itself, and the bubble near its upper right corner.
      {{0, 900}, {0, 0, 1440, 900}, {0, 0, 1440, 900}},
      {{0, 900}, {1352, 64, 64, 64}, {1352, 772, 64, 64}},
      // Screens left of, right of, above and below the main one.
      {{1280, 1124}, {0, 0, 1280, 1024}, {-1280, 100, 1280, 1024}},
      {{0, 900}, {1440, -200, 1920, 1080}, {1440, 20, 1920, 1080}},
      {{0, 900}, {0, -1080, 1920, 1080}, {0, 900, 1920, 1080}},
      {{0, 900}, {0, 900, 1920, 1080}, {0, -1080, 1920, 1080}},
      // No screen.
      {{0, 0}, {10, 20, 380, 260}, {10, -280, 380, 260}},
  };
  for (const auto& [origin, qt, upward] : cases) {
    const UpwardCoordinates coordinates(origin);
    EXPECT_EQ(coordinates.fromQt(qt), upward);
    EXPECT_EQ(coordinates.toQt(upward), qt);
  }
}

// A panel that is placed at half pixels must not grow or shrink.
TEST(UpwardCoordinates, KeepWholeSizesAtPlacesBetweenPixels) {
  const UpwardCoordinates coordinates(QPoint(0, 875));
  for (const double part : {0.0, 0.125, 0.25, 0.5, 0.625, 0.875})
    EXPECT_EQ(coordinates.toQt({1352 + part, 747 + part, 64, 64}).size(), QSize(64, 64));
}

} // namespace notlet
