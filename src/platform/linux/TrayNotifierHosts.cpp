#include "platform/linux/TrayNotifierHosts.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace notlet {

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

} // namespace

TrayNotifierHosts::TrayNotifierHosts(BusSource bus, QObject* parent)
    : QObject(parent), m_bus(std::move(bus)) {
}

TrayNotifierHosts::~TrayNotifierHosts() = default;

void TrayNotifierHosts::start() {
  QDBusConnection bus = m_bus();
  if (!bus.isConnected())
    return setPresence(Presence::none);
  m_watcher =
      std::make_unique<QDBusServiceWatcher>(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange);
  connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
    // Another watcher knows nothing of the icon that the last one knew.
    setPresence(Presence::unknown);
    ask();
  });
  // No service is named: Qt would ask the bus for its owner and wait for the answer.
  for (const char* name : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
    bus.connect({}, watcherPath, watcherService, QLatin1String(name), this, SLOT(ask()));
  listenForLoss(bus, this, SLOT(busLost()));
  ask();
}

void TrayNotifierHosts::ask() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
  call.setAutoStartService(false);
  m_question = std::make_unique<QDBusPendingCallWatcher>(m_bus().asyncCall(call));
  connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, [this] { take(*m_question); });
}

void TrayNotifierHosts::take(const QDBusPendingCallWatcher& reply) {
  const QDBusPendingReply<QVariant> answer = reply;
  if (answer.isError())
    setPresence(Presence::none);
  else
    setPresence(answer.value().toBool() ? Presence::host : Presence::watcherWithoutHost);
}

void TrayNotifierHosts::busLost() {
  m_question.reset();
  setPresence(Presence::none);
}

void TrayNotifierHosts::setPresence(Presence presence) {
  if (std::exchange(m_presence, presence) != presence)
    Q_EMIT changed();
}

} // namespace notlet
