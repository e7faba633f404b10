#pragma once

#include "widgets/ExactTextEdit.h"

namespace notlet {

/// An editor as high as its text, within bounds; a longer text scrolls inside.
class FittingTextEdit : public ExactTextEdit {
  Q_OBJECT

 public:
  explicit FittingTextEdit(QWidget* parent = nullptr);

  /// Bounds of the height in pixels. The upper one holds for texts that are too long to be shown whole, or
  /// for all.
  void setHeights(int least, int most, bool boundsAllTexts);
  /// The caret, in the coordinates of this widget.
  [[nodiscard]] QRect caretRect() const;

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, m_least}; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void adaptToText();
  void alignToText();
  [[nodiscard]] int textHeight(int width) const;

  int m_least = 0;
  int m_most = 0;
  bool m_boundsAllTexts = false;
  mutable int m_measuredWidth = -1;
  mutable int m_measuredHeight = 0;
};

} // namespace notlet
