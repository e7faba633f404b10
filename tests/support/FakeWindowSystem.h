#pragma once

#include <QRegion>
#include <QWidget>
#include <map>
#include <vector>

#include "platform/WindowSystem.h"

namespace notlet {

/// A window system whose compositor and mouse the test moves. Windows are activated as Qt does it.
class FakeWindowSystem final : public WindowSystem {
 public:
  [[nodiscard]] bool hasCompositor() const override { return m_hasCompositor; }
  [[nodiscard]] bool takesShadows() const override { return wantsShadows && m_hasCompositor; }
  void setShadow(WindowID /*window*/, const QMargins& shadow, const QRegion& body) override {
    shadowAndBody = {shadow, body};
  }
  void activate(WindowID window) override {
    activated.push_back(window);
    if (QWidget* widget = QWidget::find(window))
      widget->activateWindow();
  }
  void noteActivationToken(const std::string& token) override { activationToken = token; }
  void putOnAllWorkspaces(WindowID window) override {
    const QWidget* widget = QWidget::find(window);
    onAllWorkspaces.push_back({window, widget && widget->isVisible()});
  }
  void setFrameTone(WindowID window, FrameTone tone) override { frameTones[window] = tone; }
  void watchMouse(bool watched) override { isMouseWatched = watched; }

  void setCompositor(bool has) {
    m_hasCompositor = has;
    Q_EMIT compositorChanged();
  }
  void pressMouse(const QPoint& position) {
    if (isMouseWatched)
      Q_EMIT mousePressed(position);
  }

  struct Placed {
    WindowID window;
    bool wasVisible;
  };

  std::vector<WindowID> activated;
  std::vector<Placed> onAllWorkspaces;
  std::map<WindowID, FrameTone> frameTones;
  bool wantsShadows = false;
  /// Of the window that was told of last.
  std::pair<QMargins, QRegion> shadowAndBody;
  bool isMouseWatched = false;
  std::string activationToken;

 private:
  bool m_hasCompositor = true;
};

} // namespace notlet
