#pragma once

#include "platform/SteadyClock.h"

namespace notlet {

/// A steady clock that stands still until the test moves it.
class FakeSteadyClock final : public SteadyClock {
 public:
  [[nodiscard]] Time now() const override { return time; }

  Time time{std::chrono::hours(5)};
};

} // namespace notlet
