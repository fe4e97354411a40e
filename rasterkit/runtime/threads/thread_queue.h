#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The messages that other threads and timers send to one thread. Termination events and timer
/// ticks run only if that thread dispatches its queue, so a handler never interrupts other code.
///
/// A driver waits for its workers with `while (manager.AnzThreads > 0)
/// ThreadQueue::Current().WaitAndDispatch();`.
class RASTERKIT_EXPORT ThreadQueue {
 public:
  using Message = std::function<void()>;
  using Clock = std::chrono::steady_clock;

  /// A repeated message; used through TTimer.
  struct Timer {
    std::chrono::milliseconds interval;
    Message tick;
    Clock::time_point due;
  };

  /// Returns the queue of the calling thread, created on first use; it ends with its thread.
  static ThreadQueue& Current();
  /// Same as Current, for posting later and from other threads: the queue may outlive its thread
  /// and is then closed.
  static std::shared_ptr<ThreadQueue> Share();
  /// Returns the queue of the calling thread, or null if it has none.
  static ThreadQueue* Existing() noexcept;

  /// Adds a message; may be called on any thread. If the queue's thread has ended, the message is
  /// destroyed on the calling thread without being run.
  void Post(Message message);

  /// Blocks until a message arrives, a timer is due or the host's events are to be processed, and
  /// then runs them. Only the queue's own thread may call it.
  void WaitAndDispatch();

  /// Runs pending messages in the order of their arrival, then each due timer once, without
  /// blocking. Handlers may dispatch again; their exceptions go to `Application.HandleException`.
  /// Only the queue's own thread may call it.
  void Dispatch();

  /// Sets the wake-up of a host whose own event loop runs this thread. `wake` is called on any
  /// thread if a message arrives or the timers change; it must make that loop call Dispatch soon.
  /// It must be quick, must not throw and must not use the queue. An empty function removes it; no
  /// call of the old one is running after this returns.
  void SetWakeUp(Message wake);
  /// Returns the time until the next timer is due, 0 if one is overdue, no value without timers.
  std::optional<std::chrono::milliseconds> TimeToNextTimer() const;

  /// True if Dispatch may find something to run; one atomic load.
  bool NeedsAttention() const noexcept { return attention_.load(std::memory_order_acquire) != 0; }

  /// Adds a timer; the first tick comes one interval after this call. Adding it again restarts its
  /// interval.
  void AddTimer(const std::shared_ptr<Timer>& timer);
  void RemoveTimer(const std::shared_ptr<Timer>& timer);

 private:
  friend struct ThreadQueueHolder;

  using Timers = std::vector<std::shared_ptr<Timer>>;

  void Close();
  bool RunNextMessage();
  void RunDueTimers();
  bool Restart(const std::shared_ptr<Timer>& timer, Clock::time_point now);
  Clock::time_point NextDue() const;
  void UpdateAttention();
  void WakeHost();

  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<Message> messages_;
  Timers timers_;
  Message wakeHost_;
  std::atomic<size_t> attention_{0};
  bool closed_ = false;
};

}  // namespace rasterkit
