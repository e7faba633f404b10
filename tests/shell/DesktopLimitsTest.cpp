#include "shell/DesktopLimits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemoryDefaults.h"

namespace notlet {
namespace {

TEST(DesktopLimitsTest, AreToldUntilTheUserHasReadThem) {
  const DesktopCapabilities wayland;
  MemoryDefaults defaults;
  for (int start = 0; start < 2; ++start)
    EXPECT_THAT(DesktopLimits(defaults).notice(wayland), testing::HasSubstr("covered by other windows"));
  DesktopLimits(defaults).noteRead();
  EXPECT_EQ(DesktopLimits(defaults).notice(wayland), "");
}

TEST(DesktopLimitsTest, AreNoneWhereWindowsArePlaced) {
  MemoryDefaults defaults;
  // Even before a window manager has told what it can do.
  EXPECT_EQ(DesktopLimits(defaults).notice({.placesWindows = true}), "");
}

} // namespace
} // namespace notlet
