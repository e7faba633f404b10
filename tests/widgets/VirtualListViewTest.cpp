#include "widgets/VirtualListView.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <random>
#include <set>

#include "widgets/Motion.h"

namespace notlet {

namespace {

/// Rows known by a number each; their heights follow from it and from the width.
class NumberedRows final : public VirtualListRows {
 public:
  explicit NumberedRows(std::size_t size) {
    for (std::size_t row = 0; row < size; ++row)
      numbers.push_back(next++);
  }

  [[nodiscard]] std::size_t count() const override { return numbers.size(); }
  [[nodiscard]] int height(std::size_t row, int width) override {
    ++measured;
    return heightOf(numbers.at(row), width);
  }
  void paint(QPainter&, const QRect&, std::size_t row, const PaintState&) override { painted.insert(row); }
  [[nodiscard]] QString accessibleText(std::size_t row) const override {
    return QStringLiteral("row %1").arg(numbers.at(row));
  }

  [[nodiscard]] int heightOf(int number, int width) const {
    const int version = versions.contains(number) ? versions.at(number) : 0;
    return 30 + (number * 37 + version * 53) % 170 + (number % 3) * std::max(0, 600 - width) / 4;
  }

  std::vector<int> numbers;
  std::map<int, int> versions;
  int next = 0;
  int measured = 0;
  std::set<std::size_t> painted;
};

class VirtualListViewTest : public testing::Test {
 protected:
  void show(std::size_t count) {
    rows = NumberedRows(count);
    view.rowsReset();
    view.resize(400, 300);
    view.show();
    view.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
  }
  ~VirtualListViewTest() override { Motion::setReduced(false); }

  [[nodiscard]] int page() const { return view.viewport()->height(); }
  [[nodiscard]] std::map<int, int> topsByNumber() const {
    std::map<int, int> tops;
    for (const auto& [row, rect] : view.visibleRows())
      tops[rows.numbers.at(row)] = rect.top();
    return tops;
  }
  [[nodiscard]] bool isAtAnEnd() const {
    const auto& visible = view.visibleRows();
    return visible.empty() || (visible.front().row == 0 && visible.front().rect.top() == 0) ||
           (visible.back().row + 1 == rows.count() && visible.back().rect.bottom() + 1 <= page());
  }
  void insert(std::size_t first, std::size_t count) {
    for (std::size_t row = 0; row < count; ++row)
      rows.numbers.insert(rows.numbers.begin() + static_cast<std::ptrdiff_t>(first), rows.next++);
    view.rowsInserted(first, count);
  }
  void remove(std::size_t first, std::size_t count) {
    const auto begin = rows.numbers.begin() + static_cast<std::ptrdiff_t>(first);
    rows.numbers.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
    view.rowsRemoved(first, count);
  }
  void turnWheel(QPoint pixels, QPoint angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const QPointF position(50, 50);
    QWheelEvent event(position, view.viewport()->mapToGlobal(position), pixels, angle, Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
  }

  /// What holds after whatever happens.
  void expectSound(const std::string& when) {
    const auto& visible = view.visibleRows();
    ASSERT_EQ(visible.empty(), rows.count() == 0) << when;
    if (visible.empty())
      return;
    int bottom = visible.front().rect.top();
    ASSERT_LE(bottom, 0) << when;
    std::size_t next = visible.front().row;
    for (const auto& [row, rect] : visible) {
      ASSERT_EQ(row, next++) << when;
      ASSERT_EQ(rect.top(), bottom) << when;
      if (row == view.widgetRow()) {
        ASSERT_EQ(view.rowWidget()->geometry(), rect) << when;
      } else {
        ASSERT_EQ(rect.height(), rows.heightOf(rows.numbers.at(row), view.viewport()->width())) << when;
      }
      bottom += rect.height();
    }
    ASSERT_GT(visible.front().rect.bottom(), -1) << when;
    const bool showsStart = visible.front().row == 0 && visible.front().rect.top() == 0;
    const bool showsEnd = visible.back().row + 1 == rows.count();
    ASSERT_TRUE(bottom >= page() || (showsStart && showsEnd)) << when;
    if (view.widgetRow() && !view.rowRect(*view.widgetRow())) {
      ASSERT_FALSE(view.viewport()->rect().intersects(view.rowWidget()->geometry())) << when;
    }
  }

  [[nodiscard]] std::size_t below(std::size_t limit) {
    return static_cast<std::size_t>(random()) % std::max<std::size_t>(limit, 1);
  }
  void changeSomething() {
    const std::size_t count = rows.count();
    const std::size_t row = below(count);
    const std::size_t kind = below(count < 300 ? 4 : 2);
    if (kind >= 2) {
      insert(below(count + 1), 1 + below(4));
    } else if (count > 0 && kind == 1) {
      remove(row, std::min(below(6), count - row));
    } else if (count > 0) {
      ++rows.versions[rows.numbers[row]];
      view.rowsUpdated(row, 1);
    }
  }
  void doSomething() {
    const std::size_t row = below(rows.count());
    const auto range = static_cast<std::size_t>(view.verticalScrollBar()->maximum()) + 1;
    constexpr std::array keys = {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    switch (below(8)) {
    case 0:
      view.resize(250 + static_cast<int>(below(500)), 100 + static_cast<int>(below(700)));
      break;
    case 1:
      return view.scrollToCentre(row, false);
    case 2:
      return turnWheel({}, {0, static_cast<int>(below(1000)) - 500});
    case 3:
      return view.verticalScrollBar()->setValue(static_cast<int>(below(range)));
    case 4:
      if (rows.count() > 0)
        view.setRowWidget(row, makeWidget());
      break;
    case 5:
      return view.clearRowWidget();
    case 6:
      if (view.rowWidget() != nullptr)
        view.rowWidget()->setMinimumHeight(20 + static_cast<int>(below(500)));
      break;
    default:
      QTest::keyClick(&view, keys.at(below(keys.size())));
    }
    QCoreApplication::sendPostedEvents();
  }
  [[nodiscard]] QWidget* makeWidget() {
    auto* widget = new QWidget;
    widget->setMinimumHeight(20 + static_cast<int>(below(500)));
    widget->setLayout(new QVBoxLayout);
    return widget;
  }

  std::mt19937 random{3};
  NumberedRows rows{0};
  VirtualListView view{rows};
};

} // namespace

// One walk through everything that can happen to a list. Rows next to each other without gaps, heights up to
// date, no empty space below, and the top row where it was unless the list itself ends.
TEST_F(VirtualListViewTest, StaysSoundAndSteadyThroughRandomChanges) {
  show(120);
  for (int step = 0; step < 6000; ++step) {
    const std::string when = "step " + std::to_string(step);
    const auto before = topsByNumber();
    const bool wasAtEnd = isAtAnEnd();
    const auto widgetRow = view.widgetRow();
    const auto widgetNumber = widgetRow ? std::optional(rows.numbers.at(*widgetRow)) : std::nullopt;
    const bool isChange = below(2) == 0;
    if (isChange)
      changeSomething();
    else
      doSomething();
    ASSERT_NO_FATAL_FAILURE(expectSound(when));
    if (!isChange)
      continue;
    if (view.widgetRow()) {
      ASSERT_EQ(rows.numbers.at(*view.widgetRow()), widgetNumber) << when;
    }
    const auto highest = std::ranges::min_element(before, {}, &std::pair<const int, int>::second);
    if (wasAtEnd || isAtAnEnd() || std::ranges::count(rows.numbers, highest->first) == 0)
      continue;
    // A row of which little was seen may have become too low to be seen at all.
    const auto after = topsByNumber();
    const int height = rows.heightOf(highest->first, view.viewport()->width());
    if (view.widgetRow() || highest->second + height > 0) {
      ASSERT_EQ(after.contains(highest->first) ? after.at(highest->first) : 1, highest->second) << when;
    }
  }
}

TEST_F(VirtualListViewTest, AMillionRowsAreNeitherMeasuredNorPaintedBeyondTheScreen) {
  show(1'000'000);
  view.repaint();
  EXPECT_LT(rows.measured, 200);
  EXPECT_LT(rows.painted.size(), 12U);
  rows.measured = 0;
  view.resize(500, 300);
  insert(0, 1);
  insert(rows.count(), 1000);
  remove(500'000, 10);
  view.scrollToCentre(700'000, false);
  EXPECT_LT(rows.measured, 300);
  EXPECT_TRUE(view.rowRect(700'000));
  EXPECT_LE(std::abs(view.rowRect(700'000)->center().y() - page() / 2), 2);
}

// The first rows say little about the others: the bar must come to tell of all, without the first picture
// waiting for their measuring, and without anything moving.
TEST_F(VirtualListViewTest, TheBarComesToTellOfTheWholeList) {
  rows = NumberedRows(5'000);
  for (int number = 0; number < 100; ++number)
    rows.numbers[static_cast<std::size_t>(number)] = 170 * number; // All of the least height.
  std::int64_t height = 0;
  for (const int number : rows.numbers)
    height += rows.heightOf(number, 400);
  view.resize(400, 300);
  view.rowsReset();
  view.show();
  const auto isAboutRight = [&] {
    return std::abs(view.verticalScrollBar()->maximum() - height) < height / 8;
  };
  EXPECT_FALSE(isAboutRight());
  EXPECT_TRUE(QTest::qWaitFor(isAboutRight));
  EXPECT_EQ(view.offset(), 0);
  EXPECT_EQ(view.visibleRows().front().rect.top(), 0);
}

// Results that come in page by page while a search goes on must not paint the list anew each time.
TEST_F(VirtualListViewTest, RowsThatComeInOutOfSightPaintNothingButTheBar) {
  show(100);
  QCoreApplication::processEvents();
  rows.painted.clear();
  const int before = view.verticalScrollBar()->maximum();
  insert(50, 60);
  QCoreApplication::processEvents();
  EXPECT_TRUE(rows.painted.empty());
  EXPECT_GT(view.verticalScrollBar()->maximum(), before);
}

// A capture made elsewhere should be seen; but nobody should have to chase the text that they are editing.
TEST_F(VirtualListViewTest, ANewFirstRowIsShownAtTheTopUnlessARowIsBeingEdited) {
  show(50);
  insert(0, 1);
  EXPECT_EQ(view.visibleRows().front().row, 0U);
  auto* editor = new QLineEdit;
  view.setRowWidget(2, editor);
  editor->setFocus();
  const QRect before = editor->geometry();
  insert(0, 3);
  EXPECT_EQ(editor->geometry(), before);
  EXPECT_EQ(view.widgetRow(), 5U);
}

TEST_F(VirtualListViewTest, EveryStepOfABarThatCannotCountAllPixelsStillMovesAStep) {
  class TallRows final : public VirtualListRows {
   public:
    [[nodiscard]] std::size_t count() const override { return 3'000'000; }
    [[nodiscard]] int height(std::size_t, int) override { return 10'000; }
    void paint(QPainter&, const QRect&, std::size_t, const PaintState&) override {}
    [[nodiscard]] QString accessibleText(std::size_t) const override { return {}; }
  } tall;
  VirtualListView list(tall);
  list.resize(400, 300);
  list.show();
  list.rowsReset();
  QScrollBar* bar = list.verticalScrollBar();
  bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_GT(list.offset(), 0);
  EXPECT_LT(list.offset(), 100);
  bar->setValue(bar->maximum());
  EXPECT_EQ(list.offset(), 3'000'000 * std::int64_t{10'000} - list.viewport()->height());
  bar->setValue(bar->maximum() / 2);
  EXPECT_NEAR(static_cast<double>(list.offset()), 1.5e10, 1e5);
  bar->setValue(0);
  EXPECT_EQ(list.offset(), 0);
}

TEST_F(VirtualListViewTest, AnAnimatedWayEndsAtTheMiddleWhereverItWasTurned) {
  show(10'000);
  view.scrollToCentre(2, true);
  view.scrollToCentre(3, true);
  EXPECT_EQ(view.offset(), 0) << "no frame has passed";
  view.scrollToCentre(20, true);
  QTest::qWait(40);
  const auto underWay = view.offset();
  EXPECT_GT(underWay, 0);
  for (std::size_t row = 21; row < 30; ++row) {
    view.scrollToCentre(row, true);
    QTest::qWait(15);
    EXPECT_GE(view.offset(), underWay); // Never back to the beginning.
  }
  insert(3, 5); // What is added before the goal does not shift it.
  EXPECT_TRUE(QTest::qWaitFor([&] {
    const auto rect = view.rowRect(34);
    return rect && std::abs(rect->center().y() - page() / 2) <= 1;
  }));

  Motion::setReduced(true);
  view.scrollToCentre(9000, true);
  EXPECT_LE(std::abs(view.rowRect(9000)->center().y() - page() / 2), 1);
  view.scrollToCentre(0, true);
  EXPECT_EQ(view.offset(), 0);
}

TEST_F(VirtualListViewTest, ARowHigherThanTheListIsShownFromItsTop) {
  show(50);
  auto* widget = new QWidget;
  widget->setFixedHeight(2000);
  widget->setLayout(new QVBoxLayout);
  view.setRowWidget(20, widget);
  view.scrollToCentre(20, false);
  EXPECT_EQ(view.rowRect(20)->top(), 0);
  view.scrollIntoView(20, QRect(0, 1500, 10, 20));
  EXPECT_EQ(view.rowRect(20)->top(), -(1520 - page()));
  view.scrollIntoView(20, QRect(0, 1500, 10, 20));
  EXPECT_EQ(view.rowRect(20)->top(), -(1520 - page()));
}

TEST_F(VirtualListViewTest, AnEditorOutOfSightKeepsTheKeyboard) {
  show(1000);
  auto* editor = new QLineEdit;
  view.setRowWidget(3, editor);
  editor->setFocus();
  view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
  EXPECT_FALSE(view.rowRect(3));
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("abc"));
  EXPECT_EQ(editor->text(), QStringLiteral("abc"));
  // When its row goes, the list keeps the keyboard for the next one.
  remove(0, 10);
  EXPECT_EQ(view.rowWidget(), nullptr);
  EXPECT_TRUE(view.hasFocus());
}

TEST_F(VirtualListViewTest, ClicksAndSidewaysScrollsTellTheRowAndThePlaceInIt) {
  show(100);
  view.scrollBy(1000);
  QSignalSpy clicks(&view, &VirtualListView::rowClicked);
  QSignalSpy sideways(&view, &VirtualListView::sidewaysScrolled);
  const QPoint position(50, 50);
  const std::size_t row = *view.rowAt(position);
  const QPoint inRow = position - view.rowRect(row)->topLeft();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, position);
  ASSERT_EQ(clicks.size(), 1);
  EXPECT_EQ(clicks[0], (QVariantList{QVariant::fromValue(row), inRow}));
  // Pressed on one row and let go on another is no click.
  QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, position);
  QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, position + QPoint(0, 200));
  QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, position);
  EXPECT_EQ(clicks.size(), 1);
  const auto offset = view.offset();
  turnWheel({-30, 2}, {});
  turnWheel({0, -40}, {}, Qt::ShiftModifier);
  ASSERT_EQ(sideways.size(), 2);
  EXPECT_EQ(sideways[0], (QVariantList{QVariant::fromValue(row), inRow, 30}));
  EXPECT_EQ(sideways[1].at(2), 40);
  EXPECT_EQ(view.offset(), offset);
}

TEST_F(VirtualListViewTest, AFineWheelScrollsAsFarAsACoarseOne) {
  show(100);
  turnWheel({}, {0, -120});
  const auto notch = view.offset();
  EXPECT_GT(notch, 0);
  for (int part = 0; part < 120; ++part)
    turnWheel({}, {0, -1});
  EXPECT_NEAR(static_cast<double>(view.offset()), static_cast<double>(2 * notch), 1);
}

TEST_F(VirtualListViewTest, AssistiveTechnologySeesTheVisibleRowsOnly) {
  show(100'000);
  view.setCurrentRow(1);
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&view);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->role(), QAccessible::List);
  ASSERT_EQ(list->childCount(), static_cast<int>(view.visibleRows().size()));
  for (int index = 0; index < list->childCount(); ++index) {
    QAccessibleInterface* row = list->child(index);
    EXPECT_EQ(row->role(), QAccessible::ListItem);
    EXPECT_EQ(row->text(QAccessible::Name), QStringLiteral("row %1").arg(index));
    EXPECT_EQ(row->state().selected, index == 1);
    EXPECT_EQ(row->parent(), list);
    EXPECT_EQ(list->indexOfChild(row), index);
    EXPECT_EQ(list->childAt(row->rect().center().x(), row->rect().center().y()), row);
  }
  QSignalSpy clicks(&view, &VirtualListView::rowClicked);
  list->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  ASSERT_EQ(clicks.size(), 1);
  EXPECT_EQ(clicks[0][0], QVariant::fromValue(std::size_t{2}));

  view.scrollToCentre(50'000, false);
  EXPECT_EQ(list->child(0)->text(QAccessible::Name),
            QStringLiteral("row %1").arg(view.visibleRows().front().row));
}

} // namespace notlet
