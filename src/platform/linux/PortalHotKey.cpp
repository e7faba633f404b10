#include "platform/linux/PortalHotKey.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QTimer>

#include "platform/linux/PortalDesktop.h"
#include "platform/linux/PortalRequest.h"

namespace notlet {

/// One shortcut as the portal wants it: `(sa{sv})`.
struct PortalShortcut {
  QString id;
  QVariantMap properties;
};

static QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
  argument.beginStructure();
  argument << shortcut.id << shortcut.properties;
  argument.endStructure();
  return argument;
}

static const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
  argument.beginStructure();
  argument >> shortcut.id >> shortcut.properties;
  argument.endStructure();
  return argument; // NOLINT(bugprone-return-const-ref-from-parameter): the form that Qt asks for.
}

namespace {

const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");
const QString activatedSignal = QStringLiteral("Activated");
const QString closedSignal = QStringLiteral("Closed");
// Always the same, because desktops keep what the user chose under it.
const QString sessionToken = QStringLiteral("notlet");
const QString shortcutId = QStringLiteral("quick-notlet");
// Of later portals.
const QString activationTokenOption = QStringLiteral("activation_token");

QVariant shortcuts() {
  qDBusRegisterMetaType<PortalShortcut>();
  qDBusRegisterMetaType<QList<PortalShortcut>>();
  return QVariant::fromValue(QList<PortalShortcut>{
      {shortcutId,
       {{QStringLiteral("description"), QStringLiteral("Quick Notlet")},
        {QStringLiteral("preferred_trigger"), QStringLiteral("CTRL+LOGO+j")}}},
  });
}

/// A string by the portal's documents, an object path by some portals.
QString pathOf(const QVariant& value) {
  if (value.canConvert<QDBusObjectPath>())
    return value.value<QDBusObjectPath>().path();
  return value.toString();
}

} // namespace

PortalHotKey::PortalHotKey(BusSource bus, std::chrono::milliseconds patience)
    : m_bus(std::move(bus)), m_patience(patience) {
}

PortalHotKey::~PortalHotKey() {
  uninstall();
}

void PortalHotKey::install() {
  if (m_watcher)
    return;
  QDBusConnection bus = m_bus();
  if (!bus.isConnected())
    return fail();
  m_watcher = std::make_unique<QDBusServiceWatcher>(PortalDesktop::service, bus,
                                                    QDBusServiceWatcher::WatchForOwnerChange);
  connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString& oldOwner, const QString& newOwner) {
            portalChanged(oldOwner, newOwner);
          });
  m_session = PortalDesktop::handlePath(bus, QStringLiteral("session"), sessionToken);
  listen(bus);
  createSession();
}

void PortalHotKey::uninstall() {
  if (!m_watcher)
    return;
  m_watcher.reset();
  forget();
  QDBusConnection bus = m_bus();
  stopListening(bus);
  bus.asyncCall(QDBusMessage::createMethodCall(PortalDesktop::service, m_session, sessionInterface,
                                               QStringLiteral("Close")));
}

void PortalHotKey::listen(QDBusConnection& bus) {
  // Qt knows the types of a slot by name, and only those that somebody has registered.
  qRegisterMetaType<QDBusObjectPath>();
  // No service is named: Qt would ask the bus for its owner and wait for the answer.
  bus.connect({}, PortalDesktop::path, shortcutsInterface, activatedSignal, this,
              SLOT(activate(QDBusObjectPath, QString, qulonglong, QVariantMap)));
  bus.connect({}, m_session, sessionInterface, closedSignal, this, SLOT(sessionLost()));
  listenForLoss(bus, this, SLOT(sessionLost()));
}

void PortalHotKey::stopListening(QDBusConnection& bus) {
  bus.disconnect({}, PortalDesktop::path, shortcutsInterface, activatedSignal, this,
                 SLOT(activate(QDBusObjectPath, QString, qulonglong, QVariantMap)));
  bus.disconnect({}, m_session, sessionInterface, closedSignal, this, SLOT(sessionLost()));
}

void PortalHotKey::portalChanged(const QString& oldOwner, const QString& newOwner) {
  const bool isLost = std::exchange(m_isInstalled, false);
  if (!oldOwner.isEmpty())
    forget();
  if (newOwner.isEmpty()) {
    // Nobody may ever start it again unless it is called.
    if (isLost)
      QTimer::singleShot(m_patience, m_watcher.get(), [this] {
        if (!m_request && !m_isInstalled)
          createSession();
      });
    return;
  }
  // It may be there because our own call has started it; or just too late for that call.
  m_portalIsNew = m_request != nullptr;
  if (!m_request)
    createSession();
}

void PortalHotKey::createSession() {
  const QDBusConnection bus = m_bus();
  PortalDesktop::introduce(bus);
  m_request = std::make_unique<PortalRequest>(bus, this);
  connect(m_request.get(), &PortalRequest::granted, this, [this](const QVariantMap& results) {
    bind(pathOf(results.value(QStringLiteral("session_handle"))));
  });
  connect(m_request.get(), &PortalRequest::refused, this, &PortalHotKey::sessionRefused);
  // Some desktops read the shortcuts here, others when they are bound.
  const QVariantMap options = {{QStringLiteral("handle_token"), m_request->token()},
                               {QStringLiteral("session_handle_token"), sessionToken},
                               {QStringLiteral("shortcuts"), shortcuts()}};
  m_request->send(PortalDesktop::call(shortcutsInterface, QStringLiteral("CreateSession")) << options);
}

void PortalHotKey::sessionRefused() {
  if (!std::exchange(m_portalIsNew, false))
    return fail();
  dropRequest();
  createSession();
}

void PortalHotKey::bind(const QString& session) {
  if (session != m_session)
    return fail();
  dropRequest();
  m_request = std::make_unique<PortalRequest>(m_bus(), this);
  connect(m_request.get(), &PortalRequest::granted, this, [this] {
    dropRequest();
    m_isInstalled = true;
    Q_EMIT installed();
  });
  connect(m_request.get(), &PortalRequest::refused, this, &PortalHotKey::fail);
  const QString noParentWindow;
  const QVariantMap options = {{QStringLiteral("handle_token"), m_request->token()}};
  m_request->send(PortalDesktop::call(shortcutsInterface, QStringLiteral("BindShortcuts"))
                  << QVariant::fromValue(QDBusObjectPath(session)) << shortcuts() << noParentWindow
                  << options);
}

void PortalHotKey::activate(const QDBusObjectPath& session, const QString& shortcut, qulonglong,
                            const QVariantMap& options) {
  if (session.path() != m_session || shortcut != shortcutId)
    return;
  const QString token = options.value(activationTokenOption).toString();
  if (!token.isEmpty())
    Q_EMIT activationTokenGiven(token.toStdString());
  Q_EMIT pressed();
}

void PortalHotKey::sessionLost() {
  if (m_watcher)
    fail();
}

void PortalHotKey::forget() {
  m_portalIsNew = false;
  m_isInstalled = false;
  dropRequest();
}

void PortalHotKey::dropRequest() {
  if (!m_request)
    return;
  m_request->disconnect(this);
  m_request.release()->deleteLater(); // It may be the caller.
}

void PortalHotKey::fail() {
  forget();
  Q_EMIT failed(Failure::notInstalled);
}

} // namespace notlet
