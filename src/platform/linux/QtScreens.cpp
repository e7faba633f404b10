#include "platform/linux/QtScreens.h"

#include <QCryptographicHash>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "platform/linux/X11ScreenWatch.h"

namespace notlet {

namespace {

/// A digest of the texts that fits 48 bits and is never 0.
std::int64_t numberOf(const QStringList& texts) {
  constexpr int usedBytes = 6;
  const QByteArray digest =
      QCryptographicHash::hash(texts.join(QChar::Null).toUtf8(), QCryptographicHash::Sha256);
  std::int64_t number = 0;
  for (int index = 0; index < usedBytes; ++index)
    number = number << 8 | static_cast<unsigned char>(digest[index]);
  return std::max<std::int64_t>(number, 1);
}

std::int64_t numberBySerial(const MonitorName& monitor) {
  return numberOf({QStringLiteral("serial"), monitor.manufacturer, monitor.model, monitor.serialNumber});
}

std::int64_t numberByConnector(const MonitorName& monitor) {
  return numberOf({QStringLiteral("connector"), monitor.manufacturer, monitor.model, monitor.serialNumber,
                   monitor.connector});
}

QPoint lowerLeft(const QRect& rect) {
  return {rect.x(), rect.y() + rect.height()};
}

} // namespace

std::vector<std::int64_t> displayIDs(std::span<const MonitorName> monitors) {
  std::vector<std::int64_t> numbers;
  for (const MonitorName& monitor : monitors) {
    std::int64_t number =
        monitor.serialNumber.isEmpty() ? numberByConnector(monitor) : numberBySerial(monitor);
    if (std::ranges::find(numbers, number) != numbers.end())
      number = numberByConnector(monitor);
    while (std::ranges::find(numbers, number) != numbers.end())
      ++number;
    numbers.push_back(number);
  }
  return numbers;
}

QRectF UpwardCoordinates::fromQt(const QRect& rect) const {
  return QRectF(rect.x() - m_origin.x(), m_origin.y() - rect.y() - rect.height(), rect.width(),
                rect.height());
}

QRect UpwardCoordinates::toQt(const QRectF& rect) const {
  return {qRound(rect.x()) + m_origin.x(), m_origin.y() - qRound(rect.y() + rect.height()),
          qRound(rect.width()), qRound(rect.height())};
}

QtScreens::QtScreens() {
  if (const auto connection = X11Connection::ofApplication()) {
    m_x11 = std::make_unique<X11ScreenWatch>(*connection);
    connect(m_x11.get(), &X11ScreenWatch::changing, this, &QtScreens::scheduleChanged);
  }
  for (QScreen* screen : QGuiApplication::screens())
    watch(screen);
  connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
    watch(screen);
    scheduleChanged();
  });
  connect(qGuiApp, &QGuiApplication::screenRemoved, this, &QtScreens::scheduleChanged);
  connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &QtScreens::scheduleChanged);
}

QtScreens::~QtScreens() = default;

void QtScreens::watch(QScreen* screen) {
  connect(screen, &QScreen::geometryChanged, this, &QtScreens::scheduleChanged);
  connect(screen, &QScreen::availableGeometryChanged, this, &QtScreens::scheduleChanged);
  // The device pixel ratio has no signal of its own and follows these.
  connect(screen, &QScreen::logicalDotsPerInchChanged, this, &QtScreens::scheduleChanged);
  connect(screen, &QScreen::physicalDotsPerInchChanged, this, &QtScreens::scheduleChanged);
}

// One change of the monitors comes as many signals, and windows are moved only after them.
void QtScreens::scheduleChanged() {
  if (std::exchange(m_isChangeScheduled, true))
    return;
  const auto tell = [this] {
    m_isChangeScheduled = false;
    Q_EMIT changed();
  };
  QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

// On other window systems the stand-in has neither name nor size.
bool QtScreens::isStandIn(const QScreen& screen) const {
  return screen.name().isEmpty() || screen.geometry().isEmpty() || (m_x11 && m_x11->isStandIn(screen));
}

QList<QScreen*> QtScreens::realScreens() const {
  QList<QScreen*> screens = QGuiApplication::screens();
  screens.removeIf([this](const QScreen* screen) { return isStandIn(*screen); });
  return screens;
}

UpwardCoordinates QtScreens::coordinates() const {
  const QScreen* main = QGuiApplication::primaryScreen();
  return UpwardCoordinates(main == nullptr || isStandIn(*main) ? QPoint() : lowerLeft(main->geometry()));
}

std::vector<ScreenArea> QtScreens::all() const {
  const QList<QScreen*> screens = realScreens();
  std::vector<MonitorName> names;
  for (const QScreen* screen : screens)
    names.push_back({screen->manufacturer(), screen->model(), screen->serialNumber(), screen->name()});
  const auto numbers = displayIDs(names);
  std::vector<ScreenArea> areas;
  for (const QScreen* screen : screens)
    areas.push_back({numbers[areas.size()], fromQt(screen->geometry()), fromQt(screen->availableGeometry())});
  return areas;
}

std::optional<ScreenArea> QtScreens::main() const {
  const auto index = realScreens().indexOf(QGuiApplication::primaryScreen());
  if (index < 0)
    return std::nullopt;
  return all()[static_cast<std::size_t>(index)];
}

QRect QtScreens::toQt(const QRectF& rect) const {
  return coordinates().toQt(rect);
}

QRectF QtScreens::fromQt(const QRect& rect) const {
  return coordinates().fromQt(rect);
}

} // namespace notlet
