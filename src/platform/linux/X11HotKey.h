#pragma once

#include <QAbstractNativeEventFilter>
#include <optional>

#include "platform/GlobalHotKey.h"
#include "platform/linux/X11Connection.h"
#include "platform/linux/X11KeyBinding.h"

namespace notlet {

class X11UserTime;

/// The hot key as a passive grab on the X server. It follows changes of the keyboard layout, and holding the
/// keys counts as one press. Must go before the application object.
class X11HotKey final : public GlobalHotKey, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  /// `userTime` learns when the key was pressed before pressed() comes.
  explicit X11HotKey(X11UserTime& userTime);
  ~X11HotKey() override;

  /// Answers at once. On failure nothing stays grabbed, but the next change of the layout tries again.
  void install() override;
  void retry() override;
  void uninstall() override;

 private:
  enum class Grab { obtained, taken, impossible };

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
  void keyPressed(const xcb_key_press_event_t& event);
  void keyReleased(const xcb_key_release_event_t& event);
  void scheduleFollowing();
  void followLayout();
  Grab obtain(const X11KeyBinding& binding);
  [[nodiscard]] Grab grab(const X11KeyBinding& binding) const;
  void release();
  void ungrab(const X11KeyBinding& binding) const;

  X11UserTime& m_userTime;
  /// Without a handle when there is no X server.
  X11Connection m_connection;
  bool m_isInstalled = false;
  bool m_isFollowingScheduled = false;
  std::optional<X11KeyBinding> m_askedFor;
  /// Without a key when nothing is.
  X11KeyBinding m_grabbed;

  bool m_isHeld = false;
  xcb_timestamp_t m_lastEventTime = 0;
};

} // namespace notlet
