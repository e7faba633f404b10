#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QObject>
#include <chrono>

#include "platform/LaunchRequest.h"
#include "platform/linux/BusSource.h"

namespace notlet {

/// The program as the desktop calls it over the session bus: interface `org.freedesktop.Application` of the
/// service `org.notlet.Notlet`.
///
/// A bus that is not there or goes away is no failure; nobody then calls.
class BusApplication : public QObject {
  Q_OBJECT

 public:
  explicit BusApplication(BusSource bus = sessionBus, QObject* parent = nullptr);
  ~BusApplication() override;

  /// Offers the interface and asks for the service's name, without waiting for the bus. While another program
  /// owns the name this one stands in line for it.
  void start();

  /// Hands a request to the program that owns the name, which is never started for it. False when there is no
  /// such program, or it does not answer in time. Blocks; not for the program that owns the name.
  [[nodiscard]] static bool handOver(const LaunchRequest& request, std::chrono::milliseconds timeout,
                                     const BusSource& bus = sessionBus);

 Q_SIGNALS:
  void requested(const notlet::LaunchRequest& request);

 private:
  BusSource m_bus;
  bool m_isStarted = false;
};

/// What the bus sees of BusApplication. Calls with other arguments are refused before they get here.
class BusApplicationInterface final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  BusApplicationInterface(BusApplication* application, const QDBusConnection& bus);

 public Q_SLOTS:
  void Activate(const QVariantMap& platformData);
  void Open(const QStringList& uris, const QVariantMap& platformData);
  void ActivateAction(const QString& action, const QVariantList& parameters, const QVariantMap& platformData,
                      const QDBusMessage& call);

 private:
  BusApplication* m_application;
  QDBusConnection m_bus;
};

} // namespace notlet
