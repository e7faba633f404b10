#pragma once

#include "platform/Clock.h"

namespace notlet {

/// A clock that stands still until the test moves it.
class FakeClock final : public Clock {
 public:
  [[nodiscard]] Timestamp now() const override { return time; }

  Timestamp time{std::chrono::sys_days{std::chrono::year{2026} / 11 / 16}};
};

} // namespace notlet
