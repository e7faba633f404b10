#include "widgets/VirtualListView.h"

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "widgets/Motion.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"
#include "widgets/VirtualListAccessible.h"

namespace notlet {

namespace {

/// Rows that are measured to guess the heights of all others.
constexpr std::size_t sampleSize = 24;
/// And those for a first guess.
constexpr std::size_t quickSampleSize = 6;
constexpr int samplesPerStep = 3;

std::size_t afterInsertion(std::size_t row, std::size_t first, std::size_t count) {
  return row >= first ? row + count : row;
}

std::optional<std::size_t> afterRemoval(std::optional<std::size_t> row, std::size_t first,
                                        std::size_t count) {
  if (!row || *row < first)
    return row;
  return *row < first + count ? std::nullopt : std::optional(*row - count);
}

} // namespace

VirtualListView::VirtualListView(VirtualListRows& rows, QWidget* parent)
    : QAbstractScrollArea(parent), m_rows(rows) {
  VirtualListAccessible::install();
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setMouseTracking(true);
  viewport()->setBackgroundRole(ThemeRole::background);
  verticalScrollBar()->setSingleStep(singleStep);
  m_animation.setStartValue(0.0);
  m_animation.setEndValue(1.0);
  m_animation.setEasingCurve(Motion::curve());
  connect(&m_animation, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& progress) { glide(progress.toDouble()); });
  m_sampleTimer.setSingleShot(true);
  connect(&m_sampleTimer, &QTimer::timeout, this, &VirtualListView::extendSample);
  connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, &VirtualListView::takeScrollAction);
}

VirtualListView::~VirtualListView() = default;

// Measuring

int VirtualListView::heightOf(std::size_t row) {
  if (m_widget && row == m_widgetRow)
    return m_widgetHeight;
  if (const auto known = m_heights.known(row))
    return *known;
  const int height = std::max(1, m_rows.height(row, rowWidth()));
  m_heights.set(row, height);
  return height;
}

int VirtualListView::measuredWidgetHeight() const {
  const int height =
      m_widget->hasHeightForWidth() ? m_widget->heightForWidth(rowWidth()) : m_widget->sizeHint().height();
  return std::clamp(height, std::max(1, m_widget->minimumHeight()), m_widget->maximumHeight());
}

/// What is about to be shown is measured anyway; the first picture waits for no more than that.
void VirtualListView::estimateHeights() {
  m_countAtEstimate = m_heights.count();
  m_sample = {};
  const std::size_t first = std::min(m_anchor.row, m_countAtEstimate);
  const std::size_t last = std::min(first + quickSampleSize, m_countAtEstimate);
  std::int64_t sum = 0;
  for (std::size_t row = first; row < last; ++row)
    sum += heightOf(row);
  m_heights.setEstimate(first == last ? 1 : static_cast<int>(sum / static_cast<std::int64_t>(last - first)));
  if (m_countAtEstimate > quickSampleSize)
    m_sampleTimer.start(0);
}

/// A sample from everywhere in the list makes the scroll bar tell about the truth. It is measured in small
/// steps, because its scripts may have fonts that are not loaded yet.
void VirtualListView::extendSample() {
  const std::size_t count = m_heights.count();
  const std::size_t samples = std::min(count, sampleSize);
  for (int row = 0; row < samplesPerStep && m_sample.rows < samples; ++row, ++m_sample.rows)
    m_sample.height += std::max(1, m_rows.height(m_sample.rows * count / samples, rowWidth()));
  if (m_sample.rows < samples) {
    m_sampleTimer.start(0);
    return;
  }
  m_heights.setEstimate(
      samples == 0 ? 1 : static_cast<int>(m_sample.height / static_cast<std::int64_t>(samples)));
  updateScrollBar();
}

void VirtualListView::remeasure() {
  m_measuredWidth = rowWidth();
  m_heights.reset(m_heights.count(), 1);
  estimateHeights();
  if (m_widget)
    renewWidgetHeight();
  moveTo(m_anchor);
}

void VirtualListView::changeWidth() {
  const Anchor steady = steadyAnchor();
  const int before = m_heights.count() == 0 ? 1 : heightOf(steady.row);
  m_anchor = steady;
  m_measuredWidth = rowWidth();
  m_heights.reset(m_heights.count(), 1);
  estimateHeights();
  if (m_widget) {
    m_widgetHeight = measuredWidgetHeight();
    m_heights.set(m_widgetRow, m_widgetHeight);
  }
  // What is seen of a row that reaches beyond the top stays about the same part of it.
  if (m_heights.count() > 0 && m_anchor.top < 0)
    m_anchor.top = static_cast<int>(std::int64_t{m_anchor.top} * heightOf(m_anchor.row) / before);
}

void VirtualListView::renewWidgetHeight() {
  const int height = measuredWidgetHeight();
  m_heights.set(m_widgetRow, height);
  if (height == m_widgetHeight)
    return;
  const bool wasWholeInSight = isWholeInSight(m_widgetRow, pageHeight());
  m_anchor = steadyAnchor();
  m_widgetHeight = height;
  if (m_glide && m_glide->goal.row == m_widgetRow)
    scrollToCentre(m_widgetRow, true);
  moveTo(m_anchor);
  if (wasWholeInSight && !m_glide)
    scrollIntoView(m_widgetRow, QRect(0, 0, 1, m_widgetHeight));
}

// Changes of rows

/// An estimate made from few rows says little about many.
bool VirtualListView::needsEstimate() const {
  return m_heights.count() >= 2 * m_countAtEstimate;
}

/// Whether the list is full of rows that come before the one before this one.
bool VirtualListView::isOutOfSight(std::size_t row) const {
  return !m_visible.empty() && m_visible.back().row + 1 < row &&
         m_visible.back().rect.bottom() >= pageHeight() - 1;
}

bool VirtualListView::isWholeInSight(std::size_t row, int page) const {
  const auto rect = rowRect(row);
  return rect && rect->top() >= 0 && rect->bottom() < page;
}

void VirtualListView::rowsInserted(std::size_t first, std::size_t count) {
  const bool isBelowSight = isOutOfSight(first);
  const bool staysAtTop = isAtTop() && (!m_widget || !m_widget->isAncestorOf(QApplication::focusWidget()));
  Anchor anchor = steadyAnchor();
  if (m_heights.count() > 0 && anchor.row >= first && !(staysAtTop && first == 0))
    anchor.row += count;
  m_heights.insert(first, count);
  if (m_currentRow)
    m_currentRow = afterInsertion(*m_currentRow, first, count);
  m_widgetRow = afterInsertion(m_widgetRow, first, count);
  if (m_glide)
    m_glide->goal.row = afterInsertion(m_glide->goal.row, first, count);
  if (needsEstimate())
    estimateHeights();
  VirtualListAccessible::forgetRows(this);
  if (isBelowSight)
    updateScrollBar();
  else
    moveTo(anchor);
}

void VirtualListView::rowsRemoved(std::size_t first, std::size_t count) {
  Anchor anchor = steadyAnchor();
  if (anchor.row >= first + count)
    anchor.row -= count;
  else if (anchor.row >= first)
    anchor.row = first;
  m_heights.remove(first, count);
  m_currentRow = afterRemoval(m_currentRow, first, count);
  if (const auto row = afterRemoval(m_widgetRow, first, count))
    m_widgetRow = *row;
  else
    clearRowWidget();
  if (m_glide) {
    if (const auto row = afterRemoval(m_glide->goal.row, first, count))
      m_glide->goal.row = *row;
    else
      stopGlide();
  }
  VirtualListAccessible::forgetRows(this);
  moveTo(anchor);
}

void VirtualListView::rowsUpdated(std::size_t first, std::size_t count) {
  m_anchor = steadyAnchor();
  m_heights.forget(first, count);
  if (m_widget && m_widgetRow >= first && m_widgetRow < first + count)
    m_heights.set(m_widgetRow, m_widgetHeight);
  moveTo(m_anchor);
}

void VirtualListView::rowsReset(Placement placement, std::optional<std::size_t> widgetRow) {
  stopGlide();
  m_currentRow.reset();
  // Other rows, such as those that a search finds, are about as high: measuring a sample anew takes as long
  // as painting the list.
  const bool hasEstimate = std::exchange(m_measuredWidth, rowWidth()) == rowWidth();
  m_heights.reset(m_rows.count(), m_heights.estimate());
  if (m_widget && widgetRow) {
    m_widgetRow = *widgetRow;
    m_heights.set(m_widgetRow, m_widgetHeight);
  } else {
    clearRowWidget();
  }
  m_anchor = {placement.row, placement.top};
  if (!hasEstimate || needsEstimate())
    estimateHeights();
  VirtualListAccessible::forgetRows(this);
  moveTo(m_anchor);
}

void VirtualListView::setCurrentRow(std::optional<std::size_t> row) {
  if (row == m_currentRow)
    return;
  m_currentRow = row;
  viewport()->update();
  VirtualListAccessible::announceCurrentRow(this);
}

void VirtualListView::setRowWidget(std::size_t row, QWidget* widget) {
  // The row that the user has chosen stays in place, whatever happens to the height of the former one.
  if (const auto rect = rowRect(row))
    m_anchor = {row, rect->top()};
  if (widget != m_widget) {
    clearRowWidget();
    m_widget = widget;
    widget->setParent(viewport());
    widget->installEventFilter(this);
  } else {
    m_heights.forget(m_widgetRow, 1);
  }
  m_widgetRow = row;
  m_widgetHeight = measuredWidgetHeight();
  m_heights.set(row, m_widgetHeight);
  moveTo(m_anchor);
  widget->show();
}

void VirtualListView::clearRowWidget() {
  if (!m_widget)
    return;
  const Anchor anchor = m_anchor;
  QWidget* widget = m_widget;
  m_widget = nullptr;
  if (m_widgetRow < m_heights.count())
    m_heights.forget(m_widgetRow, 1);
  // It may still be handling an event. The keyboard stays in the list.
  const bool hadFocus = widget->isAncestorOf(QApplication::focusWidget());
  widget->removeEventFilter(this);
  widget->hide();
  widget->deleteLater();
  if (hadFocus)
    setFocus(Qt::OtherFocusReason);
  if (m_heights.count() == m_rows.count())
    moveTo(anchor);
}

std::optional<std::size_t> VirtualListView::widgetRow() const {
  return m_widget ? std::optional(m_widgetRow) : std::nullopt;
}

// What is on the screen

void VirtualListView::place() {
  m_visible.clear();
  int top = m_anchor.top;
  for (std::size_t row = m_anchor.row; row < m_heights.count() && top < pageHeight(); ++row) {
    const int height = heightOf(row);
    m_visible.push_back({row, QRect(0, top, rowWidth(), height)});
    top += height;
  }
  placeWidget();
  updateHover();
  viewport()->update();
  updateScrollBar(); // Last: a bar that comes or goes changes the width, which begins anew.
}

/// Out of sight the widget is beside the viewport rather than hidden, which would take the keyboard from it.
void VirtualListView::placeWidget() {
  if (!m_widget)
    return;
  const auto rect = rowRect(m_widgetRow);
  const int outside = m_widgetRow < m_anchor.row ? -m_widgetHeight - 1 : pageHeight() + 1;
  m_widget->setGeometry(rect.value_or(QRect(0, outside, rowWidth(), m_widgetHeight)));
}

std::optional<QRect> VirtualListView::rowRect(std::size_t row) const {
  const auto visible = std::ranges::find(m_visible, row, &VisibleRow::row);
  return visible == m_visible.end() ? std::nullopt : std::optional(visible->rect);
}

const VirtualListView::VisibleRow* VirtualListView::visibleAt(const QPoint& position) const {
  const auto visible =
      std::ranges::find_if(m_visible, [&](const VisibleRow& row) { return row.rect.contains(position); });
  return visible == m_visible.end() ? nullptr : std::to_address(visible);
}

std::optional<std::size_t> VirtualListView::rowAt(const QPoint& position) const {
  const VisibleRow* visible = visibleAt(position);
  return visible != nullptr ? std::optional(visible->row) : std::nullopt;
}

void VirtualListView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  for (const auto& [row, rect] : m_visible) {
    const bool isWidget = m_widget && row == m_widgetRow;
    if (isWidget || !event->rect().intersects(rect))
      continue;
    const bool isCurrent = row == m_currentRow;
    m_rows.paint(painter, rect, row,
                 {.isCurrent = isCurrent,
                  .isHovered = row == m_hoveredRow,
                  .isFocused = isCurrent && hasFocus(),
                  .hasSeparator = !isCurrent && row + 1 != m_currentRow && row + 1 < m_heights.count()});
  }
  if (hasFocus() && (!m_currentRow || !rowRect(*m_currentRow)))
    paintFocus(painter);
}

/// The keyboard is in the list and in no row of it.
void VirtualListView::paintFocus(QPainter& painter) const {
  QPalette quiet = palette();
  quiet.setColor(ThemeRole::focusRing, quietFocusRing(palette()));
  painter.setRenderHint(QPainter::Antialiasing);
  ThemedButton::paintFocusRing(painter, viewport()->rect().adjusted(2, 2, -2, -2), 10, quiet);
}

void VirtualListView::resizeEvent(QResizeEvent* event) {
  const bool wasWholeInSight = m_widget && isWholeInSight(m_widgetRow, event->oldSize().height());
  if (rowWidth() != m_measuredWidth)
    changeWidth();
  if (m_glide)
    return scrollToCentre(m_glide->goal.row, true);
  moveTo(m_anchor);
  if (wasWholeInSight)
    scrollIntoView(m_widgetRow, QRect(0, 0, 1, m_widgetHeight));
}

} // namespace notlet
