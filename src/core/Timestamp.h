#pragma once

#include <chrono>

namespace notlet {

/// A moment in UTC, to the microsecond, which is what the store keeps.
using Timestamp = std::chrono::sys_time<std::chrono::microseconds>;

/// The system clock's current time.
[[nodiscard]] inline Timestamp currentTime() {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

} // namespace notlet
