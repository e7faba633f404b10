#pragma once

#include "platform/FocusedControl.h"

namespace notlet {

/// The widget of the active window that has the keyboard focus. Those that take text are line edits, text
/// edits and what is made of them, such as spin boxes.
class FocusedWidget final : public FocusedControl {
 public:
  [[nodiscard]] bool isTextInputFocused() const override;
  void clearFocus() override;
};

} // namespace notlet
