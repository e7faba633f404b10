#include "shell/ui/MainWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace notlet {

namespace {

constexpr QSize defaultSize{840, 600};
constexpr QSize smallestSize{360, 420};

} // namespace

MainWindow::MainWindow(AppSettings& settings, QWidget* content) {
  setWindowTitle(QStringLiteral("Notlet"));
  setMinimumSize(smallestSize);
  resize(defaultSize);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(new AppThemeContainer(settings, content));
}

void MainWindow::activate() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  Q_EMIT closed();
}

} // namespace notlet
