#include <algorithm>
#include <utility>

#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {
namespace {

/// Set while the thread has a queue; read at every row of a single-threaded operation, so it has no
/// destructor that would make each access ask whether it is constructed.
constinit thread_local ThreadQueue* existing = nullptr;

}  // namespace

/// Ends the queue with its thread.
struct ThreadQueueHolder {
  std::shared_ptr<ThreadQueue> queue = std::make_shared<ThreadQueue>();

  ThreadQueueHolder() { existing = queue.get(); }
  ~ThreadQueueHolder() {
    existing = nullptr;
    queue->Close();
  }
};

std::shared_ptr<ThreadQueue> ThreadQueue::Share() {
  thread_local const ThreadQueueHolder holder;
  return holder.queue;
}

ThreadQueue& ThreadQueue::Current() {
  return existing != nullptr ? *existing : *Share();
}

ThreadQueue* ThreadQueue::Existing() noexcept {
  return existing;
}

void ThreadQueue::Post(Message message) {
  // A refused message is destroyed with the parameter, after the lock is gone: its destructor may
  // post again.
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  messages_.push_back(std::move(message));
  UpdateAttention();
  arrived_.notify_one();
  WakeHost();
}

void ThreadQueue::WaitAndDispatch() {
  const bool hasHostLoop = static_cast<bool>(HostPorts().messagePump);
  {
    std::unique_lock lock(mutex_);
    const auto hasMessage = [this] { return !messages_.empty(); };
    const auto nextTurn =
        hasHostLoop ? Clock::now() + TApplication::kPumpInterval : Clock::time_point::max();
    const auto until = std::min(nextTurn, NextDue());
    // The far end of time overflows in some implementations of wait_until.
    if (until == Clock::time_point::max()) {
      arrived_.wait(lock, hasMessage);
    } else {
      arrived_.wait_until(lock, until, hasMessage);
    }
  }
  Application.ProcessMessages();
}

void ThreadQueue::Dispatch() {
  size_t count = 0;
  {
    const std::lock_guard lock(mutex_);
    count = messages_.size();
  }
  // One at a time: a handler that dispatches must find the rest of them here.
  while (count-- > 0 && RunNextMessage()) {
  }
  RunDueTimers();
}

void ThreadQueue::AddTimer(const std::shared_ptr<Timer>& timer) {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  timer->due = Clock::now() + timer->interval;
  if (std::find(timers_.begin(), timers_.end(), timer) == timers_.end()) timers_.push_back(timer);
  UpdateAttention();
  WakeHost();
}

void ThreadQueue::RemoveTimer(const std::shared_ptr<Timer>& timer) {
  const std::lock_guard lock(mutex_);
  timers_.erase(std::remove(timers_.begin(), timers_.end(), timer), timers_.end());
  UpdateAttention();
}

void ThreadQueue::SetWakeUp(Message wake) {
  const std::lock_guard lock(mutex_);
  wakeHost_.swap(wake);
}

std::optional<std::chrono::milliseconds> ThreadQueue::TimeToNextTimer() const {
  const std::lock_guard lock(mutex_);
  if (timers_.empty()) return std::nullopt;
  const auto left = std::max(NextDue() - Clock::now(), Clock::duration::zero());
  return std::chrono::ceil<std::chrono::milliseconds>(left);
}

void ThreadQueue::Close() {
  std::deque<Message> unrun;
  const std::lock_guard lock(mutex_);
  closed_ = true;
  unrun.swap(messages_);
  timers_.clear();
  UpdateAttention();
}

bool ThreadQueue::RunNextMessage() {
  Message message;
  {
    const std::lock_guard lock(mutex_);
    if (messages_.empty()) return false;
    message = std::move(messages_.front());
    messages_.pop_front();
    UpdateAttention();
  }
  Application.Guard(message);
  return true;
}

void ThreadQueue::RunDueTimers() {
  Timers timers;
  {
    const std::lock_guard lock(mutex_);
    timers = timers_;
  }
  if (timers.empty()) return;
  const Clock::time_point now = Clock::now();
  for (const std::shared_ptr<Timer>& timer : timers) {
    if (Restart(timer, now)) Application.Guard(timer->tick);
  }
}

/// True if the timer exists and is due. Its next interval begins now: missed ticks are skipped.
bool ThreadQueue::Restart(const std::shared_ptr<Timer>& timer, Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  if (std::find(timers_.begin(), timers_.end(), timer) == timers_.end()) return false;
  if (timer->due > now) return false;
  timer->due = now + timer->interval;
  return true;
}

ThreadQueue::Clock::time_point ThreadQueue::NextDue() const {
  auto next = Clock::time_point::max();
  for (const std::shared_ptr<Timer>& timer : timers_) next = std::min(next, timer->due);
  return next;
}

/// Under the lock, so that SetWakeUp can promise that no call is under way.
void ThreadQueue::WakeHost() {
  if (wakeHost_) wakeHost_();
}

void ThreadQueue::UpdateAttention() {
  attention_.store(messages_.size() + timers_.size(), std::memory_order_release);
}

}  // namespace rasterkit
