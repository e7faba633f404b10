#pragma once

#include <expected>
#include <string>

namespace notlet {

/// Why something failed, in words fit for an alert (UTF-8, whole sentences).
struct Error {
  std::string message;

  bool operator==(const Error&) const = default;
};

/// The value, or the reason why there is none.
template<typename T>
using Result = std::expected<T, Error>;

/// Short for returning a failure: `return failure("…")`.
[[nodiscard]] inline std::unexpected<Error> failure(std::string message) {
  return std::unexpected(Error{std::move(message)});
}

} // namespace notlet
