#pragma once

#include <optional>

#include "shell/FloatingPanel.h"

namespace notlet {

/// A panel without a window, which remembers how it looks.
class FakeFloatingPanel final : public FloatingPanel {
 public:
  void setContent(Content newContent) override { content = newContent; }
  void setFrame(const QRectF& frame, bool animated) override {
    currentFrame = frame;
    wasAnimated = animated;
  }
  [[nodiscard]] QRectF frame() const override { return currentFrame; }
  void orderFront() override { isShown = true; }
  void makeKeyAndOrderFront() override {
    isShown = true;
    hasKeyboard = true;
  }
  void orderOut() override {
    isShown = false;
    hasKeyboard = false;
  }
  void clearFirstResponder() override { hasKeyboard = false; }

  std::optional<Content> content;
  QRectF currentFrame;
  bool wasAnimated = false;
  bool isShown = false;
  /// A control in the panel has it.
  bool hasKeyboard = false;
};

} // namespace notlet
