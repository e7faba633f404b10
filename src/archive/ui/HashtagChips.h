#pragma once

#include <QWidget>
#include <vector>

#include "core/WordList.h"
#include "widgets/MacHashtagPill.h"

namespace notlet {

/// The hashtags of a notlet as chips in one line, of which a part shows when they do not fit.
class HashtagChips {
 public:
  explicit HashtagChips(const WordList& hashtags);

  [[nodiscard]] bool isEmpty() const { return m_chips.empty(); }
  [[nodiscard]] int width() const { return m_width; }
  /// Nothing when there are none.
  [[nodiscard]] int height() const { return m_height; }
  /// How far they can be scrolled in an area of this width.
  [[nodiscard]] int furthest(int areaWidth) const { return std::max(0, m_width - areaWidth); }
  /// Paints the part that begins `offset` pixels to the right of the first chip. What goes on beyond the area
  /// fades into the ground.
  void paint(QPainter& painter, const QRect& area, int offset, const QPalette& palette,
             const QColor& ground) const;
  [[nodiscard]] QString accessibleText() const;

 private:
  struct Chip {
    PillContent content;
    int left;
    int width;
  };

  std::vector<Chip> m_chips;
  int m_width = 0;
  int m_height = 0;
};

/// The chips as a widget that is scrolled by a sideways wheel, a touchpad or dragging.
class HashtagStrip : public QWidget {
  Q_OBJECT

 public:
  explicit HashtagStrip(QWidget* parent = nullptr);

  void setHashtags(const WordList& hashtags);
  [[nodiscard]] int offset() const { return m_offset; }
  void setOffset(int offset);

  [[nodiscard]] QSize sizeHint() const override { return {m_chips.width(), m_chips.height()}; }
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, m_chips.height()}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  HashtagChips m_chips{{}};
  int m_offset = 0;
  int m_draggedFrom = 0;
};

} // namespace notlet
