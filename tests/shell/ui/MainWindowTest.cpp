#include "shell/ui/MainWindow.h"

#include <gtest/gtest.h>

#include <QScreen>

#include "support/MemoryDefaults.h"

namespace notlet {

// The screen of the tests is narrower than the window wants to be, as a laptop's at twice the scale.
TEST(MainWindowTest, FitsOnASmallScreen) {
  MemoryDefaults defaults;
  AppSettings settings{defaults};
  const MainWindow window(settings, new QWidget);
  const QSize screen = window.screen()->availableSize();
  ASSERT_LT(screen.width(), 840);
  EXPECT_LT(window.width(), screen.width());
  EXPECT_EQ(window.height(), 600);
}

} // namespace notlet
