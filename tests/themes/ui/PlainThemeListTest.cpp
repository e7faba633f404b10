#include "themes/ui/PlainThemeList.h"

#include <gtest/gtest.h>

#include <QTest>

#include "support/MemoryDefaults.h"
#include "themes/AppThemeCatalog.h"

namespace notlet {

TEST(PlainThemeList, ListsAllThemesAndAppliesTheOneThatIsChosen) {
  MemoryDefaults defaults;
  AppSettings settings(defaults);
  AppTheme own = AppThemeCatalog::themeWithID("paper");
  own.id = "custom-A";
  own.name = "My own";
  settings.importCustomThemes({own});
  PlainThemeList list(settings);
  list.resize(400, 400);
  list.show();
  ASSERT_EQ(list.count(), static_cast<int>(AppThemeCatalog::themes().size()) + 1);
  ASSERT_NE(list.currentItem(), nullptr);
  EXPECT_EQ(list.currentItem()->text(), QStringLiteral("Midnight Mono"));

  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(settings.selectedThemeID(), "midnight-mono") << "walking applies nothing";
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_EQ(settings.selectedThemeID(), "snow");

  QListWidgetItem* last = list.item(list.count() - 1);
  list.scrollToItem(last);
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(last).center());
  EXPECT_EQ(settings.theme().name, "My own");
}

} // namespace notlet
