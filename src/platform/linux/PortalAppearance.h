#pragma once

#include <QDBusVariant>
#include <QMap>
#include <QVariantMap>
#include <memory>

#include "platform/Appearance.h"
#include "platform/linux/BusSource.h"

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

namespace notlet {

/// What the desktop says through its settings portal: dark or light, and whether things may move.
///
/// While the desktop has not answered, or has no preference, the lightness of Qt's own palette tells dark
/// from light, and things move.
class PortalAppearance final : public Appearance {
  Q_OBJECT

 public:
  explicit PortalAppearance(BusSource bus = sessionBus, QObject* parent = nullptr);
  ~PortalAppearance() override;

  /// Asks the desktop, without waiting for its answer, and follows its settings from then on.
  void start();

  [[nodiscard]] bool isDark() const override { return m_isDark; }
  /// The user wants nothing to move that need not.
  [[nodiscard]] bool reducesMotion() const { return m_reducesMotion; }

 Q_SIGNALS:
  void reducesMotionChanged();

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private Q_SLOTS:
  void changeSetting(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void introduceAndRead();
  void read();
  void take(const QDBusPendingCallWatcher& reply);
  void update();

  BusSource m_bus;
  std::unique_ptr<QDBusServiceWatcher> m_portalWatcher;
  /// The desktop's settings by group and key, as far as they matter here.
  QMap<QString, QVariantMap> m_settings;
  bool m_isDark;
  bool m_reducesMotion = false;
};

} // namespace notlet
