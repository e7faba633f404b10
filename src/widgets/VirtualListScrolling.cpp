// Where a VirtualListView is, and how it gets elsewhere.

#include "widgets/VirtualListView.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "widgets/Motion.h"

namespace notlet {

namespace {

/// In pixels; of a longer list the bar counts larger steps. Its handle is at its smallest long before, and is
/// not painted anew for what a list that is being loaded gains.
constexpr std::int64_t longestBar = 1 << 20;
/// A row that is more rows away is jumped to rather than walked to.
constexpr std::size_t walkableRows = 64;

} // namespace

VirtualListView::Anchor VirtualListView::steadyAnchor() const {
  if (m_widget && m_widget->isAncestorOf(QApplication::focusWidget())) {
    if (const auto rect = rowRect(m_widgetRow))
      return {m_widgetRow, rect->top()};
  }
  return m_anchor;
}

VirtualListView::Anchor VirtualListView::atFirstVisible(Anchor anchor) {
  while (anchor.row > 0 && anchor.top > 0)
    anchor.top -= heightOf(--anchor.row);
  if (anchor.row == 0)
    anchor.top = std::min(anchor.top, 0);
  while (anchor.row + 1 < m_heights.count() && anchor.top + heightOf(anchor.row) <= 0)
    anchor.top += heightOf(anchor.row++);
  return anchor;
}

int VirtualListView::emptyBelow(Anchor anchor) {
  int bottom = anchor.top;
  for (std::size_t row = anchor.row; row < m_heights.count() && bottom < pageHeight(); ++row)
    bottom += heightOf(row);
  return std::max(0, pageHeight() - bottom);
}

VirtualListView::Anchor VirtualListView::clamped(Anchor anchor) {
  if (m_heights.count() == 0)
    return {};
  anchor.row = std::min(anchor.row, m_heights.count() - 1);
  anchor = atFirstVisible(anchor);
  anchor.top += emptyBelow(anchor);
  return atFirstVisible(anchor);
}

void VirtualListView::moveTo(Anchor anchor) {
  m_anchor = clamped(anchor);
  place();
}

void VirtualListView::moveToOffset(std::int64_t offset) {
  if (m_heights.count() == 0)
    return;
  if (offset >= m_heights.top(m_heights.count()) - pageHeight())
    return moveToEnd();
  const std::size_t row = m_heights.rowAt(offset);
  moveTo({row, static_cast<int>(m_heights.top(row) - offset)});
}

void VirtualListView::moveToEnd() {
  if (m_heights.count() == 0)
    return;
  const std::size_t last = m_heights.count() - 1;
  moveTo({last, pageHeight() - heightOf(last)});
}

std::int64_t VirtualListView::offset() const {
  return m_heights.top(m_anchor.row) - m_anchor.top;
}

void VirtualListView::scrollBy(int pixels) {
  stopGlide();
  const bool isFar = std::abs(pixels) > 4 * pageHeight();
  if (isFar)
    moveToOffset(offset() + pixels);
  else
    moveTo({m_anchor.row, m_anchor.top - pixels});
}

std::optional<int> VirtualListView::topNearby(std::size_t row, Anchor place) {
  if (row + walkableRows < place.row || row > place.row + walkableRows)
    return std::nullopt;
  int top = place.top;
  for (std::size_t above = row; above < place.row; ++above)
    top -= heightOf(above);
  for (std::size_t above = place.row; above < row; ++above)
    top += heightOf(above);
  return top;
}

void VirtualListView::scrollToCentre(std::size_t row, bool animated) {
  if (row >= m_heights.count())
    return;
  stopGlide();
  m_pointer.reset(); // Rows that pass below a pointer at rest do not light up.
  const bool isBelow = row > m_anchor.row;
  std::optional<int> from = topNearby(row, m_anchor);
  const int centred = std::max(0, (pageHeight() - heightOf(row)) / 2);
  // Near the ends of the list the row comes to rest elsewhere.
  const int goal = topNearby(row, clamped({row, centred})).value_or(centred);
  const auto duration = animated && isVisible() ? Motion::duration(this) : std::chrono::milliseconds(0);
  const int longestWay = 2 * pageHeight();
  if (!from || std::abs(*from - goal) > longestWay)
    from = goal + (isBelow ? longestWay : -longestWay);
  if (duration.count() == 0 || *from == goal)
    return moveTo({row, goal});
  m_glide = Glide{{row, goal}, *from - goal};
  glide(0);
  m_animation.setDuration(static_cast<int>(duration.count()));
  m_animation.start();
}

void VirtualListView::glide(double progress) {
  if (!m_glide)
    return;
  const int rest = static_cast<int>(std::lround(m_glide->distance * (1 - progress)));
  moveTo({m_glide->goal.row, m_glide->goal.top + rest});
  if (progress >= 1)
    m_glide.reset();
}

void VirtualListView::stopGlide() {
  m_glide.reset();
  m_animation.stop();
}

void VirtualListView::scrollIntoView(std::size_t row, const QRect& part) {
  // It comes into sight by itself.
  if (m_glide && m_glide->goal.row == row && heightOf(row) <= pageHeight())
    return;
  const std::optional<int> rowTop = row < m_heights.count() ? topNearby(row, m_anchor) : std::nullopt;
  if (!rowTop)
    return scrollToCentre(row, false);
  const int top = *rowTop + part.top();
  const int bottom = *rowTop + part.bottom() + 1;
  if (top < 0)
    scrollBy(top);
  else if (bottom > pageHeight())
    scrollBy(std::min(bottom - pageHeight(), top));
}

void VirtualListView::updateScrollBar() {
  const std::int64_t length = std::max<std::int64_t>(0, m_heights.top(m_heights.count()) - pageHeight());
  m_scrollScale = std::max(1.0, static_cast<double>(length) / static_cast<double>(longestBar));
  const auto steps = [this](std::int64_t pixels) {
    return static_cast<int>(std::lround(static_cast<double>(pixels) / m_scrollScale));
  };
  const QScopedValueRollback guard(m_setsScrollBar, true);
  verticalScrollBar()->setPageStep(std::max(1, pageHeight()));
  verticalScrollBar()->setRange(0, steps(length));
  verticalScrollBar()->setValue(steps(offset()));
}

void VirtualListView::scrollContentsBy(int, int dy) {
  if (m_setsScrollBar)
    return;
  stopGlide();
  const bool isNear = m_scrollScale == 1.0 && std::abs(dy) < 2 * pageHeight();
  const int value = verticalScrollBar()->value();
  if (isNear && value != verticalScrollBar()->maximum() && value != 0)
    scrollBy(-dy);
  else
    moveToOffset(static_cast<std::int64_t>(value * m_scrollScale));
}

/// A step of the bar is pixels of the list, however many pixels the bar counts as one.
void VirtualListView::takeScrollAction(int action) {
  const int page = std::max(singleStep, pageHeight() - singleStep);
  const auto instead = [this](int pixels) {
    verticalScrollBar()->setSliderPosition(verticalScrollBar()->value());
    scrollBy(pixels);
  };
  switch (action) {
  case QAbstractSlider::SliderSingleStepAdd:
    return instead(singleStep);
  case QAbstractSlider::SliderSingleStepSub:
    return instead(-singleStep);
  case QAbstractSlider::SliderPageStepAdd:
    return instead(page);
  case QAbstractSlider::SliderPageStepSub:
    return instead(-page);
  default:
    break;
  }
}

} // namespace notlet
