#include "platform/linux/LaunchPeer.h"

#include <sys/socket.h>

#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include "platform/InstanceSocket.h"

namespace notlet {

namespace {

constexpr std::size_t portionBytes = std::size_t{64} << 10;

} // namespace

LaunchPeer::LaunchPeer(Descriptor connection, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent),
      m_connection(std::move(connection)),
      m_notifier(m_connection.number(), QSocketNotifier::Read) {
  connect(&m_notifier, &QSocketNotifier::activated, this, &LaunchPeer::read);
  m_limit.setSingleShot(true);
  connect(&m_limit, &QTimer::timeout, this, [this] { refuse("The message did not arrive in time."); });
  m_limit.start(patience);
}

void LaunchPeer::read() {
  // One portion at a turn: whoever sends without end does not keep the program from its other work.
  std::vector<char> portion(portionBytes);
  const ssize_t count = recv(m_connection.number(), portion.data(), portion.size(), 0);
  if (count > 0)
    take({portion.data(), static_cast<std::size_t>(count)});
  else if (count == 0 || (errno != EAGAIN && errno != EINTR))
    hangUp(); // It went before its message was whole.
}

void LaunchPeer::take(std::string_view bytes) {
  const auto request = m_reader.take(bytes);
  if (!request)
    return refuse(request.error().message);
  const std::optional<LaunchRequest>& whole = *request;
  if (!whole)
    return;
  answer({&acceptedAnswer, 1});
  hangUp();
  Q_EMIT received(*whole);
}

void LaunchPeer::refuse(std::string_view reason) {
  answer(std::string(1, refusedAnswer).append(reason));
  hangUp();
}

void LaunchPeer::answer(std::string_view text) {
  // Whoever hangs up early has been heard all the same.
  [[maybe_unused]] const ssize_t sent = send(m_connection.number(), text.data(), text.size(), MSG_NOSIGNAL);
}

void LaunchPeer::hangUp() {
  m_limit.stop();
  m_notifier.setEnabled(false); // Before its descriptor goes.
  m_connection = Descriptor();
  Q_EMIT ended();
}

} // namespace notlet
