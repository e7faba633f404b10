#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>

namespace notlet {

/// Runs work later on the calling thread's event loop.
class Scheduler {
 public:
  virtual ~Scheduler() = default;
  /// Calls `work` once after the delay, unless `context` is gone by then.
  virtual void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) = 0;
};

/// Single-shot timers of the event loop.
class TimerScheduler final : public Scheduler {
 public:
  void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) override {
    QTimer::singleShot(delay, context, std::move(work));
  }
};

} // namespace notlet
