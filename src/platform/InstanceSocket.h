#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/un.h>

#include "core/Error.h"
#include "platform/LaunchRequest.h"
#include "platform/Places.h"

namespace notlet {

/// Holds lock and socket of the running program; nothing when the desktop offers no place for them.
[[nodiscard]] std::optional<std::filesystem::path> instanceDirectory(const Places& places);
[[nodiscard]] std::filesystem::path instanceSocket(const std::filesystem::path& directory);

/// The address of a socket file; nothing when the path is longer than an address may be.
[[nodiscard]] std::optional<sockaddr_un> socketAddress(const std::filesystem::path& socket);

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
