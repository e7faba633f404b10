#include "widgets/NotletStyle.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>

namespace notlet {

// Dragging the thumb from end to end must reach every value, however long the content.
TEST(NotletStyle, TheThumbGoesFromEndToEnd) {
  NotletStyle style;
  for (const int maximum : {1, 10, 1'000, 2'000'000'000}) {
    for (const Qt::Orientation orientation : {Qt::Vertical, Qt::Horizontal}) {
      QScrollBar bar(orientation);
      bar.setStyle(&style);
      bar.setRange(0, maximum);
      bar.setPageStep(200);
      bar.resize(orientation == Qt::Vertical ? QSize(10, 300) : QSize(300, 10));
      bar.show();
      ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
      const QPoint start = orientation == Qt::Vertical ? QPoint(5, 4) : QPoint(4, 5);
      const QPoint end = orientation == Qt::Vertical ? QPoint(5, 600) : QPoint(600, 5);
      QTest::mousePress(&bar, Qt::LeftButton, {}, start);
      QTest::mouseMove(&bar, end);
      QTest::mouseRelease(&bar, Qt::LeftButton, {}, end);
      EXPECT_EQ(bar.value(), maximum);
    }
  }
}

// A click beside the thumb moves by a page; there are no arrows to hit.
TEST(NotletStyle, AClickBesideTheThumbMovesByAPage) {
  NotletStyle style;
  QScrollBar bar(Qt::Vertical);
  bar.setStyle(&style);
  bar.setRange(0, 1000);
  bar.setPageStep(100);
  bar.resize(10, 300);
  bar.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
  QTest::mouseClick(&bar, Qt::LeftButton, {}, QPoint(5, 299));
  EXPECT_EQ(bar.value(), 100);
  bar.setValue(900);
  QTest::mouseClick(&bar, Qt::LeftButton, {}, QPoint(5, 0));
  EXPECT_EQ(bar.value(), 800);
}

} // namespace notlet
