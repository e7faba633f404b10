#include "widgets/AppThemeContainer.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QTextEdit>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "support/MemoryDefaults.h"
#include "themes/AppThemeCatalog.h"
#include "widgets/ThemePalette.h"

namespace notlet {
namespace {

class AppThemeContainerTest : public testing::Test {
 protected:
  static QColor cornerPixel(QWidget& widget) { return widget.grab().toImage().pixelColor(0, 0); }
  static QColor background(std::string_view id) {
    return colorFromHex(AppThemeCatalog::themeWithID(id).backgroundHex);
  }
  static QColor primary(std::string_view id) {
    return colorFromHex(AppThemeCatalog::themeWithID(id).primaryHex);
  }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
};

TEST_F(AppThemeContainerTest, EveryWindowShowsANewThemeAtOnce) {
  auto* label = new QLabel;
  AppThemeContainer first(settings, label);
  AppThemeContainer second(settings, new QTextEdit);
  first.resize(50, 50);
  second.resize(50, 50);
  for (const char* id : {"paper", "dracula", "cyberpunk"}) {
    SCOPED_TRACE(id);
    settings.setSelectedThemeID(id);
    EXPECT_EQ(cornerPixel(first), background(id));
    EXPECT_EQ(second.palette().color(ThemeRole::background), background(id));
    EXPECT_EQ(label->palette().color(QPalette::WindowText), primary(id));
    EXPECT_EQ(AppThemeContainer::themeOf(label).id, id);
  }
}

TEST_F(AppThemeContainerTest, AnEditedCustomThemeIsShownAtOnce) {
  AppThemeContainer container(settings, new QLabel);
  AppTheme theme = AppThemeCatalog::themeWithID("nord");
  theme.id = "custom-A";
  settings.saveCustomTheme(theme);
  theme.backgroundHex = "123456";
  settings.saveCustomTheme(theme);
  EXPECT_EQ(cornerPixel(container), QColor(0x12, 0x34, 0x56));
  settings.deleteCustomTheme(theme);
  EXPECT_EQ(cornerPixel(container), QColor(Qt::black));
}

TEST_F(AppThemeContainerTest, WindowsOfAWidgetInsideTakeTheTheme) {
  auto* edit = new QTextEdit;
  AppThemeContainer container(settings, edit);
  container.show();
  QDialog dialog(edit);
  auto* inDialog = new QLabel(&dialog);
  QMenu menu(inDialog);
  dialog.show();
  menu.ensurePolished();
  for (const char* id : {"paper", "dracula"}) {
    settings.setSelectedThemeID(id);
    EXPECT_EQ(dialog.palette().color(ThemeRole::background), background(id));
    EXPECT_EQ(inDialog->palette().color(QPalette::WindowText), primary(id));
    EXPECT_EQ(menu.palette().color(ThemeRole::background), background(id));
  }
}

TEST_F(AppThemeContainerTest, OtherWindowsKeepTheDesktopsColours) {
  AppThemeContainer container(settings, new QLabel);
  QDialog stranger;
  stranger.show();
  EXPECT_EQ(stranger.palette().color(QPalette::Window), QApplication::palette().color(QPalette::Window));
}

TEST_F(AppThemeContainerTest, AThemeThatFollowsTheSystemFollowsItsChanges) {
  AppTheme theme = AppThemeCatalog::themeWithID("nord");
  theme.id = "custom-A";
  theme.followsSystem = true;
  settings.saveCustomTheme(theme);
  QWidget window;
  AppThemeContainer container(settings, new QLabel, &window);
  window.show();
  const QPalette before = QApplication::palette();
  QPalette other = before;
  other.setColor(QPalette::Window, QColor(1, 2, 3));
  QApplication::setPalette(other);
  QCoreApplication::sendPostedEvents();
  EXPECT_EQ(container.palette().color(ThemeRole::background), QColor(1, 2, 3));
  QApplication::setPalette(before);
}

TEST_F(AppThemeContainerTest, OutsideAnyContainerTheThemeIsSystem) {
  const QWidget lonely;
  EXPECT_EQ(AppThemeContainer::themeOf(&lonely).id, "system");
  EXPECT_EQ(AppThemeContainer::themeOf(nullptr).id, "system");
}

} // namespace
} // namespace notlet
