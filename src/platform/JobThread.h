#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "core/Error.h"

namespace notlet {

/// Runs one job after the other away from the main thread. The thread begins with the first job and ends with
/// the last, so that there is none while there is nothing to do.
class JobThread {
 public:
  JobThread() = default;
  JobThread(const JobThread&) = delete;
  JobThread& operator=(const JobThread&) = delete;
  /// Waits for the job at hand; those that have not begun are dropped.
  ~JobThread();

  /// Called from one thread. Fails, with a sentence and without running the job, when the system refuses a
  /// thread.
  [[nodiscard]] Result<void> run(std::function<void()> job);

 private:
  void work();

  std::mutex m_mutex;
  std::deque<std::function<void()>> m_jobs;
  bool m_isWorking = false;
  std::jthread m_thread;
};

} // namespace notlet
