#include "widgets/NotletStyle.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>

#include "themes/AppThemeCatalog.h"
#include "widgets/ThemePalette.h"

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

// A style that derives its lines from the window's colour loses them where that is nearly black.
TEST(NotletStyle, AnEmptyFieldAndABoxToTickCanBeMadeOut) {
  NotletStyle style;
  for (const char* id : {"ink", "arcade", "one-dark", "paper", "butter"}) {
    const QPalette palette = themePalette(AppThemeCatalog::themeWithID(id), QPalette());
    QLineEdit field;
    QCheckBox box;
    for (QWidget* control : {static_cast<QWidget*>(&field), static_cast<QWidget*>(&box)}) {
      control->setStyle(&style);
      control->setPalette(palette);
      control->resize(100, 30);
      const QImage image = control->grab().toImage();
      // Where the outline is straight.
      const int x = control == &box ? 9 : 50;
      double strongest = 0;
      for (int y = 0; y < image.height(); ++y)
        strongest =
            std::max(strongest, contrastRatio(image.pixelColor(x, y), palette.color(ThemeRole::background)));
      EXPECT_GE(strongest, 3.0) << id << ' ' << control->metaObject()->className();
    }
    const QImage empty = box.grab().toImage();
    box.setChecked(true);
    EXPECT_NE(box.grab().toImage(), empty);
  }
}

} // namespace notlet
