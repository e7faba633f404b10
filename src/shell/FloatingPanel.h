#pragma once

#include <QRectF>

namespace notlet {

/// The one floating window of bubble mode, which holds either the bubble or the capture composer. Both are
/// made on first use and kept, so a draft survives each change of the content. Frames are in the coordinates
/// of ScreenArea.
class FloatingPanel {
 public:
  enum class Content { bubble, capture };

  virtual ~FloatingPanel() = default;
  virtual void setContent(Content content) = 0;
  virtual void setFrame(const QRectF& frame, bool animated) = 0;
  [[nodiscard]] virtual QRectF frame() const = 0;
  /// Shows the panel above other windows; the keyboard stays where it is.
  virtual void orderFront() = 0;
  /// Shows the panel and gives it the keyboard.
  virtual void makeKeyAndOrderFront() = 0;
  virtual void orderOut() = 0;
  /// Takes the keyboard away from the control in the panel that has it.
  virtual void clearFirstResponder() = 0;
};

} // namespace notlet
