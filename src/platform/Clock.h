#pragma once

#include "core/Timestamp.h"

namespace notlet {

/// Where the program learns what time it is.
class Clock {
 public:
  virtual ~Clock() = default;
  [[nodiscard]] virtual Timestamp now() const = 0;
};

/// The system's clock.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] Timestamp now() const override { return currentTime(); }
};

} // namespace notlet
