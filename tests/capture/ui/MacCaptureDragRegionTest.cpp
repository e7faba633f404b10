#include "capture/ui/MacCaptureDragRegion.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>
#include <QVBoxLayout>

namespace notlet {

namespace {

class MacCaptureDragRegionTest : public testing::Test {
 protected:
  MacCaptureDragRegionTest() {
    auto* layout = new QVBoxLayout(region);
    layout->addWidget(title);
    window.move(100, 100);
    window.resize(200, 100);
    region->setParent(&window);
    region->setGeometry(0, 0, 200, 40);
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
  }

  /// Through the window, as the desktop delivers mouse events: what lies on the region must not take them.
  void press(const QPoint& point, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mousePress(window.windowHandle(), button, {}, point);
  }
  void moveBy(const QPoint& movement) {
    QTest::mouseMove(window.windowHandle(), m_pointer + movement - (window.pos() - m_start));
    m_pointer += movement;
  }
  void release(Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseRelease(window.windowHandle(), button, {}, m_pointer - (window.pos() - m_start));
  }

  int endings = 0;
  QWidget window;
  MacCaptureDragRegion* region =
      new MacCaptureDragRegion(MacCaptureDragRegion::Mover::program, [this] { ++endings; });
  QLabel* title = new QLabel(QStringLiteral("Title"));
  const QPoint m_start{100, 100};
  QPoint m_pointer{20, 20};
};

} // namespace

TEST_F(MacCaptureDragRegionTest, TheWindowFollowsThePointerAndTheEndIsToldOnce) {
  press(m_pointer);
  moveBy({7, -3});
  EXPECT_EQ(window.pos(), QPoint(107, 97));
  moveBy({-50, 20});
  EXPECT_EQ(window.pos(), QPoint(57, 117));
  EXPECT_EQ(endings, 0);
  release();
  EXPECT_EQ(endings, 1);
  moveBy({5, 5});
  EXPECT_EQ(window.pos(), QPoint(57, 117));
}

TEST_F(MacCaptureDragRegionTest, AClickWithoutMovementEndsOnceToo) {
  press(m_pointer);
  release();
  EXPECT_EQ(endings, 1);
  EXPECT_EQ(window.pos(), m_start);
}

TEST_F(MacCaptureDragRegionTest, OtherButtonsDoNotDrag) {
  press(m_pointer, Qt::RightButton);
  moveBy({9, 9});
  release(Qt::RightButton);
  EXPECT_EQ(endings, 0);
  EXPECT_EQ(window.pos(), m_start);
}

TEST_F(MacCaptureDragRegionTest, AWindowThatGoesAwayWhileItIsDraggedEndsTheDrag) {
  press(m_pointer);
  window.hide();
  EXPECT_EQ(endings, 1);
  release();
  EXPECT_EQ(endings, 1);
}

} // namespace notlet
