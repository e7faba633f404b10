#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <utility>

#include "core/Error.h"

namespace notlet {

/// Why a command failed, with the status that the process exits with.
struct CommandError : Error {
  static constexpr int failed = 1;
  static constexpr int wrongUsage = 2;

  CommandError(const Error& error) : Error(error) {} // NOLINT: every failure of the modules is one of ours.
  CommandError(int exitStatus, std::string text) : Error{std::move(text)}, status(exitStatus) {}

  int status = failed;
};

template<typename T>
using CommandResult = std::expected<T, CommandError>;

/// A name or text of the user's within a message.
[[nodiscard]] inline std::string inQuotes(std::string_view text) {
  std::string result("“");
  return result.append(text).append("”");
}

[[nodiscard]] inline std::unexpected<CommandError> commandFailure(std::string message) {
  return std::unexpected(CommandError(CommandError::failed, std::move(message)));
}

[[nodiscard]] inline std::unexpected<CommandError> usageFailure(std::string message) {
  return std::unexpected(CommandError(CommandError::wrongUsage, std::move(message)));
}

} // namespace notlet
