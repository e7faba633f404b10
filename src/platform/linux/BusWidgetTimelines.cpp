#include "platform/linux/BusWidgetTimelines.h"

#include <QDBusMessage>

#include "platform/linux/BusNames.h"

namespace notlet {

BusWidgetTimelines::BusWidgetTimelines(BusSource bus) : m_bus(std::move(bus)) {
}

void BusWidgetTimelines::reload(std::string_view kind) {
  const QDBusConnection bus = m_bus();
  if (!bus.isConnected())
    return;
  QDBusMessage signal =
      QDBusMessage::createSignal(BusNames::path, BusNames::ownInterface, QStringLiteral("ReloadTimelines"));
  signal << QString::fromUtf8(kind.data(), static_cast<qsizetype>(kind.size()));
  // Widgets that miss it show an older notlet until the next one is saved.
  [[maybe_unused]] const bool sent = bus.send(signal);
}

} // namespace notlet
