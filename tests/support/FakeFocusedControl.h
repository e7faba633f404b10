#pragma once

#include "platform/FocusedControl.h"

namespace notlet {

/// A focus that the test sets.
class FakeFocusedControl final : public FocusedControl {
 public:
  [[nodiscard]] bool isTextInputFocused() const override { return textInputFocused; }
  [[nodiscard]] bool isButtonFocused() const override { return buttonFocused; }
  [[nodiscard]] Window window() const override { return inWindow; }
  void clearFocus() override { textInputFocused = false; }
  [[nodiscard]] bool hasOwnSearch() const override { return ownSearch; }
  void focusOwnSearch() override { textInputFocused = true; }

  bool textInputFocused = false;
  bool buttonFocused = false;
  bool ownSearch = false;
  Window inWindow = Window::main;
};

} // namespace notlet
