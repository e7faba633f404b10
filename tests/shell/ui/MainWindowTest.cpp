#include "shell/ui/MainWindow.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QScreen>

#include "shell/ui/WindowFrames.h"
#include "support/FakeWindowSystem.h"
#include "support/MemoryDefaults.h"

namespace notlet {

// The screen of the tests is narrower than the window wants to be, as a laptop's at twice the scale.
TEST(MainWindowTest, FitsOnASmallScreen) {
  MemoryDefaults defaults;
  AppSettings settings{defaults};
  MainWindow window(settings, new QWidget);
  const QRect screen = window.screen()->availableGeometry();
  ASSERT_LT(screen.width(), 840);
  EXPECT_LT(window.width(), screen.width());
  EXPECT_EQ(window.height(), 600);
  // The place of a screen that is gone.
  window.show();
  window.move(3000, 100);
  window.keepWithinReach();
  EXPECT_TRUE(screen.contains(window.geometry()));
}

TEST(MainWindowTest, ItsFrameAndThoseOfItsDialogsAreInTheTonesOfTheTheme) {
  MemoryDefaults defaults;
  AppSettings settings{defaults};
  AppTheme ofSystem = settings.theme();
  ofSystem.id = "custom-1";
  ofSystem.followsSystem = true;
  settings.saveCustomTheme(ofSystem);
  FakeWindowSystem windowSystem;
  const WindowFrames frames(settings, windowSystem);
  MainWindow window(settings, new QWidget);
  QDialog dialog(&window);
  QWidget popup(&window, Qt::Popup);
  for (const auto& [theme, tone] : {std::pair("dracula", FrameTone::dark),
                                    {"paper", FrameTone::light},
                                    {"custom-1", FrameTone::desktop}}) {
    settings.setSelectedThemeID(theme);
    for (QWidget* shown : {static_cast<QWidget*>(&window), static_cast<QWidget*>(&dialog), &popup})
      shown->show();
    const std::map<WindowID, FrameTone> expected = {{window.winId(), tone}, {dialog.winId(), tone}};
    EXPECT_EQ(windowSystem.frameTones, expected) << theme;
  }
}

} // namespace notlet
