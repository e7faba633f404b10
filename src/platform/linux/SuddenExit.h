#pragma once

#include <functional>

namespace notlet {

/// Does last work when the process ends by exit() instead of returning from main(), as Qt has it when the X
/// server goes away or closes the connection: no destructor of the program's objects runs then.
///
/// One object at a time, on the stack of main(). The work must not touch windows.
class SuddenExit {
 public:
  explicit SuddenExit(std::function<void()> lastWork);
  SuddenExit(const SuddenExit&) = delete;
  SuddenExit& operator=(const SuddenExit&) = delete;
  ~SuddenExit();
};

} // namespace notlet
