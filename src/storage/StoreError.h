#pragma once

#include <expected>
#include <string>

#include "core/Error.h"

namespace notlet {

/// Why the store refused, in words fit for an alert and as a kind that the program can act on.
struct StoreError : Error {
  enum class Kind {
    /// Another program holds the store; a later try may succeed.
    Busy,
    /// What is in the file cannot be trusted; it is not written any more.
    Damaged,
    /// The file that was opened is no longer at its place.
    Moved,
    /// There is no file.
    Missing,
    /// The way to the file does not exist or may not be gone now, as with a disk that is not there yet.
    Unreachable,
    Other,
  };

  StoreError(Kind errorKind, std::string text) : Error{std::move(text)}, kind(errorKind) {}

  Kind kind = Kind::Other;
};

template<typename T>
using StoreResult = std::expected<T, StoreError>;

} // namespace notlet
