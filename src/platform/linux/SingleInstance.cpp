#include "platform/linux/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

#include "platform/DurableFile.h"
#include "platform/InstanceSocket.h"

namespace notlet {

namespace {

constexpr std::chrono::milliseconds patienceWithTheFirst{3000};
constexpr std::chrono::milliseconds pauseBetweenTries{20};
constexpr std::chrono::milliseconds pauseWithoutDescriptors{250};
constexpr int waitingConnections = 128;
constexpr std::size_t mostPeers = 32;

std::string reason() {
  return std::strerror(errno);
}

} // namespace

SingleInstance::SingleInstance(std::optional<std::filesystem::path> directory,
                               std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), m_directory(std::move(directory)), m_patience(patience) {
}

SingleInstance::~SingleInstance() = default;

Result<SingleInstance::Role> SingleInstance::start(const std::optional<LaunchRequest>& request) {
  return m_directory ? startIn(*m_directory, request) : Role::First;
}

Result<SingleInstance::Role> SingleInstance::startIn(const std::filesystem::path& directory,
                                                     const std::optional<LaunchRequest>& request) {
  if (const auto made = makePrivateDirectory(directory); !made)
    return std::unexpected(made.error());
  const std::filesystem::path socket = instanceSocket(directory);
  // The first instance may hold the lock already but not listen yet.
  const auto deadline = std::chrono::steady_clock::now() + patienceWithTheFirst;
  do {
    const auto locked = lock(directory / "notlet.lock");
    if (!locked)
      return std::unexpected(locked.error());
    if (*locked)
      return listen(socket);
    if (!request)
      return Role::HandedOver;
    const auto handedOver = handOver(*request, socket, patienceWithTheFirst);
    if (!handedOver)
      return std::unexpected(handedOver.error());
    if (*handedOver == HandOver::accepted)
      return Role::HandedOver;
    std::this_thread::sleep_for(pauseBetweenTries);
  } while (std::chrono::steady_clock::now() < deadline);
  return failure("Notlet is already running but does not answer.");
}

Result<bool> SingleInstance::lock(const std::filesystem::path& file) {
  m_lock = Descriptor(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!m_lock.isOpen())
    return failure("The lock file " + file.string() + " could not be opened: " + reason() + ".");
  if (flock(m_lock.number(), LOCK_EX | LOCK_NB) == 0)
    return true;
  if (errno == EWOULDBLOCK)
    return false;
  return failure("The lock file " + file.string() + " could not be locked: " + reason() + ".");
}

Result<SingleInstance::Role> SingleInstance::listen(const std::filesystem::path& socket) {
  const auto address = socketAddress(socket);
  if (!address)
    return failure("The path " + socket.string() + " is too long for a socket.");
  unlink(socket.c_str()); // Left behind by an instance that is gone; the lock is ours.
  m_socket = Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  // The directory is private, so nobody else can connect before the mode is set.
  if (bind(m_socket.number(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0 ||
      chmod(socket.c_str(), 0600) != 0 || ::listen(m_socket.number(), waitingConnections) != 0)
    return failure("The socket " + socket.string() + " could not be opened: " + reason() + ".");
  m_notifier = std::make_unique<QSocketNotifier>(m_socket.number(), QSocketNotifier::Read);
  connect(m_notifier.get(), &QSocketNotifier::activated, this, &SingleInstance::acceptWaiting);
  return Role::First;
}

void SingleInstance::acceptWaiting() {
  // One at a turn, so that each can tell its request before the next one takes its place.
  Descriptor connection(accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (connection.isOpen())
    admit(std::move(connection));
  else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)
    pause();
}

void SingleInstance::admit(Descriptor connection) {
  if (!isOwnProcess(connection.number()))
    return;
  // A start tells its request at once, so the one that has been at it for longest is the least likely to end.
  if (m_peers.size() == mostPeers)
    m_peers.front()->refuse("Too many others are starting Notlet at the same time.");
  auto* peer = new LaunchPeer(std::move(connection), m_patience, this);
  m_peers.push_back(peer);
  connect(peer, &LaunchPeer::ended, this, [this, peer] {
    std::erase(m_peers, peer);
    peer->deleteLater();
  });
  connect(peer, &LaunchPeer::received, this, &SingleInstance::requested);
}

/// The waiting connection would wake the program again at once, and in vain.
void SingleInstance::pause() {
  m_notifier->setEnabled(false);
  QTimer::singleShot(pauseWithoutDescriptors, this, [this] { m_notifier->setEnabled(true); });
}

} // namespace notlet
