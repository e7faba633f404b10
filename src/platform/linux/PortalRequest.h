#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

namespace notlet {

/// One call to the portal that the user may have to answer. The portal replies at once with the path of a
/// request and gives the answer later, by a signal at that path.
class PortalRequest : public QObject {
  Q_OBJECT

 public:
  PortalRequest(const QDBusConnection& bus, QObject* parent);
  ~PortalRequest() override;

  /// What the call's options have to carry as `handle_token`.
  [[nodiscard]] const QString& token() const { return m_token; }
  void send(const QDBusMessage& call);

 Q_SIGNALS:
  /// Comes once.
  void granted(const QVariantMap& results);
  /// The user or the portal declines, or there is no such portal. Comes once, instead of granted().
  void refused();

 private Q_SLOTS:
  void respond(uint code, const QVariantMap& results);

 private:
  void listenAt(const QString& path);
  void refuse();

  QDBusConnection m_bus;
  QString m_token;
  QString m_path;
  bool m_isAnswered = false;
};

} // namespace notlet
