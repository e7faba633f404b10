#pragma once

#include <QDBusObjectPath>
#include <QVariantMap>
#include <chrono>
#include <memory>
#include <string>

#include "platform/GlobalHotKey.h"
#include "platform/linux/BusSource.h"

class QDBusServiceWatcher;

namespace notlet {

class PortalRequest;

/// The hot key through the desktop's GlobalShortcuts portal, where programs cannot watch the keyboard
/// themselves. The desktop may ask the user, and may give another combination than the one preferred; it does
/// not tell why it refuses. When the portal is restarted the key is asked for again; one that stays away is
/// started by asking.
class PortalHotKey final : public GlobalHotKey {
  Q_OBJECT

 public:
  /// `patience` is how long a portal that went away may take to come back by itself.
  explicit PortalHotKey(BusSource bus = sessionBus,
                        std::chrono::milliseconds patience = std::chrono::seconds(2));
  ~PortalHotKey() override;

  void install() override;
  /// The desktop may ask the user, who has answered.
  void retry() override {}
  void uninstall() override;
  /// Whether the portal has agreed.
  [[nodiscard]] bool isInstalled() const { return m_isInstalled; }

 Q_SIGNALS:
  /// What the desktop gave with the key, for WindowSystem::noteActivationToken(); comes before pressed().
  void activationTokenGiven(const std::string& token);

 private Q_SLOTS:
  void activate(const QDBusObjectPath& session, const QString& shortcut, qulonglong time,
                const QVariantMap& options);
  void sessionLost();

 private:
  void portalChanged(const QString& oldOwner, const QString& newOwner);
  void listen(QDBusConnection& bus);
  void stopListening(QDBusConnection& bus);
  void createSession();
  void sessionRefused();
  void bind(const QString& session);
  void forget();
  void dropRequest();
  void fail();

  BusSource m_bus;
  std::chrono::milliseconds m_patience;
  std::unique_ptr<QDBusServiceWatcher> m_watcher;
  std::unique_ptr<PortalRequest> m_request;
  /// The session's path, known in advance.
  QString m_session;
  /// A portal has appeared while a session was asked for.
  bool m_portalIsNew = false;
  bool m_isInstalled = false;
};

} // namespace notlet
