#pragma once

#include <QObject>
#include <memory>

#include "platform/linux/BusSource.h"

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

namespace notlet {

/// Whether somebody on the session bus shows StatusNotifierItems. The watcher keeps the list of items, a host
/// shows them; both may come, go and come back at any time.
class TrayNotifierHosts : public QObject {
  Q_OBJECT

 public:
  enum class Presence { unknown, none, watcherWithoutHost, host };

  explicit TrayNotifierHosts(BusSource bus, QObject* parent = nullptr);
  ~TrayNotifierHosts() override;

  /// Asks, without waiting for the answer; changed() tells it.
  void start();
  [[nodiscard]] Presence presence() const { return m_presence; }

 Q_SIGNALS:
  void changed();

 private Q_SLOTS:
  void ask();
  void busLost();

 private:
  void take(const QDBusPendingCallWatcher& reply);
  void setPresence(Presence presence);

  BusSource m_bus;
  std::unique_ptr<QDBusServiceWatcher> m_watcher;
  /// The last question; answers to earlier ones no longer count.
  std::unique_ptr<QDBusPendingCallWatcher> m_question;
  Presence m_presence = Presence::unknown;
};

} // namespace notlet
