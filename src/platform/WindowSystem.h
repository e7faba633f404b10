#pragma once

#include <QMargins>
#include <QObject>
#include <QPoint>
#include <cstdint>
#include <string>

class QRegion;

namespace notlet {

/// What Qt's `QWidget::winId()` gives.
using WindowID = std::uintptr_t;

/// The look of the frame that the desktop draws around a window.
enum class FrameTone {
  /// As the desktop has it.
  desktop,
  light,
  dark,
};

/// What the program asks of the window system beyond what Qt offers.
class WindowSystem : public QObject {
  Q_OBJECT

 public:
  /// Whether windows may be translucent.
  [[nodiscard]] virtual bool hasCompositor() const = 0;
  /// Whether a translucent window may have a shadow around what counts as the window.
  [[nodiscard]] virtual bool takesShadows() const = 0;
  /// Gives the keyboard to a window that is shown, as an answer to what the user did last, so that the window
  /// manager has no reason to refuse.
  virtual void activate(WindowID window) = 0;
  /// Takes what the desktop gave to a start of the program (LaunchRequest::activationToken), for the next
  /// activate(). Anything else in it is ignored.
  virtual void noteActivationToken(const std::string& token) = 0;
  /// Has the window on every workspace and in no task list. To be called before the window is first shown.
  virtual void putOnAllWorkspaces(WindowID window) = 0;
  /// Tells that so much at the edges of the window is shadow. Only the body, in the window's coordinates,
  /// takes the mouse; without a body all of it does.
  virtual void setShadow(WindowID window, const QMargins& shadow, const QRegion& body) = 0;
  /// Asks for a frame that suits what the window shows.
  virtual void setFrameTone(WindowID window, FrameTone tone) = 0;
  /// Whether mousePressed() tells of presses of a mouse button anywhere on the desktop.
  virtual void watchMouse(bool watched) = 0;

 Q_SIGNALS:
  void compositorChanged();
  /// In Qt's screen coordinates. Nobody is kept from getting the press.
  void mousePressed(const QPoint& position);
};

} // namespace notlet
