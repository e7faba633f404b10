// The floor for every figure about windows: a window with a text field and nothing else.

#include <QApplication>
#include <QPlainTextEdit>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QPlainTextEdit window;
  window.setWindowTitle(QStringLiteral("Empty window"));
  window.resize(840, 600);
  window.show();
  return QApplication::exec();
}
