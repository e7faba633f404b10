#include <QApplication>
#include <gmock/gmock.h>

#include "support/TestDisplay.h"

// These tests ask a real X server with a window manager.
int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  notlet::testDisplay().startWindowManager();
  qputenv("QT_QPA_PLATFORM", "xcb");
  qunsetenv("WAYLAND_DISPLAY");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
