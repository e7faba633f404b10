#include "shell/ui/MainWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>
#include <QWindow>

#include "shell/ui/PlacementScreens.h"
#include "widgets/ScreenRoom.h"

namespace notlet {

namespace {

constexpr QSize defaultSize{840, 600};

} // namespace

MainWindow::MainWindow(AppSettings& settings, QWidget* content) : m_notice(new NoticeBar) {
  setWindowTitle(QStringLiteral("Notlet"));
  resize(defaultSize.boundedTo(roomOnScreen(*this)));
  auto* framed = new QWidget;
  auto* rows = new QVBoxLayout(framed);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(0);
  rows->addWidget(m_notice);
  rows->addWidget(content, 1);
  connect(m_notice, &NoticeBar::dismissed, this, &MainWindow::noticeDismissed);
  setCentralWidget(new AppThemeContainer(settings, framed));
}

void MainWindow::setNotice(const QString& text) {
  m_notice->setText(text);
}

void MainWindow::reveal() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  // The window manager places a window anew that comes back without a wish of its own. Setting the same place
  // makes it one.
  if (!isVisible() && windowHandle())
    windowHandle()->setGeometry(geometryWithinReach());
  show();
  raise();
}

void MainWindow::keepWithinReach() {
  // The window manager places one that fills the screen.
  if (isVisible() && windowState() == Qt::WindowNoState && geometryWithinReach() != geometry())
    setGeometry(geometryWithinReach());
}

QRect MainWindow::geometryWithinReach() const {
  const QMargins margins = windowHandle()->frameMargins();
  return frameWithinReach(windowHandle()->geometry() + margins, placementScreens()) - margins;
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  Q_EMIT closeRequested();
}

} // namespace notlet
