// The floor for the hot key: a program that does nothing but wait for Control+Super+J and then shows a window
// with a text field, which it has made in advance.

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QPlainTextEdit>
#include <QtGui/qguiapplication_platform.h>

namespace {

/// As xdotool and every usual keymap have them: J, and Super as the fourth modifier.
constexpr xcb_keycode_t keyJ = 44;
constexpr std::uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

class HotKey : public QAbstractNativeEventFilter {
 public:
  explicit HotKey(QWidget& shown) : m_shown(shown) {
    xcb_connection_t* connection = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    m_root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_grab_key(connection, 1, m_root, modifiers, keyJ, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    qApp->installNativeEventFilter(this);
  }

  bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
    const auto* event = static_cast<xcb_key_press_event_t*>(message);
    if ((event->response_type & 0x7f) == XCB_KEY_PRESS && event->event == m_root && event->detail == keyJ) {
      // Pressed again, it makes room for the next measurement.
      m_shown.setVisible(!m_shown.isVisible());
      m_shown.activateWindow();
    }
    return false;
  }

 private:
  QWidget& m_shown;
  xcb_window_t m_root = XCB_NONE;
};

} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QPlainTextEdit window;
  window.setWindowTitle(QStringLiteral("Empty window"));
  window.resize(840, 600);
  window.show();

  QPlainTextEdit resident;
  resident.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
  resident.setWindowTitle(QStringLiteral("Resident window"));
  resident.resize(380, 260);
  resident.winId();
  HotKey hotKey(resident);
  return QApplication::exec();
}
