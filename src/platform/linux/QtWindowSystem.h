#pragma once

#include <string>

#include "platform/WindowSystem.h"

namespace notlet {

/// What Qt itself offers on any window system. Windows may be translucent; presses outside the program's
/// windows stay unknown.
class QtWindowSystem final : public WindowSystem {
  Q_OBJECT

 public:
  [[nodiscard]] bool hasCompositor() const override { return true; }
  void activate(WindowID id) override;
  void noteActivationToken(const std::string& token) override;
  void putOnAllWorkspaces(WindowID /*window*/) override {}
  void watchMouse(bool /*watched*/) override {}
};

} // namespace notlet
