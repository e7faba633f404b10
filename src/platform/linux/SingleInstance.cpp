#include "platform/linux/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <thread>

#include "platform/DurableFile.h"
#include "platform/InstanceSocket.h"

namespace notlet {

namespace {

constexpr std::chrono::milliseconds pauseBetweenTries{20};
constexpr std::chrono::milliseconds pauseWithoutDescriptors{250};
constexpr int waitingConnections = 128;
constexpr std::size_t mostPeers = 32;

enum class Lock {
  ours,
  /// Another instance has it.
  theirs,
  impossible,
};

Lock lock(Descriptor& file, const std::filesystem::path& name) {
  file = Descriptor(open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (file.isOpen() && flock(file.number(), LOCK_EX | LOCK_NB) == 0)
    return Lock::ours;
  return file.isOpen() && errno == EWOULDBLOCK ? Lock::theirs : Lock::impossible;
}

} // namespace

SingleInstance::SingleInstance(std::vector<std::filesystem::path> directories, InstancePatience patience,
                               QObject* parent)
    : QObject(parent), m_directories(std::move(directories)), m_patience(patience) {
}

SingleInstance::~SingleInstance() = default;

Result<SingleInstance::Role> SingleInstance::start(const std::optional<LaunchRequest>& request) {
  const auto role = takeAll(request);
  if (role != Role::First)
    m_places.clear(); // For whoever starts next.
  // Only the first listens: a request must not get stuck with one that hands over or gives up.
  for (Place& place : m_places)
    listen(place);
  return role;
}

Result<SingleInstance::Role> SingleInstance::takeAll(const std::optional<LaunchRequest>& request) {
  for (const auto& directory : m_directories)
    if (const auto role = take(directory, request); role != Role::First && role != Role::Unguarded)
      return role;
  return m_places.empty() ? Role::Unguarded : Role::First;
}

Result<SingleInstance::Role> SingleInstance::take(const std::filesystem::path& directory,
                                                  const std::optional<LaunchRequest>& request) {
  if (!makePrivateDirectory(directory))
    return Role::Unguarded;
  // The first instance may hold the lock already but not listen yet.
  const auto deadline = std::chrono::steady_clock::now() + m_patience.withTheFirst;
  do {
    Descriptor file;
    const Lock locked = lock(file, directory / "notlet.lock");
    if (locked == Lock::impossible)
      return Role::Unguarded;
    if (locked == Lock::ours) {
      m_places.push_back({directory, std::move(file), {}, nullptr});
      return Role::First;
    }
    if (!request)
      return Role::HandedOver;
    const auto handedOver = handOver(*request, instanceSocket(directory), m_patience.withTheFirst);
    if (!handedOver)
      return std::unexpected(handedOver.error());
    if (*handedOver == HandOver::accepted)
      return Role::HandedOver;
    std::this_thread::sleep_for(pauseBetweenTries);
  } while (std::chrono::steady_clock::now() < deadline);
  return failure("Notlet is already running, perhaps on another computer, but cannot be reached. Quit it and "
                 "try again.");
}

/// A place that cannot have a socket still has its lock.
void SingleInstance::listen(Place& place) {
  const std::filesystem::path socket = instanceSocket(place.directory);
  const SocketAddress address(socket);
  unlink(socket.c_str()); // Left behind by an instance that is gone; the lock is ours.
  place.socket = Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  // The directory is private, so nobody else can connect before the mode is set.
  if (bind(place.socket.number(), address.data(), address.size()) != 0 || chmod(socket.c_str(), 0600) != 0 ||
      ::listen(place.socket.number(), waitingConnections) != 0)
    return;
  place.notifier = std::make_unique<QSocketNotifier>(place.socket.number(), QSocketNotifier::Read);
  connect(place.notifier.get(), &QSocketNotifier::activated, this, [this, &place] { acceptWaiting(place); });
}

void SingleInstance::acceptWaiting(Place& place) {
  // One at a turn, so that each can tell its request before the next one takes its place.
  Descriptor connection(accept4(place.socket.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (connection.isOpen())
    admit(std::move(connection));
  else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)
    pause(place);
}

void SingleInstance::admit(Descriptor connection) {
  if (!isOwnProcess(connection.number()))
    return;
  // A start tells its request at once, so the one that has been at it for longest is the least likely to end.
  if (m_peers.size() == mostPeers)
    m_peers.front()->refuse("Too many others are starting Notlet at the same time.");
  auto* peer = new LaunchPeer(std::move(connection), m_patience.withPeers, this);
  m_peers.push_back(peer);
  connect(peer, &LaunchPeer::ended, this, [this, peer] {
    std::erase(m_peers, peer);
    peer->deleteLater();
  });
  connect(peer, &LaunchPeer::received, this, &SingleInstance::requested);
}

/// The waiting connection would wake the program again at once, and in vain.
void SingleInstance::pause(Place& place) {
  place.notifier->setEnabled(false);
  QTimer::singleShot(pauseWithoutDescriptors, this, [&place] { place.notifier->setEnabled(true); });
}

} // namespace notlet
