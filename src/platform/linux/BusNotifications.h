#pragma once

#include "platform/DesktopNotifications.h"
#include "platform/linux/BusSource.h"

namespace notlet {

/// Shows messages through the desktop's notification service.
class BusNotifications final : public DesktopNotifications {
 public:
  explicit BusNotifications(BusSource bus = sessionBus);
  /// True as soon as the message is on its way; whether the user sees it is up to the service.
  bool show(const QString& title, const QString& text) override;

 private:
  BusSource m_bus;
};

} // namespace notlet
