#include "platform/linux/MissingDisplay.h"

#include <QString>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace notlet {

namespace {

/// What Qt said on the way, which would only confuse when a sentence follows.
std::vector<std::pair<QtMsgType, QString>>& heldBack() {
  static std::vector<std::pair<QtMsgType, QString>> messages;
  return messages;
}

std::string setting(const char* variable) {
  const std::string value = qgetenv(variable).toStdString();
  return std::string(variable) + (value.empty() ? " is not set" : " is “" + value + "”");
}

void holdBack(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  if (type != QtFatalMsg) {
    heldBack().emplace_back(type, message);
    return;
  }
  std::fprintf(stderr,
               "notlet-desktop: There is no display that windows could be shown on: %s, %s. In a terminal, "
               "“notlet” works without one.\n",
               setting("DISPLAY").c_str(), setting("WAYLAND_DISPLAY").c_str());
  // Nothing is open yet, and Qt is in the midst of its start.
  std::_Exit(EXIT_FAILURE);
}

} // namespace

MissingDisplay::MissingDisplay() : m_before(qInstallMessageHandler(holdBack)) {
}

MissingDisplay::~MissingDisplay() {
  qInstallMessageHandler(m_before);
  for (const auto& [type, message] : std::exchange(heldBack(), {}))
    qt_message_output(type, {}, message);
}

} // namespace notlet
