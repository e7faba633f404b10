#include "platform/linux/X11HotKey.h"

#include <QCoreApplication>
#include <utility>

#include "platform/linux/X11Keymap.h"
#include "platform/linux/X11UserTime.h"

namespace notlet {

namespace {

/// A held key repeats sooner than this, in milliseconds: later, its release must have been missed.
constexpr xcb_timestamp_t longestRepeat = 3000;

} // namespace

X11HotKey::X11HotKey(X11UserTime& userTime)
    : m_userTime(userTime), m_connection(X11Connection::ofApplication().value_or(X11Connection{})) {
}

X11HotKey::~X11HotKey() {
  uninstall();
}

void X11HotKey::install() {
  if (m_isInstalled)
    return;
  if (m_connection.handle == nullptr) {
    Q_EMIT failed(Failure::notInstalled);
    return;
  }
  m_isInstalled = true;
  qApp->installNativeEventFilter(this);
  followLayout();
}

void X11HotKey::retry() {
  if (m_askedFor && m_grabbed.key == 0)
    obtain(*m_askedFor);
}

void X11HotKey::uninstall() {
  if (!std::exchange(m_isInstalled, false))
    return;
  qApp->removeNativeEventFilter(this);
  release();
  m_askedFor.reset();
}

// False in any case: Qt then takes the time of the key for the user's last action, which it tells the window
// manager with the next window that it shows.
bool X11HotKey::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
  if (type != "xcb_generic_event_t")
    return false;
  const auto& event = *static_cast<const xcb_generic_event_t*>(message);
  switch (eventType(event)) {
  case XCB_KEY_PRESS:
    keyPressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
    break;
  case XCB_KEY_RELEASE:
    keyReleased(reinterpret_cast<const xcb_key_release_event_t&>(event));
    break;
  default:
    if (X11Keymap::isChange(m_connection, event) || X11Keymap::isOtherLayout(m_connection, event))
      scheduleFollowing();
  }
  return false;
}

// A held key may repeat as presses alone or as pairs of a release and a press at the same time.
void X11HotKey::keyPressed(const xcb_key_press_event_t& event) {
  if (event.event != m_connection.root || event.detail != m_grabbed.key)
    return;
  const xcb_timestamp_t sinceLast = event.time - std::exchange(m_lastEventTime, event.time);
  const bool repeats = m_isHeld ? sinceLast < longestRepeat : sinceLast == 0;
  m_isHeld = true;
  if (repeats)
    return;
  m_userTime.note(event.time);
  // Only after Qt has seen the event, too.
  QMetaObject::invokeMethod(this, &GlobalHotKey::pressed, Qt::QueuedConnection);
}

void X11HotKey::keyReleased(const xcb_key_release_event_t& event) {
  if (event.event != m_connection.root || event.detail != m_grabbed.key)
    return;
  m_isHeld = false;
  m_lastEventTime = event.time;
}

// One change comes as a flurry of events.
void X11HotKey::scheduleFollowing() {
  if (std::exchange(m_isFollowingScheduled, true))
    return;
  const auto follow = [this] {
    m_isFollowingScheduled = false;
    if (m_isInstalled)
      followLayout();
  };
  QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
}

void X11HotKey::followLayout() {
  const X11KeyBinding binding = X11KeyBinding::find(m_connection);
  if (m_askedFor == binding)
    return;
  release();
  m_askedFor = binding;
  const Grab result = obtain(binding);
  if (result != Grab::obtained)
    Q_EMIT failed(result == Grab::taken ? Failure::taken : Failure::notInstalled);
}

X11HotKey::Grab X11HotKey::obtain(const X11KeyBinding& binding) {
  const Grab result = grab(binding);
  if (result == Grab::obtained) {
    m_grabbed = binding;
    Q_EMIT installed();
  }
  return result;
}

X11HotKey::Grab X11HotKey::grab(const X11KeyBinding& binding) const {
  std::vector<xcb_void_cookie_t> asked;
  for (const std::uint16_t modifiers : binding.modifierCombinations())
    asked.push_back(xcb_grab_key_checked(m_connection.handle, 0, m_connection.root, modifiers, binding.key,
                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  Grab result = Grab::obtained;
  for (const auto cookie : asked) {
    const auto error = owned(xcb_request_check(m_connection.handle, cookie));
    if (error)
      result = error->error_code == XCB_ACCESS ? Grab::taken : Grab::impossible;
  }
  if (xcb_connection_has_error(m_connection.handle) != 0)
    return Grab::impossible;
  if (result != Grab::obtained)
    ungrab(binding);
  return result;
}

void X11HotKey::release() {
  m_isHeld = false;
  if (const X11KeyBinding grabbed = std::exchange(m_grabbed, {}); grabbed.key != 0)
    ungrab(grabbed);
}

/// Giving back what was never obtained does nothing.
void X11HotKey::ungrab(const X11KeyBinding& binding) const {
  for (const std::uint16_t modifiers : binding.modifierCombinations())
    xcb_ungrab_key(m_connection.handle, binding.key, m_connection.root, modifiers);
  xcb_flush(m_connection.handle);
}

} // namespace notlet
