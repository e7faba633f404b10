#pragma once

#include <sys/types.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace notlet {

/// A program that a test starts, which ends with the object at the latest.
class ChildProcess {
 public:
  /// Its output goes nowhere. Ends the test program when it cannot be started: a missing program must not
  /// look like a passed test.
  explicit ChildProcess(const std::vector<std::string>& command);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  void signal(int number) const;
  /// Waits for its end; the exit status, or nothing when a signal ended it.
  std::optional<int> wait();

 private:
  pid_t m_process = 0;
};

} // namespace notlet
