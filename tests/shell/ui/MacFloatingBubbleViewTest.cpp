#include "shell/ui/MacFloatingBubbleView.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QTest>
#include <vector>

#include "support/MemoryDefaults.h"
#include "themes/AppThemeCatalog.h"
#include "widgets/AppThemeContainer.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

struct Movement {
  QPointF by;
  bool hasEnded;

  bool operator==(const Movement&) const = default;
};

class MacFloatingBubbleViewTest : public testing::Test {
 protected:
  MacFloatingBubbleViewTest() {
    container.resize(64, 64);
    container.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&container));
  }

  [[nodiscard]] QColor pixel(int x, int y) { return container.grab().toImage().pixelColor(x, y); }

  int expansions = 0;
  std::vector<Movement> movements;
  MemoryDefaults defaults;
  AppSettings settings{defaults};
  MacFloatingBubbleView* bubble = new MacFloatingBubbleView(
      MacFloatingBubbleView::Mover::program, [this] { ++expansions; },
      [this](QPointF by, bool hasEnded) { movements.push_back({by, hasEnded}); });
  AppThemeContainer container{settings, bubble};
};

} // namespace

TEST_F(MacFloatingBubbleViewTest, APressWithoutMovementExpands) {
  QTest::mousePress(bubble, Qt::LeftButton, {}, {20, 20});
  EXPECT_EQ(expansions, 0);
  QTest::mouseRelease(bubble, Qt::LeftButton, {}, {20, 20});
  EXPECT_EQ(expansions, 1);
  EXPECT_TRUE(movements.empty());
}

TEST_F(MacFloatingBubbleViewTest, AnyMovementMakesADragWithUpwardY) {
  QTest::mousePress(bubble, Qt::LeftButton, {}, {20, 20});
  QTest::mouseMove(bubble, {21, 20});
  QTest::mouseMove(bubble, {25, 14});
  QTest::mouseRelease(bubble, Qt::LeftButton, {}, {25, 14});
  EXPECT_EQ(expansions, 0);
  const std::vector<Movement> expected = {{{1, 0}, false}, {{4, 6}, false}, {{0, 0}, true}};
  EXPECT_EQ(movements, expected);
}

// A gesture that the window system has taken over ends neither as a click nor with a place to keep.
TEST_F(MacFloatingBubbleViewTest, LeavesTheDragToTheWindowSystem) {
  auto* moved = new MacFloatingBubbleView(
      MacFloatingBubbleView::Mover::windowSystem, [this] { ++expansions; },
      [this](QPointF by, bool hasEnded) { movements.push_back({by, hasEnded}); });
  AppThemeContainer window(settings, moved);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  QTest::mousePress(moved, Qt::LeftButton, {}, {20, 20});
  QTest::mouseMove(moved, {25, 14});
  QTest::mouseMove(moved, {30, 14});
  QTest::mouseRelease(moved, Qt::LeftButton, {}, {30, 14});
  EXPECT_EQ(expansions, 0);
  EXPECT_TRUE(movements.empty());
  QTest::mouseClick(moved, Qt::LeftButton);
  EXPECT_EQ(expansions, 1);
}

TEST_F(MacFloatingBubbleViewTest, OtherButtonsAndAHiddenBubbleDoNothing) {
  QTest::mouseClick(bubble, Qt::RightButton);
  QTest::mousePress(bubble, Qt::LeftButton, {}, {20, 20});
  container.hide();
  QTest::mouseRelease(bubble, Qt::LeftButton, {}, {20, 20});
  EXPECT_EQ(expansions, 0);
  EXPECT_TRUE(movements.empty());
}

TEST_F(MacFloatingBubbleViewTest, AssistiveTechnologyCanPressItAndTheKeyboardCannotReachIt) {
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(bubble);
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->role(), QAccessible::Button);
  EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Open Quick Notlet"));
  EXPECT_EQ(interface->text(QAccessible::Description), QStringLiteral("Drag to move"));
  EXPECT_EQ(bubble->focusPolicy(), Qt::NoFocus);
  EXPECT_TRUE(bubble->toolTip().isEmpty());
  interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(QTest::qWaitFor([this] { return expansions == 1; }));
}

TEST_F(MacFloatingBubbleViewTest, ShowsTheThemeInForceAndItsChange) {
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(bubble, &leave);
  for (const char* id : {"paper", "dracula", "cyberpunk"}) {
    SCOPED_TRACE(id);
    settings.setSelectedThemeID(id);
    const AppTheme& theme = AppThemeCatalog::themeWithID(id);
    const QColor surface = colorFromHex(theme.surfaceHex);
    const QColor primary = colorFromHex(theme.primaryHex);
    for (const QPoint dot : {QPoint(32, 18), QPoint(18, 32), QPoint(32, 32)})
      EXPECT_EQ(pixel(dot.x(), dot.y()), primary);
    for (const QPoint free : {QPoint(46, 32), QPoint(32, 50), QPoint(18, 18)})
      EXPECT_EQ(pixel(free.x(), free.y()), surface);
  }
}

} // namespace notlet
