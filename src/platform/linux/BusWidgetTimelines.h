#pragma once

#include "platform/WidgetTimelines.h"
#include "platform/linux/BusSource.h"

namespace notlet {

/// Tells whoever listens on the session bus, by the signal `ReloadTimelines(s kind)` of the interface
/// `org.notlet.Notlet1` at `/org/notlet/Notlet`. No text of a notlet goes over the bus: widgets read the
/// store.
class BusWidgetTimelines final : public WidgetTimelines {
 public:
  explicit BusWidgetTimelines(BusSource bus = sessionBus);
  void reload(std::string_view kind) override;

 private:
  BusSource m_bus;
};

} // namespace notlet
