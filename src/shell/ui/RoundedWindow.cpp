#include "shell/ui/RoundedWindow.h"

#include <QBitmap>
#include <QCloseEvent>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/ui/WindowShadow.h"
#include "widgets/Motion.h"

namespace notlet {

namespace {

/// How much wider than the shape the window is cut when smooth edges must not be.
constexpr double roomForSmoothEdges = 4;

/// The pixels of a window that lie in the shape for their better half.
QBitmap maskOf(QSize window, const QRectF& shape, double radius) {
  QImage coverage(window, QImage::Format_ARGB32_Premultiplied);
  coverage.fill(Qt::transparent);
  QPainter painter(&coverage);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::black);
  painter.drawRoundedRect(shape, radius, radius);
  painter.end();
  return QBitmap::fromImage(coverage.createAlphaMask(Qt::ThresholdDither));
}

QRectF between(const QRectF& from, const QRectF& to, double progress) {
  const auto mix = [progress](const QPointF& start, const QPointF& end) {
    return start + (end - start) * progress;
  };
  return {mix(from.topLeft(), to.topLeft()), mix(from.bottomRight(), to.bottomRight())};
}

} // namespace

RoundedWindow::RoundedWindow(AppSettings& settings, WindowSystem& windowSystem, QWidget* content,
                             const Shape& shape, Qt::WindowFlags flags)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::NoDropShadowWindowHint | flags),
      m_windowSystem(windowSystem),
      m_container(new AppThemeContainer(settings, content)),
      m_shape(shape) {
  setAttribute(Qt::WA_TranslucentBackground, m_shape.staysUp || m_windowSystem.hasCompositor());
  // It paints all of itself.
  setAttribute(Qt::WA_NoSystemBackground);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(m_container);
  limitTo(*content);
  // The window paints the ground in its own shape.
  m_container->setAutoFillBackground(false);
  m_container->installEventFilter(this);
  fitShadow();
  connect(&m_windowSystem, &WindowSystem::compositorChanged, this, &RoundedWindow::followCompositor);

  m_opening.setStartValue(0.0);
  m_opening.setEndValue(1.0);
  m_opening.setEasingCurve(Motion::curve());
  connect(&m_opening, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& progress) { applyOpening(progress.toDouble()); });
  connect(&m_opening, &QVariantAnimation::finished, this, &RoundedWindow::applyShape);
}

void RoundedWindow::limitTo(const QWidget& content) {
  m_container->setMaximumSize(content.maximumSize());
}

void RoundedWindow::setBodySize(const QSize& size) {
  m_bodySize = size;
  setFixedSize(size.grownBy(layout()->contentsMargins()));
}

QRect RoundedWindow::body() const {
  return geometry() - layout()->contentsMargins();
}

void RoundedWindow::moveBody(const QPoint& upperLeft) {
  const QMargins shadow = layout()->contentsMargins();
  move(upperLeft - QPoint(shadow.left(), shadow.top()));
}

void RoundedWindow::prepare() {
  ensurePolished();
  adjustSize();
  winId();
  applyShape();
  // Painted once unseen, so that fonts, symbols and layouts are ready.
  [[maybe_unused]] const QPixmap picture = grab();
}

// Where the layout puts the content: some window managers make small windows larger than they want to be.
QRect RoundedWindow::area() const {
  const QRect room = rect() - layout()->contentsMargins();
  QRect area(room.topLeft(), m_container->maximumSize().boundedTo(room.size()));
  area.moveTop(room.top() + (room.height() - area.height()) / 2);
  return QStyle::visualRect(layoutDirection(), room, area);
}

void RoundedWindow::openFrom(const QRect& place) {
  const auto duration = Motion::duration(this);
  m_openingStart = place.translated(-pos()).intersected(area());
  if (duration.count() == 0 || m_openingStart.isEmpty())
    return;
  applyOpening(0);
  m_opening.setDuration(static_cast<int>(duration.count()));
  m_opening.start();
}

void RoundedWindow::applyOpening(double progress) {
  const QRectF opened = between(m_openingStart, hasShadow() ? rect() : area(), progress);
  const double radius = std::min({m_shape.radius, opened.width() / 2, opened.height() / 2});
  setMask(maskOf(size(), opened, radius));
}

bool RoundedWindow::hasSmoothEdges() const {
  return m_windowSystem.hasCompositor() && testAttribute(Qt::WA_TranslucentBackground);
}

bool RoundedWindow::hasShadow() const {
  return hasSmoothEdges() && m_windowSystem.takesShadows();
}

void RoundedWindow::fitShadow() {
  const QMargins shadow = hasShadow() ? WindowShadow::room : QMargins();
  if (shadow == layout()->contentsMargins())
    return;
  const QPoint upperLeft = body().topLeft();
  layout()->setContentsMargins(shadow);
  if (m_bodySize.isNull())
    return;
  setBodySize(m_bodySize);
  moveBody(upperLeft);
}

void RoundedWindow::followCompositor() {
  fitSurface();
  fitShadow();
  applyShape();
}

// Whether a window has an alpha channel is decided when the desktop's window is made.
void RoundedWindow::fitSurface() {
  const bool suits = m_shape.staysUp || m_windowSystem.hasCompositor();
  if (isVisible() || suits == testAttribute(Qt::WA_TranslucentBackground))
    return;
  const bool isMade = testAttribute(Qt::WA_WState_Created);
  destroy();
  setAttribute(Qt::WA_TranslucentBackground, suits);
  if (isMade)
    create();
}

void RoundedWindow::applyShape() {
  if (m_opening.state() == QAbstractAnimation::Running)
    return;
  const double inset = m_shape.inset;
  const QBitmap body = maskOf(size(), QRectF(area()).adjusted(inset, inset, -inset, -inset), m_shape.radius);
  if (hasShadow())
    clearMask();
  else if (hasSmoothEdges())
    setMask(maskOf(size(), area(), std::max(0.0, m_shape.radius - roomForSmoothEdges)));
  else
    setMask(body);
  if (internalWinId() != 0)
    m_windowSystem.setShadow(internalWinId(), layout()->contentsMargins(), hasShadow() ? body : QRegion());
  update();
}

bool RoundedWindow::event(QEvent* event) {
  // The desktop's window is made anew, and knows nothing.
  if (event->type() == QEvent::WinIdChange)
    applyShape();
  return QWidget::event(event);
}

bool RoundedWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_container && event->type() == QEvent::PaletteChange)
    update();
  return QWidget::eventFilter(watched, event);
}

void RoundedWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  applyShape();
}

void RoundedWindow::hideEvent(QHideEvent* event) {
  if (m_opening.state() == QAbstractAnimation::Running) {
    m_opening.stop();
    applyShape();
  }
  QWidget::hideEvent(event);
  // Later: the window is still on its way out.
  QMetaObject::invokeMethod(this, &RoundedWindow::followCompositor, Qt::QueuedConnection);
}

void RoundedWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  Q_EMIT closedByDesktop();
}

void RoundedWindow::paintEvent(QPaintEvent*) {
  constexpr double lineWidth = 1;
  const QPalette& colors = m_container->palette();
  QPainter painter(this);
  // Where the mask cuts, nothing needs to be smooth, and a plain rectangle is the quickest to fill.
  const bool isCutOut = !hasSmoothEdges();
  if (isCutOut)
    painter.fillRect(rect(), colors.color(m_shape.ground));
  if (hasShadow())
    paintShadow(painter);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colors.color(ThemeRole::outline), lineWidth));
  painter.setBrush(isCutOut ? QBrush() : colors.brush(m_shape.ground));
  const double inset = m_shape.inset + lineWidth / 2;
  const double radius = m_shape.radius - lineWidth / 2;
  painter.drawRoundedRect(QRectF(area()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

void RoundedWindow::paintShadow(QPainter& painter) {
  const double ratio = devicePixelRatioF();
  if (m_shadow.size() != (QSizeF(size()) * ratio).toSize()) {
    const double inset = m_shape.inset;
    m_shadow = WindowShadow::picture(size(), QRectF(area()).adjusted(inset, inset, -inset, -inset),
                                     m_shape.radius, ratio);
  }
  painter.drawPixmap(0, 0, m_shadow);
}

} // namespace notlet
