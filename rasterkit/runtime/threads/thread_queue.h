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

/// What other threads and timers want done on one thread. Termination events and timer ticks arrive
/// here and run only when their thread asks for them, so that a handler never interrupts the code
/// it belongs to.
///
/// A driver that waits for workers writes `while (manager.AnzThreads > 0)
/// ThreadQueue::Current().WaitAndDispatch();`.
class RASTERKIT_EXPORT ThreadQueue {
 public:
  using Message = std::function<void()>;
  using Clock = std::chrono::steady_clock;

  /// A repeated message; see TTimer, which is how it is used.
  struct Timer {
    std::chrono::milliseconds interval;
    Message tick;
    Clock::time_point due;
  };

  /// The queue of the calling thread, made on first use; it ends with its thread.
  static ThreadQueue& Current();
  /// As Current, for those who post later and from elsewhere: the queue may outlive its thread, and
  /// is then closed.
  static std::shared_ptr<ThreadQueue> Share();
  /// The queue of the calling thread, or null while it has none.
  static ThreadQueue* Existing() noexcept;

  /// Hands a message over; any thread may. When the queue's thread has ended the message is
  /// destroyed unrun, on the calling thread.
  void Post(Message message);

  /// Blocks until there is something to do (a message, a timer that is due, or time to turn the
  /// host's own loop) and does it. Wakes at once when a message arrives. Only the queue's own
  /// thread may call it.
  void WaitAndDispatch();

  /// Runs what waits now, without blocking: messages in the order of their arrival, then each timer
  /// that is due once. Handlers may dispatch again; what they throw goes to
  /// `Application.HandleException`. Own thread only.
  void Dispatch();

  /// For a host whose own event loop runs this thread: `wake` is called, on any thread, whenever a
  /// message arrives or the timers change, and makes that loop call Dispatch soon. It must be
  /// quick, may not throw and may not touch the queue. Empty removes it; none is running any more
  /// when this returns.
  void SetWakeUp(Message wake);
  /// Time until the next timer is due, 0 when one is overdue, nothing while there is none.
  std::optional<std::chrono::milliseconds> TimeToNextTimer() const;

  /// True when Dispatch might find something; one atomic load.
  bool NeedsAttention() const noexcept { return attention_.load(std::memory_order_acquire) != 0; }

  /// The first tick comes one interval after this call; adding a timer again starts its interval
  /// anew.
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
