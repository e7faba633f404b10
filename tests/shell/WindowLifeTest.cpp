#include "shell/WindowLife.h"

#include <gtest/gtest.h>

#include "support/MemoryDefaults.h"

namespace notlet {
namespace {

TEST(WindowLifeTest, TheUserIsToldOnceAndOnlyOfWaysThatWork) {
  MemoryDefaults defaults;
  ASSERT_TRUE(WindowLife(defaults).mustExplain());
  WindowLife(defaults).noteExplained();
  EXPECT_FALSE(WindowLife(defaults).mustExplain());
  EXPECT_EQ(WindowLife::explanation({.hotKey = true}),
            "Notlet keeps running when its window is closed. To write a notlet, press Control+Super+J. "
            "To end it, start Notlet again and press Control+Q in its window.");
  EXPECT_EQ(WindowLife::explanation({.statusItem = true, .bubble = true, .hotKey = true}),
            "Notlet keeps running when its window is closed. To write a notlet, press Control+Super+J, click "
            "its icon in the panel or "
            "click the bubble. To end it, choose “Quit Notlet” in the icon’s menu.");
}

} // namespace
} // namespace notlet
