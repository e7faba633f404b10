#include "themes/ui/ThemeSettingsView.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include "support/CustomTheme.h"
#include "support/FakeFileChooser.h"
#include "support/MemoryDefaults.h"
#include "themes/AppThemeCatalog.h"
#include "widgets/AppThemeContainer.h"
#include "widgets/Motion.h"

namespace notlet {
namespace {

class ThemeSettingsViewTest : public testing::Test {
 protected:
  ThemeSettingsViewTest() { Motion::setReduced(true); }
  ~ThemeSettingsViewTest() override { Motion::setReduced(false); }

  void show() {
    window.resize(520, 640);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }
  [[nodiscard]] VirtualListView& list() const { return view->list().view(); }
  [[nodiscard]] QString rowText(std::size_t row) const { return view->list().rows().accessibleText(row); }
  [[nodiscard]] std::size_t rowOf(const std::string& id) const {
    return view->list().rows().rowOf(id).value_or(0);
  }
  [[nodiscard]] QLineEdit* search() const { return view->findChild<QLineEdit*>(); }
  [[nodiscard]] QMenu* openOptions() const {
    for (auto* button : view->findChildren<IconButton*>()) {
      if (button->accessibleName() == QLatin1String("Theme options"))
        button->click();
    }
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
  }
  template<typename Dialog>
  [[nodiscard]] Dialog* dialog() const {
    for (auto* each : view->findChildren<Dialog*>()) {
      if (each->isVisible())
        return each;
    }
    return nullptr;
  }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
  FakeFileChooser fileChooser;
  ThemeSettingsView* view = new ThemeSettingsView({settings, fileChooser, "en"});
  AppThemeContainer window{settings, view};
};

TEST_F(ThemeSettingsViewTest, ThemesStandBelowTheirCategories) {
  settings.saveCustomTheme(customTheme("custom-A", "Two\nlines"));
  EXPECT_EQ(view->list().rows().count(), 62U + 8U + 1U);
  EXPECT_EQ(rowText(0), QStringLiteral("Notlet"));
  EXPECT_EQ(rowText(2), QStringLiteral("Monochrome"));
  EXPECT_EQ(rowText(4), QStringLiteral("Paper, Light"));
  EXPECT_EQ(rowText(70), QStringLiteral("Two lines, Dark, Selected"));
}

TEST_F(ThemeSettingsViewTest, TheThemeInForceIsInSightAtFirst) {
  settings.setSelectedThemeID("synthwave");
  show();
  EXPECT_TRUE(QTest::qWaitFor([this] { return list().rowRect(rowOf("synthwave")).has_value(); }));
  EXPECT_FALSE(view->browser().state().activeThemeID) << "it is shown, not walked to";
}

TEST_F(ThemeSettingsViewTest, TheThemeInForceIsWhollyInSightAtFirst) {
  show();
  const auto cut = list().visibleRows().back();
  const int height = list().viewport()->height();
  window.resize(window.width(), window.height() + cut.rect.top() + cut.rect.height() / 2 - height);
  settings.setSelectedThemeID(view->list().rows().themeAt(cut.row)->id);
  auto* other = new ThemeSettingsView({settings, fileChooser, "en"});
  AppThemeContainer otherWindow(settings, other);
  otherWindow.resize(window.size());
  otherWindow.show();
  const VirtualListView& shown = other->list().view();
  EXPECT_TRUE(QTest::qWaitFor([&] {
    const auto rect = shown.rowRect(cut.row);
    return rect && shown.viewport()->rect().contains(*rect);
  }));
}

// The keys would go nowhere.
TEST_F(ThemeSettingsViewTest, AKeyboardThatIsTakenFromTheFieldGoesToTheList) {
  show();
  press(Qt::Key_Down);
  search()->setFocus();
  search()->clearFocus();
  EXPECT_TRUE(QTest::qWaitFor([this] { return list().hasFocus(); }));
  EXPECT_FALSE(view->browser().state().activeThemeID);
}

TEST_F(ThemeSettingsViewTest, KeysReachTheRulesFromListAndField) {
  show();
  EXPECT_TRUE(list().hasFocus()) << "the screen takes the keyboard when it appears";
  press(Qt::Key_Slash);
  EXPECT_TRUE(search()->hasFocus());
  QTest::keyClicks(search(), QStringLiteral("dark"));
  QTest::keyClick(search(), '/');
  EXPECT_EQ(search()->text(), QStringLiteral("dark/"));
  press(Qt::Key_Backspace);
  press(Qt::Key_Return);
  EXPECT_EQ(settings.selectedThemeID(), "midnight-mono");
  press(Qt::Key_Down);
  EXPECT_TRUE(list().hasFocus());
  EXPECT_EQ(list().currentRow(), rowOf("solarized-dark"));
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(settings.selectedThemeID(), "gruvbox-dark");
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  EXPECT_TRUE(search()->hasFocus());
  press(Qt::Key_Escape);
  EXPECT_FALSE(search()->hasFocus());
}

TEST_F(ThemeSettingsViewTest, ArrowsWalkFromTheOptionsButtonToo) {
  show();
  press(Qt::Key_Down);
  for (auto* button : view->findChildren<IconButton*>()) {
    if (button->accessibleName() == QLatin1String("Theme options"))
      button->setFocus();
  }
  press(Qt::Key_Down);
  EXPECT_EQ(list().currentRow(), rowOf("ink"));
}

TEST_F(ThemeSettingsViewTest, TheActiveRowComesToTheMiddle) {
  show();
  view->browser().select("synthwave");
  const auto rect = list().rowRect(rowOf("synthwave"));
  ASSERT_TRUE(rect);
  EXPECT_NEAR(rect->center().y(), list().viewport()->height() / 2.0, 2);
}

TEST_F(ThemeSettingsViewTest, AClickAppliesAThemeAndAHeadingDoesNothing) {
  show();
  const auto click = [&](std::size_t row) {
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().rowRect(row)->center());
  };
  click(0);
  EXPECT_EQ(settings.selectedThemeID(), "midnight-mono");
  click(rowOf("ink"));
  EXPECT_EQ(settings.selectedThemeID(), "ink");
}

TEST_F(ThemeSettingsViewTest, AThemeThatGoesLeavesTheListWhereItIs) {
  std::vector<AppTheme> many;
  for (int number = 0; number < 1000; ++number)
    many.push_back(customTheme("custom-" + std::to_string(number)));
  settings.importCustomThemes(many);
  show();
  view->browser().select("custom-500");
  const auto before = list().rowRect(rowOf("custom-500"));
  view->browser().deleteTheme(customTheme("custom-900"));
  EXPECT_EQ(list().rowRect(rowOf("custom-500")), before);
  view->browser().setSearchText("mine");
  EXPECT_EQ(list().offset(), 0);
}

TEST_F(ThemeSettingsViewTest, KeysOpenTheMenuOfTheUsersOwnThemesOnly) {
  settings.saveCustomTheme(customTheme("custom-A"));
  show();
  view->browser().select("nord");
  QTest::keyClick(&list(), Qt::Key_Menu);
  EXPECT_EQ(view->list().menu(), nullptr);
  view->browser().select("custom-A");
  for (const auto& [key, modifier] :
       {std::pair{Qt::Key_Menu, Qt::NoModifier}, {Qt::Key_F10, Qt::ShiftModifier}}) {
    QTest::keyClick(&list(), key, modifier);
    QMenu* menu = view->list().menu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Edit"));
    EXPECT_EQ(menu->actions()[1]->text(), QStringLiteral("Delete"));
    menu->close();
    QTest::qWait(0);
  }
  QTest::keyClick(&list(), Qt::Key_Menu);
  view->list().menu()->actions()[1]->trigger();
  EXPECT_EQ(settings.selectedThemeID(), "system");
  EXPECT_TRUE(settings.customThemes().empty());
}

TEST_F(ThemeSettingsViewTest, TheRightButtonOpensTheMenuOfTheRowBelowIt) {
  settings.saveCustomTheme(customTheme("custom-A"));
  show();
  view->browser().setSearchText("mine");
  const QPoint place = list().rowRect(1)->center();
  QContextMenuEvent event(QContextMenuEvent::Mouse, place, list().viewport()->mapToGlobal(place));
  QApplication::sendEvent(list().viewport(), &event);
  ASSERT_NE(view->list().menu(), nullptr);
  view->list().menu()->actions()[0]->trigger();
  ASSERT_NE(dialog<CustomThemeEditor>(), nullptr);
  EXPECT_EQ(dialog<CustomThemeEditor>()->draft().state().theme, customTheme("custom-A"));
}

TEST_F(ThemeSettingsViewTest, OptionsMakeImportAndExport) {
  show();
  QMenu* menu = openOptions();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("New Custom Theme"));
  EXPECT_FALSE(menu->actions()[2]->isEnabled()) << "there is nothing to export";
  menu->actions()[1]->trigger();
  menu->close();
  ASSERT_TRUE(fileChooser.toOpen);
  settings.saveCustomTheme(customTheme("custom-A"));
  menu = openOptions();
  EXPECT_TRUE(menu->actions()[2]->isEnabled());
  menu->actions()[2]->trigger();
  menu->close();
  EXPECT_TRUE(fileChooser.toSave);
}

TEST_F(ThemeSettingsViewTest, FailuresAreShownOnceAndCanBeDismissed) {
  show();
  view->browser().importThemes();
  fileChooser.toOpen(failure("Theme 2 in the file lacks \"id\"."));
  ASSERT_NE(dialog<Alert>(), nullptr);
  EXPECT_EQ(dialog<Alert>()->accessibleName(), QStringLiteral("Unable to import themes"));
  EXPECT_EQ(dialog<Alert>()->accessibleDescription(), QStringLiteral("Theme 2 in the file lacks \"id\"."));
  view->browser().setSearchText("x");
  EXPECT_EQ(view->findChildren<Alert*>().size(), 1);
  dialog<Alert>()->accept();
  EXPECT_FALSE(view->browser().state().importError);
  EXPECT_EQ(dialog<Alert>(), nullptr);
}

TEST_F(ThemeSettingsViewTest, TheEditorSavesOrCancels) {
  show();
  view->browser().beginNewTheme();
  ASSERT_NE(dialog<CustomThemeEditor>(), nullptr);
  dialog<CustomThemeEditor>()->reject();
  EXPECT_FALSE(view->browser().state().editingTheme);
  EXPECT_TRUE(settings.customThemes().empty());

  view->browser().beginNewTheme();
  auto* editor = dialog<CustomThemeEditor>();
  ASSERT_NE(editor, nullptr);
  auto* name = qobject_cast<QLineEdit*>(editor->focusWidget());
  ASSERT_NE(name, nullptr);
  name->setText(QStringLiteral("  Night  "));
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_EQ(settings.theme().name, "Night");
  EXPECT_FALSE(view->browser().state().editingTheme);
  EXPECT_EQ(dialog<CustomThemeEditor>(), nullptr);
}

TEST_F(ThemeSettingsViewTest, AnEmptyListSaysSo) {
  show();
  view->browser().setSearchText("no such theme");
  EXPECT_FALSE(view->list().isVisible());
  EXPECT_EQ(QApplication::focusWidget(), view) << "the keys of the screen go on";
  press(Qt::Key_Slash);
  EXPECT_TRUE(search()->hasFocus());
  search()->clearFocus(); // As Escape does.
  EXPECT_TRUE(QTest::qWaitFor([this] { return view->hasFocus(); }));
  view->browser().setSearchText("");
  EXPECT_TRUE(view->list().isVisible());
  EXPECT_TRUE(list().hasFocus());
}

} // namespace
} // namespace notlet
