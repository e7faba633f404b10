#pragma once

#include <chrono>

namespace notlet {

/// Measures how long something takes: unlike the time of day it is never set, forward or back.
class SteadyClock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  virtual ~SteadyClock() = default;
  [[nodiscard]] virtual Time now() const = 0;
};

/// The system's steady clock.
class SystemSteadyClock final : public SteadyClock {
 public:
  [[nodiscard]] Time now() const override { return std::chrono::steady_clock::now(); }
};

} // namespace notlet
