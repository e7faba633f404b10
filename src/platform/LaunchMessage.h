#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/Error.h"
#include "platform/LaunchRequest.h"

namespace notlet {

/// The most bytes that a message may have.
inline constexpr std::size_t launchMessageLimit = std::size_t{4} << 20;
/// The most links that one request may carry.
inline constexpr std::size_t launchLinkLimit = 1000;

/// The request in the form in which it goes to the running program: "NLT1", the number of the bytes that
/// follow (four bytes, the highest first), and these fields, each ended by a NUL: "activate", "capture" or
/// "open"; the activation token; the links. Fails when that exceeds a limit or a field has a NUL inside.
[[nodiscard]] Result<std::string> encodeLaunchMessage(const LaunchRequest& request);

/// Puts one message together from the portions in which it arrives.
class LaunchMessageReader {
 public:
  /// Takes the bytes that follow those of the earlier calls. Gives the request once it is whole, nothing
  /// before; fails as soon as the bytes cannot be a message or go on after it.
  [[nodiscard]] Result<std::optional<LaunchRequest>> take(std::string_view bytes);

 private:
  std::string m_received;
};

} // namespace notlet
