#include "widgets/NotletStyle.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTest>
#include <QToolButton>
#include <array>

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

/// The strongest contrast of the area's pixels with its first one.
static double contrastWithin(const QImage& image, const QRect& area) {
  double strongest = 0;
  for (int y = area.top(); y <= area.bottom(); ++y)
    for (int x = area.left(); x <= area.right(); ++x)
      strongest =
          std::max(strongest, contrastRatio(image.pixelColor(x, y), image.pixelColor(area.topLeft())));
  return strongest;
}

TEST(NotletStyle, ChevronsAreSeenAndStandWhereAClickStepsOrOpens) {
  NotletStyle style;
  QWidget window;
  QSpinBox steps(&window);
  QComboBox choices(&window);
  choices.addItems({QStringLiteral("One"), QStringLiteral("Two")});
  const QRect place(0, 0, 120, 32);
  for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
    const int x = direction == Qt::LeftToRight ? 108 : 12;
    const auto around = [x](int y) { return QRect(x - 6, y - 5, 12, 10); };
    for (QWidget* control : {static_cast<QWidget*>(&steps), static_cast<QWidget*>(&choices)}) {
      control->setStyle(&style);
      control->setLayoutDirection(direction);
      control->setGeometry(place);
    }
    for (const char* id : {"ink", "dracula", "paper"}) {
      window.setPalette(themePalette(AppThemeCatalog::themeWithID(id), QPalette()));
      EXPECT_GE(contrastWithin(steps.grab().toImage(), around(10)), 3.0) << id;
      EXPECT_GE(contrastWithin(steps.grab().toImage(), around(23)), 2.0) << id << ": at its end, so disabled";
      EXPECT_GE(contrastWithin(choices.grab().toImage(), around(16)), 3.0) << id;
    }
    steps.setValue(5);
    QTest::mouseClick(&steps, Qt::LeftButton, {}, QPoint(x, 8));
    EXPECT_EQ(steps.value(), 6);
    QTest::mouseClick(&steps, Qt::LeftButton, {}, QPoint(x, 25));
    QTest::mouseClick(&steps, Qt::LeftButton, {}, QPoint(x, 25));
    EXPECT_EQ(steps.value(), 4);
    steps.setValue(0);
  }
}

TEST(NotletStyle, TextHasRoomBesideChevronsAndShortcuts) {
  NotletStyle style;
  QSpinBox steps;
  steps.setStyle(&style);
  steps.setRange(0, 5000);
  steps.resize(steps.sizeHint());
  const int widest = steps.fontMetrics().horizontalAdvance(QStringLiteral("5000"));
  EXPECT_GE(steps.findChild<QLineEdit*>()->width(), widest);
  QMenu menu;
  menu.setStyle(&style);
  menu.addAction(QStringLiteral("Copy"))->setShortcut(QKeySequence::Copy);
  QAction* undo = menu.addAction(QStringLiteral("Undo the last"));
  undo->setShortcut(QKeySequence::Undo);
  EXPECT_GE(menu.actionGeometry(undo).width(),
            menu.fontMetrics().horizontalAdvance(QStringLiteral("Undo the last  Ctrl+Z")));
}

TEST(NotletStyle, TheKeyboardIsSeenOnEveryControl) {
  NotletStyle style;
  QWidget window;
  QPushButton button(QStringLiteral("Button"), &window);
  QPushButton standard(QStringLiteral("Default"), &window);
  standard.setDefault(true);
  QToolButton tool(&window);
  QComboBox choices(&window);
  QSpinBox steps(&window);
  QLineEdit line(&window);
  QCheckBox box(QStringLiteral("Box"), &window);
  QTabBar tabs(&window);
  tabs.addTab(QStringLiteral("Tab"));
  const std::array<QWidget*, 8> controls = {&button, &standard, &tool, &choices, &steps, &line, &box, &tabs};
  window.setPalette(themePalette(AppThemeCatalog::themeWithID("dracula"), QPalette()));
  for (QWidget* control : controls) {
    control->setStyle(&style);
    control->setFocusPolicy(Qt::StrongFocus);
    control->setGeometry(10, 10, 120, 32);
    control->hide();
  }
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const QColor ring = window.palette().color(ThemeRole::focusRing);
  for (QWidget* control : controls) {
    control->show();
    control->setFocus(Qt::TabFocusReason);
    const QImage image = control->grab().toImage();
    int found = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        found += image.pixelColor(x, y) == ring ? 1 : 0;
    EXPECT_GE(found, 100) << control->metaObject()->className();
    control->hide();
  }
}

} // namespace notlet
