#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>

#include "core/Error.h"
#include "platform/Descriptor.h"
#include "platform/LaunchRequest.h"
#include "platform/Places.h"

namespace notlet {

/// The folders in which the running program has a lock and a socket: one that belongs to the session, and the
/// one that holds the drafts, since another session may use the same. Empty when the desktop offers neither.
[[nodiscard]] std::vector<std::filesystem::path> instanceDirectories(const Places& places);
[[nodiscard]] std::filesystem::path instanceSocket(const std::filesystem::path& directory);

/// The address of a socket file, good as long as this object lives.
class SocketAddress {
 public:
  explicit SocketAddress(const std::filesystem::path& socket);

  [[nodiscard]] const sockaddr* data() const { return reinterpret_cast<const sockaddr*>(&m_address); }
  [[nodiscard]] static socklen_t size() { return sizeof(sockaddr_un); }

 private:
  /// Open when the path is too long for an address.
  Descriptor m_folder;
  sockaddr_un m_address{};
};

/// Whether the process at the other end of a connection runs for the same user as this one.
[[nodiscard]] bool isOwnProcess(int connection);

/// Begins the answer to a message that was taken; nothing follows it.
inline constexpr char acceptedAnswer = '+';
/// Begins the answer to one that was not; a sentence that says why follows.
inline constexpr char refusedAnswer = '-';

enum class HandOver {
  accepted,
  /// No program listens there, or it ended before it answered.
  nobodyThere,
};

/// Hands the request to the program that listens at the socket and waits for its answer. Fails when the
/// program refuses the request, does not answer within `patience`, or is another user's.
[[nodiscard]] Result<HandOver> handOver(const LaunchRequest& request, const std::filesystem::path& socket,
                                        std::chrono::milliseconds patience = std::chrono::seconds(3));

/// What the desktop gave this process to prove that the user wants it in front; may be empty.
[[nodiscard]] std::string activationTokenFromEnvironment();

} // namespace notlet
