#pragma once

#include <QAbstractNativeEventFilter>
#include <QPointer>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/WindowSystem.h"
#include "platform/linux/X11CompositorWatch.h"
#include "platform/linux/X11Connection.h"
#include "platform/linux/X11MouseWatch.h"

class QWindow;

namespace notlet {

class X11UserTime;

/// What the program asks of the X server and the window manager. Windows are those of Qt. Must go before the
/// application object.
class X11WindowSystem final : public WindowSystem, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  X11WindowSystem(const X11Connection& connection, X11UserTime& userTime);
  ~X11WindowSystem() override;

  [[nodiscard]] bool hasCompositor() const override;
  [[nodiscard]] bool takesShadows() const override { return hasCompositor(); }
  /// The window gets the keyboard after the window manager has agreed. When nobody noted what time the user
  /// acted at, it is now. Without a window manager the keyboard goes back to where it was when the window
  /// goes.
  void activate(WindowID id) override;
  void noteActivationToken(const std::string& token) override;
  void putOnAllWorkspaces(WindowID id) override;
  void setShadow(WindowID id, const QMargins& shadow, const QRegion& body) override;
  void setFrameTone(WindowID id, FrameTone tone) override;
  void watchMouse(bool watched) override;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  struct Atoms {
    xcb_atom_t activeWindow;
    xcb_atom_t desktop;
    xcb_atom_t state;
    std::array<std::uint32_t, 3> stickyStates;
    xcb_atom_t above;
    xcb_atom_t supported;
    xcb_atom_t askedForTime;
    xcb_atom_t frameExtents;
    xcb_atom_t gtkVariant;
    xcb_atom_t kdeColors;
    xcb_atom_t utf8;
  };

  [[nodiscard]] static Atoms atomsOf(const X11Connection& connection);
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
  void windowShown(xcb_window_t shown) const;
  void propertyChanged(const xcb_property_notify_event_t& change);
  void followFocus();
  void activateAt(xcb_window_t window, xcb_timestamp_t time);
  void takeKeyboard(xcb_window_t window, xcb_timestamp_t time);
  void giveKeyboardBack(xcb_window_t window);
  void hintAllWorkspaces(xcb_window_t window) const;

  X11Connection m_connection;
  X11UserTime& m_userTime;
  Atoms m_atoms;
  X11CompositorWatch m_compositorWatch;
  X11MouseWatch m_mouseWatch;
  /// Whether the window manager takes requests to activate windows; unknown when another one has come.
  std::optional<bool> m_managerActivates;
  std::vector<QPointer<QWindow>> m_onAllWorkspaces;
  /// Windows that are to be activated when the server has told the time.
  std::vector<xcb_window_t> m_waitingForTime;
  /// What had the keyboard before each of the windows that took it without a window manager.
  std::map<xcb_window_t, xcb_window_t> m_keyboardBefore;
};

} // namespace notlet
