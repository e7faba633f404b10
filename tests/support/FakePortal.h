#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QSignalSpy>
#include <QTimer>
#include <QVariantMap>

namespace notlet {

/// The desktop's portal with settings and global shortcuts. It notes what it is called for, and declines,
/// errs and is rude when told to.
class FakePortal final : public QDBusVirtualObject {
 public:
  explicit FakePortal(const QDBusConnection& bus) : m_bus(bus) {
    m_bus.registerVirtualObject(root(), this, QDBusConnection::SubPath);
    appear();
  }

  ~FakePortal() override { m_bus.unregisterObject(root(), QDBusConnection::UnregisterTree); }

  void appear() { m_bus.registerService(name()); }
  void vanish() { m_bus.unregisterService(name()); }

  /// Methods in the order of the calls.
  QStringList calls;
  /// The ids and preferred triggers of each method that named shortcuts.
  QMap<QString, QStringList> triggers;
  QMap<QString, QVariantMap> settings;
  /// What a second desktop says; portals pass both on.
  QMap<QString, QVariantMap> moreSettings;
  /// The code of the answer to each method; 0 unless given.
  QMap<QString, uint> responses;
  QStringList unknownMethods;
  bool answersBeforeReply = false;
  bool makesOwnPaths = false;
  bool givesSessionAsPath = false;
  QString session;

  void activate(const QString& path, const QString& shortcut, const QVariantMap& options = {}) {
    emitSignal(root(), QStringLiteral("org.freedesktop.portal.GlobalShortcuts"), QStringLiteral("Activated"),
               {QVariant::fromValue(QDBusObjectPath(path)), shortcut, qulonglong(1), options});
  }

  void closeSession() {
    emitSignal(session, QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"),
               {QVariantMap()});
  }

  void changeSetting(const QString& group, const QString& key, const QVariant& value) {
    settings[group][key] = value;
    emitSignal(root(), QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"),
               {group, key, QVariant::fromValue(QDBusVariant(value))});
  }

  void emitSignal(const QString& path, const QString& interface, const QString& signal,
                  const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createSignal(path, interface, signal);
    message.setArguments(arguments);
    m_bus.send(message);
  }

  /// Waits until the program on `bus` has got all that the portal has said so far; false when it does not
  /// come about.
  [[nodiscard]] static bool settle(const QDBusConnection& bus) {
    QDBusPendingCallWatcher last(bus.asyncCall(QDBusMessage::createMethodCall(
        name(), root(), QStringLiteral("org.notlet.Test"), QStringLiteral("Settle"))));
    QSignalSpy spy(&last, &QDBusPendingCallWatcher::finished);
    return spy.wait();
  }

  [[nodiscard]] QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
    const QString method = call.member();
    if (method != QStringLiteral("Settle"))
      calls.append(method);
    if (unknownMethods.contains(method))
      return false;
    if (method == QStringLiteral("ReadAll"))
      m_bus.send(call.createReply(allSettings(call.arguments().at(0).toStringList())));
    else if (method == QStringLiteral("CreateSession") || method == QStringLiteral("BindShortcuts"))
      takeRequest(call);
    else
      m_bus.send(call.createReply());
    return true;
  }

 private:
  static QString root() { return QStringLiteral("/org/freedesktop/portal/desktop"); }
  static QString name() { return QStringLiteral("org.freedesktop.portal.Desktop"); }

  [[nodiscard]] QVariant allSettings(const QStringList& groups) const {
    QDBusArgument argument;
    argument.beginMap(QMetaType(QMetaType::QString), QMetaType(QMetaType::QVariantMap));
    for (const auto* said : {&settings, &moreSettings}) {
      for (auto group = said->begin(); group != said->end(); ++group) {
        if (!groups.contains(group.key()))
          continue;
        argument.beginMapEntry();
        argument << group.key() << group.value();
        argument.endMapEntry();
      }
    }
    argument.endMap();
    return QVariant::fromValue(argument);
  }

  void takeRequest(const QDBusMessage& call) {
    const bool creates = call.member() == QStringLiteral("CreateSession");
    const auto options = qdbus_cast<QVariantMap>(call.arguments().at(creates ? 0 : 3));
    noteShortcuts(call.member(),
                  creates ? options.value(QStringLiteral("shortcuts")) : call.arguments().at(1));
    const QString path = handle(call, QStringLiteral("request"), options, QStringLiteral("handle_token"));
    QVariantMap results;
    if (creates) {
      session = handle(call, QStringLiteral("session"), options, QStringLiteral("session_handle_token"));
      results[QStringLiteral("session_handle")] =
          givesSessionAsPath ? QVariant::fromValue(QDBusObjectPath(session)) : QVariant(session);
    }
    QDBusMessage response = QDBusMessage::createTargetedSignal(
        call.service(), makesOwnPaths ? path + QStringLiteral("x") : path,
        QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
    response << responses.value(call.member()) << results;
    const QDBusMessage reply = call.createReply(QVariant::fromValue(QDBusObjectPath(response.path())));
    m_bus.send(answersBeforeReply ? response : reply);
    if (!makesOwnPaths)
      return (void)m_bus.send(answersBeforeReply ? reply : response);
    // Such a portal leaves the caller the time to listen.
    QTimer::singleShot(20, this, [this, response] { m_bus.send(response); });
  }

  static QString handle(const QDBusMessage& call, const QString& kind, const QVariantMap& options,
                        const QString& tokenKey) {
    QString sender = call.service().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("%1/%2/%3/%4").arg(root(), kind, sender, options.value(tokenKey).toString());
  }

  void noteShortcuts(const QString& method, const QVariant& value) {
    const auto argument = value.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
      QString id;
      QVariantMap properties;
      argument.beginStructure();
      argument >> id >> properties;
      argument.endStructure();
      triggers[method].append(id + QLatin1Char('=') +
                              properties.value(QStringLiteral("preferred_trigger")).toString());
    }
    argument.endArray();
  }

  QDBusConnection m_bus;
};

} // namespace notlet
