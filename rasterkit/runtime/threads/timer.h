#pragma once

#include <functional>
#include <memory>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {

/// Ticks on the thread that created it, if that thread dispatches its queue after the interval.
/// Missed ticks are skipped. Must be destroyed on the same thread; its own handler may do so.
class RASTERKIT_EXPORT TTimer {
 public:
  /// Enabled, with an interval of 1000 ms; the first tick comes after the first interval.
  TTimer();
  ~TTimer();
  TTimer(const TTimer&) = delete;
  TTimer& operator=(const TTimer&) = delete;

  /// Called at every tick with the timer as sender. May be empty.
  std::function<void(TTimer& sender)> OnTimer;

  /// Milliseconds; 0 means no ticks. Setting it restarts the interval.
  unsigned Interval() const { return interval_; }
  void SetInterval(unsigned milliseconds);

  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled);

 private:
  void Restart();
  void Tick();

  std::shared_ptr<ThreadQueue> queue_;
  std::shared_ptr<ThreadQueue::Timer> entry_;
  unsigned interval_ = 1000;
  bool enabled_ = true;
};

}  // namespace rasterkit
