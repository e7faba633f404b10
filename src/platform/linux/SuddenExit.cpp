#include "platform/linux/SuddenExit.h"

#include <cstdlib>
#include <utility>

namespace notlet {

namespace {

/// Empty while no object lives.
std::function<void()>& lastWork() {
  // Never destroyed: who runs at exit must not depend on the order of destruction.
  static auto& work = *new std::function<void()>;
  return work;
}

void doLastWork() {
  if (const auto work = std::exchange(lastWork(), {}))
    work();
}

} // namespace

SuddenExit::SuddenExit(std::function<void()> work) {
  lastWork() = std::move(work);
  // Work that a later object brings is done by the same function, once.
  [[maybe_unused]] static const int registered = std::atexit(doLastWork);
}

SuddenExit::~SuddenExit() {
  lastWork() = {};
}

} // namespace notlet
