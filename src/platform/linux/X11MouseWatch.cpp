#include "platform/linux/X11MouseWatch.h"

#include <xcb/xinput.h>

#include <QCoreApplication>
#include <QCursor>

namespace notlet {

namespace {

// Turning a wheel comes as presses of these.
constexpr std::uint32_t firstWheelButton = 4;
constexpr std::uint32_t lastWheelButton = 7;

/// One mask of events for one group of devices, as the server reads it.
struct EventSelection {
  xcb_input_event_mask_t head;
  std::uint32_t mask;
};

} // namespace

X11MouseWatch::X11MouseWatch(const X11Connection& connection) : m_connection(connection) {
}

X11MouseWatch::~X11MouseWatch() {
  setOn(false);
}

bool X11MouseWatch::isPossible(const X11Connection& connection) {
  const auto* input = xcb_get_extension_data(connection.handle, &xcb_input_id);
  return input != nullptr && input->present != 0;
}

// Qt has told the server which version of the extension the program knows.
void X11MouseWatch::setOn(bool isOn) {
  if (isOn == m_isOn || !isPossible(m_connection))
    return;
  m_isOn = isOn;
  constexpr std::uint32_t rawPresses = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
  const std::uint32_t events = isOn ? rawPresses : 0;
  const EventSelection selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};
  xcb_input_xi_select_events(m_connection.handle, m_connection.root, 1, &selection.head);
  xcb_flush(m_connection.handle);
  if (isOn)
    qApp->installNativeEventFilter(this);
  else
    qApp->removeNativeEventFilter(this);
}

bool X11MouseWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
  if (type != "xcb_generic_event_t")
    return false;
  const auto& event = *static_cast<const xcb_generic_event_t*>(message);
  if (eventType(event) != XCB_GE_GENERIC)
    return false;
  const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  const bool isWheel = press.detail >= firstWheelButton && press.detail <= lastWheelButton;
  if (press.extension != xcb_get_extension_data(m_connection.handle, &xcb_input_id)->major_opcode ||
      press.event_type != XCB_INPUT_RAW_BUTTON_PRESS || isWheel)
    return false;
  // Raw events come without a place; this asks the server for it. Whoever hears of the press may well close
  // windows, for which the midst of an event is no good time.
  const auto tell = [this, position = QCursor::pos()] {
    if (m_isOn)
      Q_EMIT pressed(position);
  };
  QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
  return false;
}

} // namespace notlet
