#pragma once

#include <QAbstractScrollArea>
#include <QPointer>
#include <QTimer>
#include <QVariantAnimation>
#include <memory>
#include <optional>
#include <vector>

#include "widgets/HeightIndex.h"

namespace notlet {

/// The rows that a VirtualListView shows. They are asked for only while they are on the screen or about to
/// be.
class VirtualListRows {
 public:
  struct PaintState {
    bool isCurrent = false;
    bool isHovered = false;
    /// The list has the keyboard and this is its current row.
    bool isFocused = false;
    /// A line belongs between this row and the next.
    bool hasSeparator = false;
  };

  virtual ~VirtualListRows() = default;
  [[nodiscard]] virtual std::size_t count() const = 0;
  /// The exact height in pixels in a list of this width, at least 1.
  [[nodiscard]] virtual int height(std::size_t row, int width) = 0;
  virtual void paint(QPainter& painter, const QRect& rect, std::size_t row, const PaintState& state) = 0;
  /// What assistive technology reads for the row.
  [[nodiscard]] virtual QString accessibleText(std::size_t row) const = 0;
};

/// A list of rows of different heights that takes as long for a million rows as for ten.
///
/// Rows are measured when they come into view; all others count with an estimate made from a sample. What the
/// user sees stays where it is while rows around it are measured, added or removed. One row may be a real
/// widget, which follows its row.
///
/// For assistive technology it is a list of the rows that are visible.
class VirtualListView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  struct VisibleRow {
    std::size_t row;
    /// In the coordinates of the viewport.
    QRect rect;
  };

  /// The rows must outlive the list, which shows none of them before rowsReset() is called.
  explicit VirtualListView(VirtualListRows& rows, QWidget* parent = nullptr);
  ~VirtualListView() override;

  /// To be called after rows have changed. Those inserted at the top of a list that is at its top are shown.
  void rowsInserted(std::size_t first, std::size_t count);
  void rowsRemoved(std::size_t first, std::size_t count);
  /// The contents of these rows, and maybe their heights, are different now.
  void rowsUpdated(std::size_t first, std::size_t count);
  /// All rows are different now. The list is at its top afterwards, or has the top of the given row at the
  /// given place. The row widget is gone unless the row that it belongs to now is told.
  struct Placement {
    std::size_t row = 0;
    /// Pixels from the top of the viewport.
    int top = 0;
  };
  void rowsReset(Placement placement, std::optional<std::size_t> widgetRow);
  /// The same, with the list at its top.
  void rowsReset() { rowsReset({}, std::nullopt); }
  /// The look of all rows has changed, such as the font: measures everything anew.
  void remeasure();

  /// The row that is shown as selected. It moves along when rows are inserted or removed before it.
  void setCurrentRow(std::optional<std::size_t> row);
  [[nodiscard]] std::optional<std::size_t> currentRow() const { return m_currentRow; }

  /// Shows the widget in place of a row and takes it over; a former one is deleted later. It is as wide as
  /// the list and as high as its heightForWidth() or sizeHint() says, and goes when its row is removed. While
  /// it is wholly in sight, it stays so when it grows or the list gets lower.
  void setRowWidget(std::size_t row, QWidget* widget);
  void clearRowWidget();
  [[nodiscard]] QWidget* rowWidget() const { return m_widget; }
  [[nodiscard]] std::optional<std::size_t> widgetRow() const;

  /// Brings the middle of the row to the middle of the list, or its top to the top when it is higher than the
  /// list. Called again on the way, it goes on from where it is.
  void scrollToCentre(std::size_t row, bool animated);
  /// Scrolls no further than needed to show this part of a row, given in the coordinates of the row.
  void scrollIntoView(std::size_t row, const QRect& part);
  void scrollBy(int pixels);

  /// From top to bottom.
  [[nodiscard]] const std::vector<VisibleRow>& visibleRows() const { return m_visible; }
  /// Where the row is in the viewport; nothing when it is not visible.
  [[nodiscard]] std::optional<QRect> rowRect(std::size_t row) const;
  [[nodiscard]] std::optional<std::size_t> rowAt(const QPoint& position) const;
  /// How far the list is scrolled, in pixels; partly estimated.
  [[nodiscard]] std::int64_t offset() const;
  [[nodiscard]] const VirtualListRows& rows() const { return m_rows; }

 Q_SIGNALS:
  /// Also by assistive technology. The position is in the coordinates of the row.
  void rowClicked(std::size_t row, const QPoint& position);
  /// A wheel or touchpad asks to scroll sideways over a row.
  void sidewaysScrolled(std::size_t row, const QPoint& position, int pixels);
  void focusChanged(bool hasFocus);

 protected:
  bool viewportEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  /// Where the scroll position is kept: the row whose top is this far below the top of the viewport.
  /// Everything else follows from it, so heights elsewhere may change without anything moving.
  struct Anchor {
    std::size_t row = 0;
    int top = 0;
  };
  /// An animated way to a row.
  struct Glide {
    Anchor goal;
    int distance = 0;
  };

  /// Pixels for one line of the wheel or one step of the bar.
  static constexpr int singleStep = 24;

  [[nodiscard]] const VisibleRow* visibleAt(const QPoint& position) const;
  [[nodiscard]] int rowWidth() const { return viewport()->width(); }
  [[nodiscard]] int pageHeight() const { return viewport()->height(); }
  [[nodiscard]] int heightOf(std::size_t row);
  [[nodiscard]] int measuredWidgetHeight() const;
  [[nodiscard]] bool needsEstimate() const;
  void estimateHeights();
  void extendSample();
  [[nodiscard]] bool isOutOfSight(std::size_t row) const;
  [[nodiscard]] bool isWholeInSight(std::size_t row, int page) const;
  /// The same place told from the first visible row, and no further than the ends of the list.
  [[nodiscard]] Anchor clamped(Anchor anchor);
  [[nodiscard]] Anchor atFirstVisible(Anchor anchor);
  /// How much of the viewport stays empty below the last row.
  [[nodiscard]] int emptyBelow(Anchor anchor);
  /// The top of a row in the viewport of a list that is at that place, if the row is not too far away.
  [[nodiscard]] std::optional<int> topNearby(std::size_t row, Anchor place);
  /// What is not to move when rows change.
  [[nodiscard]] Anchor steadyAnchor() const;
  [[nodiscard]] bool isAtTop() const { return m_anchor.row == 0 && m_anchor.top == 0; }

  void moveTo(Anchor anchor);
  void moveToOffset(std::int64_t offset);
  void moveToEnd();
  void place();
  void placeWidget();
  void paintFocus(QPainter& painter) const;
  void updateScrollBar();
  void updateHover();
  void stopGlide();
  void glide(double progress);
  void takeScrollAction(int action);
  void renewWidgetHeight();
  void changeWidth();

  VirtualListRows& m_rows;
  HeightIndex m_heights;
  std::size_t m_countAtEstimate = 0;
  /// Rows measured for the estimate so far, and the sum of their heights.
  struct {
    std::size_t rows = 0;
    std::int64_t height = 0;
  } m_sample;
  QTimer m_sampleTimer;
  int m_measuredWidth = 0;
  Anchor m_anchor;
  std::vector<VisibleRow> m_visible;
  std::optional<std::size_t> m_currentRow;
  QPointer<QWidget> m_widget;
  std::size_t m_widgetRow = 0;
  int m_widgetHeight = 0;
  std::optional<Glide> m_glide;
  QVariantAnimation m_animation;
  bool m_setsScrollBar = false;
  /// Pixels for one step of the scroll bar; above 1 only when the list is higher than the bar can count.
  double m_scrollScale = 1;
  double m_wheelRest = 0;
  std::optional<QPoint> m_pointer;
  std::optional<std::size_t> m_hoveredRow;
  std::optional<QPoint> m_pressed;
};

} // namespace notlet
