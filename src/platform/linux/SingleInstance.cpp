#include "platform/linux/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "platform/DurableFile.h"

namespace notlet {

namespace {

constexpr std::chrono::milliseconds patience{3000};
constexpr std::chrono::milliseconds pauseBetweenTries{20};
constexpr int waitingConnections = 16;
constexpr char answerByte = '!';

// Sockets are plain system calls here: the network library would take a tenth of the whole start to load.

std::string reason() {
  return std::strerror(errno);
}

/// The address of the socket file; nothing when the path is longer than an address may be.
std::optional<sockaddr_un> addressOf(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  if (text.size() >= sizeof address.sun_path)
    return std::nullopt;
  std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
  return address;
}

const sockaddr* generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

Descriptor openSocket(int flags) {
  return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

/// Asks the instance behind the socket to come forward; false when nobody answers.
bool handOver(const std::filesystem::path& path) {
  const auto address = addressOf(path);
  const Descriptor socket = openSocket(0);
  if (!address || connect(socket.number(), generic(*address), sizeof *address) != 0)
    return false;
  pollfd waiting{socket.number(), POLLIN, 0};
  char received = 0;
  return poll(&waiting, 1, static_cast<int>(patience.count())) == 1 &&
         read(socket.number(), &received, 1) == 1 && received == answerByte;
}

} // namespace

SingleInstance::SingleInstance(std::optional<std::filesystem::path> directory, QObject* parent)
    : QObject(parent), m_directory(std::move(directory)) {
}

SingleInstance::~SingleInstance() = default;

Result<SingleInstance::Role> SingleInstance::start() {
  return m_directory ? startIn(*m_directory) : Role::First;
}

Result<SingleInstance::Role> SingleInstance::startIn(const std::filesystem::path& directory) {
  if (const auto made = makePrivateDirectory(directory); !made)
    return std::unexpected(made.error());
  const std::filesystem::path socket = directory / "notlet.socket";
  // The first instance may hold the lock already but not listen yet.
  const auto deadline = std::chrono::steady_clock::now() + patience;
  do {
    const auto locked = lock(directory / "notlet.lock");
    if (!locked)
      return std::unexpected(locked.error());
    if (*locked)
      return listen(socket);
    if (handOver(socket))
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
  const auto address = addressOf(socket);
  if (!address)
    return failure("The path " + socket.string() + " is too long for a socket.");
  unlink(socket.c_str()); // Left behind by an instance that is gone; the lock is ours.
  m_socket = openSocket(SOCK_NONBLOCK);
  // The directory is private, so nobody else can connect before the mode is set.
  if (bind(m_socket.number(), generic(*address), sizeof *address) != 0 || chmod(socket.c_str(), 0600) != 0 ||
      ::listen(m_socket.number(), waitingConnections) != 0)
    return failure("The socket " + socket.string() + " could not be opened: " + reason() + ".");
  m_notifier = std::make_unique<QSocketNotifier>(m_socket.number(), QSocketNotifier::Read);
  connect(m_notifier.get(), &QSocketNotifier::activated, this, &SingleInstance::answer);
  return Role::First;
}

void SingleInstance::answer() {
  for (;;) {
    const Descriptor connection(accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!connection.isOpen())
      return;
    // Whoever hangs up early has asked all the same.
    [[maybe_unused]] const ssize_t sent = send(connection.number(), &answerByte, 1, MSG_NOSIGNAL);
    Q_EMIT activationRequested();
  }
}

} // namespace notlet
