#include "widgets/VirtualListView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "widgets/Motion.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"
#include "widgets/ThemedScrollBar.h"
#include "widgets/VirtualListAccessible.h"

namespace notlet {

namespace {

constexpr int singleStep = 24;
/// Rows that are measured to guess the heights of all others.
constexpr std::size_t sampleSize = 24;
/// Far below what an int holds, so that the bar can add to it.
constexpr std::int64_t longestBar = 1 << 30;
/// A row that is more rows away is jumped to rather than walked to.
constexpr std::size_t walkableRows = 64;

std::optional<std::size_t> afterInsertion(std::optional<std::size_t> row, std::size_t first,
                                          std::size_t count) {
  return row && *row >= first ? *row + count : row;
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
  ThemedScrollBar::install(*this);
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

/// A sample from everywhere in the list makes the scroll bar tell about the truth from the beginning.
void VirtualListView::estimateHeights() {
  const std::size_t count = m_heights.count();
  const std::size_t samples = std::min(count, sampleSize);
  std::int64_t sum = 0;
  for (std::size_t sample = 0; sample < samples; ++sample)
    sum += std::max(1, m_rows.height(sample * count / samples, rowWidth()));
  m_heights.setEstimate(samples == 0 ? 1 : static_cast<int>(sum / static_cast<std::int64_t>(samples)));
  m_countAtEstimate = count;
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
  m_anchor = steadyAnchor();
  m_widgetHeight = height;
  if (m_glide && m_glide->goal.row == m_widgetRow)
    scrollToCentre(m_widgetRow, true);
  moveTo(m_anchor);
}

// Changes of rows

void VirtualListView::rowsInserted(std::size_t first, std::size_t count) {
  const bool staysAtTop = isAtTop() && (!m_widget || !m_widget->isAncestorOf(QApplication::focusWidget()));
  Anchor anchor = steadyAnchor();
  if (m_heights.count() > 0 && anchor.row >= first && !(staysAtTop && first == 0))
    anchor.row += count;
  m_heights.insert(first, count);
  m_currentRow = afterInsertion(m_currentRow, first, count);
  m_widgetRow = *afterInsertion(m_widgetRow, first, count);
  if (m_glide)
    m_glide->goal.row = *afterInsertion(m_glide->goal.row, first, count);
  // An estimate made from few rows says little about many.
  if (m_heights.count() >= 2 * m_countAtEstimate)
    estimateHeights();
  VirtualListAccessible::forgetRows(this);
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
  m_measuredWidth = rowWidth();
  m_heights.reset(m_rows.count(), 1);
  if (m_widget && widgetRow) {
    m_widgetRow = *widgetRow;
    m_heights.set(m_widgetRow, m_widgetHeight);
  } else {
    clearRowWidget();
  }
  estimateHeights();
  VirtualListAccessible::forgetRows(this);
  moveTo({placement.row, placement.top});
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

// Where the list is

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

std::optional<int> VirtualListView::topNearby(std::size_t row) {
  if (row + walkableRows < m_anchor.row || row > m_anchor.row + walkableRows)
    return std::nullopt;
  int top = m_anchor.top;
  for (std::size_t above = row; above < m_anchor.row; ++above)
    top -= heightOf(above);
  for (std::size_t above = m_anchor.row; above < row; ++above)
    top += heightOf(above);
  return top;
}

void VirtualListView::scrollToCentre(std::size_t row, bool animated) {
  if (row >= m_heights.count())
    return;
  stopGlide();
  m_pointer.reset(); // Rows that pass below a pointer at rest do not light up.
  const Anchor start = m_anchor;
  const bool isBelow = row > start.row;
  std::optional<int> from = topNearby(row);
  const int centred = std::max(0, (pageHeight() - heightOf(row)) / 2);
  // Near the ends of the list the row comes to rest elsewhere.
  m_anchor = clamped({row, centred});
  const int goal = topNearby(row).value_or(centred);
  const auto duration = animated && isVisible() ? Motion::duration(this) : std::chrono::milliseconds(0);
  const int longestWay = 2 * pageHeight();
  if (!from || std::abs(*from - goal) > longestWay)
    from = goal + (isBelow ? longestWay : -longestWay);
  if (duration.count() == 0 || *from == goal)
    return moveTo({row, goal});
  m_glide = Glide{{row, goal}, *from - goal};
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
  const std::optional<int> rowTop = row < m_heights.count() ? topNearby(row) : std::nullopt;
  if (!rowTop)
    return scrollToCentre(row, false);
  const int top = *rowTop + part.top();
  const int bottom = *rowTop + part.bottom() + 1;
  if (top < 0)
    scrollBy(top);
  else if (bottom > pageHeight())
    scrollBy(std::min(bottom - pageHeight(), top));
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

std::optional<std::size_t> VirtualListView::rowAt(const QPoint& position) const {
  const auto visible =
      std::ranges::find_if(m_visible, [&](const VisibleRow& row) { return row.rect.contains(position); });
  return visible == m_visible.end() ? std::nullopt : std::optional(visible->row);
}

void VirtualListView::updateScrollBar() {
  const std::int64_t length = std::max<std::int64_t>(0, m_heights.top(m_heights.count()) - pageHeight());
  m_scrollScale = std::max(1.0, static_cast<double>(length) / static_cast<double>(longestBar));
  const auto steps = [this](std::int64_t pixels) {
    return static_cast<int>(std::lround(static_cast<double>(pixels) / m_scrollScale));
  };
  const QScopedValueRollback guard(m_setsScrollBar, true);
  verticalScrollBar()->setPageStep(std::max(1, steps(pageHeight())));
  verticalScrollBar()->setRange(0, steps(length));
  verticalScrollBar()->setValue(steps(offset()));
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
  quiet.setColor(ThemeRole::focusRing,
                 mixed(palette().color(ThemeRole::focusRing), palette().color(ThemeRole::background), 0.4));
  painter.setRenderHint(QPainter::Antialiasing);
  ThemedButton::paintFocusRing(painter, viewport()->rect().adjusted(2, 2, -2, -2), 10, quiet);
}

void VirtualListView::resizeEvent(QResizeEvent*) {
  if (rowWidth() != m_measuredWidth)
    changeWidth();
  if (m_glide)
    return scrollToCentre(m_glide->goal.row, true);
  moveTo(m_anchor);
}

// What the user does

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

void VirtualListView::wheelEvent(QWheelEvent* event) {
  const double perNotch = QApplication::wheelScrollLines() * singleStep;
  const auto pixels = [&](int exact, int angle) { return exact != 0 ? exact : angle * perNotch / 120.0; };
  double sideways = -pixels(event->pixelDelta().x(), event->angleDelta().x());
  double down = -pixels(event->pixelDelta().y(), event->angleDelta().y());
  if (event->modifiers() & Qt::ShiftModifier)
    sideways += std::exchange(down, 0.0);
  event->accept();
  if (std::abs(sideways) > std::abs(down)) {
    const QPoint position = event->position().toPoint();
    if (const auto row = rowAt(position))
      Q_EMIT sidewaysScrolled(*row, position - rowRect(*row)->topLeft(), static_cast<int>(sideways));
    return;
  }
  // Fine wheels and touchpads send less than a pixel at a time.
  m_wheelRest += down;
  const double whole = std::trunc(m_wheelRest);
  m_wheelRest -= whole;
  if (whole != 0)
    scrollBy(static_cast<int>(whole));
}

void VirtualListView::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() & ~Qt::KeypadModifier)
    return event->ignore();
  switch (event->key()) {
  case Qt::Key_PageDown:
    return takeScrollAction(QAbstractSlider::SliderPageStepAdd);
  case Qt::Key_PageUp:
    return takeScrollAction(QAbstractSlider::SliderPageStepSub);
  case Qt::Key_Home:
    stopGlide();
    return moveTo({});
  case Qt::Key_End:
    stopGlide();
    return moveToEnd();
  default:
    event->ignore();
  }
}

void VirtualListView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    m_pressed = event->position().toPoint();
}

void VirtualListView::mouseMoveEvent(QMouseEvent* event) {
  m_pointer = event->position().toPoint();
  updateHover();
}

void VirtualListView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !m_pressed)
    return;
  const QPoint position = event->position().toPoint();
  const auto row = rowAt(position);
  const bool isClick = row && row == rowAt(*m_pressed) &&
                       (position - *m_pressed).manhattanLength() < QApplication::startDragDistance();
  m_pressed.reset();
  if (isClick)
    Q_EMIT rowClicked(*row, position - rowRect(*row)->topLeft());
}

void VirtualListView::updateHover() {
  const auto hovered = m_pointer ? rowAt(*m_pointer) : std::nullopt;
  if (hovered == m_hoveredRow)
    return;
  m_hoveredRow = hovered;
  viewport()->update();
}

bool VirtualListView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) {
    m_pointer.reset();
    updateHover();
  }
  if (event->type() == QEvent::LayoutRequest) {
    if (m_widget)
      renewWidgetHeight();
    return true;
  }
  return QAbstractScrollArea::viewportEvent(event);
}

bool VirtualListView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_widget && event->type() == QEvent::Enter) {
    m_pointer.reset();
    updateHover();
  } else if (watched == m_widget && event->type() == QEvent::LayoutRequest) {
    renewWidgetHeight();
  }
  return QAbstractScrollArea::eventFilter(watched, event);
}

void VirtualListView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
  VirtualListAccessible::announceCurrentRow(this);
  Q_EMIT focusChanged(true);
}

void VirtualListView::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
  Q_EMIT focusChanged(false);
}

} // namespace notlet
