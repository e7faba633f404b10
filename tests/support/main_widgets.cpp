#include <QApplication>
#include <gmock/gmock.h>

// Views are tested without a display; the journeys go through a real one.
int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
