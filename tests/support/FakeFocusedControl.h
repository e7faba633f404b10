#pragma once

#include "platform/FocusedControl.h"

namespace notlet {

/// A focus that the test sets.
class FakeFocusedControl final : public FocusedControl {
 public:
  [[nodiscard]] bool isTextInputFocused() const override { return textInputFocused; }
  [[nodiscard]] bool isInMainWindow() const override { return inMainWindow; }
  void clearFocus() override { textInputFocused = false; }

  bool textInputFocused = false;
  bool inMainWindow = true;
};

} // namespace notlet
