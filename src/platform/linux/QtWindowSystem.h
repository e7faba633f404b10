#pragma once

#include <set>
#include <string>

#include "platform/WindowSystem.h"

class QWindow;

namespace notlet {

/// What Qt itself offers on any window system. Windows may be translucent; presses outside the program's
/// windows stay unknown.
class QtWindowSystem final : public WindowSystem {
  Q_OBJECT

 public:
  QtWindowSystem();

  [[nodiscard]] bool hasCompositor() const override { return true; }
  [[nodiscard]] bool takesShadows() const override { return false; }
  void activate(WindowID id) override;
  void noteActivationToken(const std::string& token) override;
  void putOnAllWorkspaces(WindowID /*window*/) override {}
  void setShadow(WindowID /*window*/, const QMargins& /*shadow*/, const QRegion& /*body*/) override {}
  void setFrameTone(WindowID /*window*/, FrameTone /*tone*/) override {}
  void watchMouse(bool /*watched*/) override {}

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  [[nodiscard]] bool mustAppearAgain(const QWindow& window) const;

  /// The windows that Wayland has shown since they were asked to be visible; hidden ones may be among them.
  std::set<const QObject*> m_appeared;
};

} // namespace notlet
