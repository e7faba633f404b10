#include "platform/InstanceSocket.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/LaunchMessage.h"

namespace notlet {

// Sockets are plain system calls here: the network library would take a tenth of the whole start to load, and
// the command line has no Qt at all.

namespace {

constexpr std::size_t longestAnswer = 1000;

std::unexpected<Error> silence() {
  return failure("Notlet is running but does not answer.");
}

/// How long connecting, each sending and each receiving may take.
void limitWaiting(int connection, std::chrono::milliseconds patience) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(patience);
  const timeval limit{.tv_sec = seconds.count(),
                      .tv_usec = std::chrono::microseconds(patience - seconds).count()};
  for (const int option : {SO_SNDTIMEO, SO_RCVTIMEO})
    setsockopt(connection, SOL_SOCKET, option, &limit, sizeof limit);
}

/// Repeats a system call for as long as a signal interrupts it.
template<typename Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

/// False when it takes too long.
bool sendAll(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent =
        uninterrupted([&] { return send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL); });
    if (sent < 0)
      return errno != EAGAIN; // One that hung up has left an answer, or has ended.
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

/// What comes until the other end hangs up, or until the answer is clear; nothing when it takes too long.
std::optional<std::string> receiveAnswer(int connection) {
  std::string answer;
  std::array<char, longestAnswer> portion{};
  while (answer.size() < longestAnswer && !answer.starts_with(acceptedAnswer)) {
    const ssize_t count = uninterrupted([&] { return recv(connection, portion.data(), portion.size(), 0); });
    if (count < 0 && errno == EAGAIN)
      return std::nullopt;
    if (count <= 0)
      break;
    answer.append(portion.data(), static_cast<std::size_t>(count));
  }
  return answer;
}

} // namespace

std::vector<std::filesystem::path> instanceDirectories(const Places& places) {
  std::vector<std::filesystem::path> directories;
  if (places.runtime)
    directories.push_back(*places.runtime / "notlet");
  if (places.state)
    directories.push_back(*places.state);
  return directories;
}

std::filesystem::path instanceSocket(const std::filesystem::path& directory) {
  return directory / "notlet.socket";
}

SocketAddress::SocketAddress(const std::filesystem::path& socket) {
  m_address.sun_family = AF_UNIX;
  std::string text = socket.native();
  if (text.size() >= sizeof m_address.sun_path) {
    m_folder = Descriptor(open(socket.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    text = "/proc/self/fd/" + std::to_string(m_folder.number()) + "/" + socket.filename().native();
  }
  // A name that is too long by itself becomes one of no file.
  std::memcpy(m_address.sun_path, text.c_str(), std::min(text.size(), sizeof m_address.sun_path - 1));
}

bool isOwnProcess(int connection) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

Result<HandOver> handOver(const LaunchRequest& request, const std::filesystem::path& socket,
                          std::chrono::milliseconds patience) {
  const Result<std::string> message = encodeLaunchMessage(request);
  if (!message)
    return std::unexpected(message.error());
  const SocketAddress address(socket);
  const Descriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!connection.isOpen())
    return HandOver::nobodyThere;
  const int number = connection.number();
  limitWaiting(number, patience);
  if (uninterrupted([&] { return connect(number, address.data(), address.size()); }) != 0) {
    if (errno == EAGAIN) // Nobody took the connections that wait already.
      return silence();
    return HandOver::nobodyThere;
  }
  if (!isOwnProcess(number))
    return failure("Notlet is already running for another user, at “" + socket.string() + "”.");
  if (!sendAll(number, *message))
    return silence();
  const std::optional<std::string> answer = receiveAnswer(number);
  if (!answer)
    return silence();
  if (answer->starts_with(refusedAnswer))
    return failure(answer->substr(1));
  return answer->starts_with(acceptedAnswer) ? HandOver::accepted : HandOver::nobodyThere;
}

std::string activationTokenFromEnvironment() {
  for (const char* variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0')
      return value;
  }
  return {};
}

} // namespace notlet
