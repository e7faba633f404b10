#include "platform/linux/PortalRequest.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include "platform/linux/PortalDesktop.h"

namespace notlet {

namespace {

const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString responseSignal = QStringLiteral("Response");

QString freshToken() {
  static int count = 0;
  return QStringLiteral("notlet%1").arg(++count);
}

} // namespace

PortalRequest::PortalRequest(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_bus(bus), m_token(freshToken()) {
  // The answer may overtake the reply that names its path, so the path is computed.
  listenAt(PortalDesktop::handlePath(m_bus, QStringLiteral("request"), m_token));
}

PortalRequest::~PortalRequest() {
  listenAt({});
}

void PortalRequest::send(const QDBusMessage& call) {
  auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    watcher->deleteLater();
    const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
    if (reply.isError())
      refuse();
    else if (reply.value().path() != m_path)
      listenAt(reply.value().path()); // Portals of old make paths of their own.
  });
}

// No service is named: Qt would ask the bus for its owner and wait for the answer.
void PortalRequest::listenAt(const QString& path) {
  if (!m_path.isEmpty())
    m_bus.disconnect({}, m_path, requestInterface, responseSignal, this, SLOT(respond(uint, QVariantMap)));
  m_path = path;
  if (!m_path.isEmpty())
    m_bus.connect({}, m_path, requestInterface, responseSignal, this, SLOT(respond(uint, QVariantMap)));
}

void PortalRequest::respond(uint code, const QVariantMap& results) {
  if (code != 0)
    return refuse();
  if (std::exchange(m_isAnswered, true))
    return;
  Q_EMIT granted(results);
}

void PortalRequest::refuse() {
  if (std::exchange(m_isAnswered, true))
    return;
  Q_EMIT refused();
}

} // namespace notlet
