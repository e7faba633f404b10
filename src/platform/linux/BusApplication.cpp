#include "platform/linux/BusApplication.h"

#include <QDBusPendingCall>

#include "platform/linux/BusNames.h"

namespace notlet {

namespace {

const QString activationTokenKey = QStringLiteral("activation-token");
const QString startupIdKey = QStringLiteral("desktop-startup-id");

/// The newer of the two names for it comes first.
std::string activationTokenOf(const QVariantMap& platformData) {
  for (const QString& key : {activationTokenKey, startupIdKey}) {
    const QString token = platformData.value(key).toString();
    if (!token.isEmpty())
      return token.toStdString();
  }
  return {};
}

QVariantMap platformDataOf(const LaunchRequest& request) {
  if (request.activationToken.empty())
    return {};
  const QString token = QString::fromStdString(request.activationToken);
  return {{activationTokenKey, token}, {startupIdKey, token}};
}

QDBusMessage callOf(const LaunchRequest& request) {
  const auto call = [](const QString& method) {
    return QDBusMessage::createMethodCall(BusNames::service, BusNames::path, BusNames::applicationInterface,
                                          method);
  };
  const QVariantMap platformData = platformDataOf(request);
  switch (request.kind) {
  case LaunchRequest::Kind::capture:
    return call(QStringLiteral("ActivateAction"))
           << BusNames::captureAction << QVariantList() << platformData;
  case LaunchRequest::Kind::open: {
    QStringList urls;
    for (const std::string& url : request.urls)
      urls << QString::fromStdString(url);
    return call(QStringLiteral("Open")) << urls << platformData;
  }
  case LaunchRequest::Kind::activate:
    break;
  }
  return call(QStringLiteral("Activate")) << platformData;
}

} // namespace

BusApplication::BusApplication(BusSource bus, QObject* parent) : QObject(parent), m_bus(std::move(bus)) {
}

BusApplication::~BusApplication() {
  if (!m_isStarted)
    return;
  QDBusConnection bus = m_bus();
  bus.unregisterObject(BusNames::path);
}

void BusApplication::start() {
  QDBusConnection bus = m_bus();
  if (m_isStarted || !bus.isConnected())
    return;
  m_isStarted = true;
  new BusApplicationInterface(this, bus);
  // First the object: a bus that started the program for a call delivers it as soon as the name is owned.
  bus.registerObject(BusNames::path, this, QDBusConnection::ExportAdaptors);
  const QString busName = QStringLiteral("org.freedesktop.DBus");
  QDBusMessage request = QDBusMessage::createMethodCall(busName, QStringLiteral("/org/freedesktop/DBus"),
                                                        busName, QStringLiteral("RequestName"));
  constexpr uint waitInLine = 0;
  request << BusNames::service << waitInLine;
  bus.asyncCall(request);
}

bool BusApplication::handOver(const LaunchRequest& request, std::chrono::milliseconds timeout,
                              const BusSource& bus) {
  const QDBusConnection connection = bus();
  if (!connection.isConnected())
    return false;
  QDBusMessage call = callOf(request);
  call.setAutoStartService(false);
  const QDBusMessage reply = connection.call(call, QDBus::Block, static_cast<int>(timeout.count()));
  return reply.type() == QDBusMessage::ReplyMessage;
}

BusApplicationInterface::BusApplicationInterface(BusApplication* application, const QDBusConnection& bus)
    : QDBusAbstractAdaptor(application), m_application(application), m_bus(bus) {
}

void BusApplicationInterface::Activate(const QVariantMap& platformData) {
  Q_EMIT m_application->requested({LaunchRequest::Kind::activate, {}, activationTokenOf(platformData)});
}

void BusApplicationInterface::Open(const QStringList& uris, const QVariantMap& platformData) {
  LaunchRequest request{LaunchRequest::Kind::open, {}, activationTokenOf(platformData)};
  for (const QString& uri : uris)
    request.urls.push_back(uri.toStdString());
  Q_EMIT m_application->requested(request);
}

void BusApplicationInterface::ActivateAction(const QString& action, const QVariantList&,
                                             const QVariantMap& platformData, const QDBusMessage& call) {
  if (action != BusNames::captureAction) {
    call.setDelayedReply(true);
    // A caller that no longer listens is no loss.
    [[maybe_unused]] const bool sent = m_bus.send(
        call.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("Notlet does not know this action.")));
    return;
  }
  Q_EMIT m_application->requested({LaunchRequest::Kind::capture, {}, activationTokenOf(platformData)});
}

} // namespace notlet
