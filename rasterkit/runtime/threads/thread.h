#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <thread>
#include <utility>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {

class TThread;

/// Ends a thread before its object is destroyed: requests termination and waits. The destructor of
/// the base class would be too late: the derived part, on which the thread works, is destroyed
/// before it runs.
struct RASTERKIT_EXPORT ThreadDeleter {
  void operator()(TThread* thread) const;
};

/// Owns a thread object.
template <typename T>
using ThreadPtr = std::unique_ptr<T, ThreadDeleter>;

/// A handle to wait on; it may outlive the thread object.
class RASTERKIT_EXPORT ThreadHandle {
 public:
  /// Blocks until the thread has ended; returns at once if it was never started.
  void Wait() const;

 private:
  friend class TThread;
  struct State;
  std::shared_ptr<State> state_;
};

/// Waits, without a time limit, until all of the threads have ended.
RASTERKIT_EXPORT void WaitForThreads(std::span<const ThreadHandle> handles);

/// A thread with an owner: the thread that created the object and that runs the termination event.
///
/// Derive, do the work in `Execute`, and make objects with `MakeThread`. An exception of `Execute`
/// ends only this thread and is kept in `FatalException`. The thread works under the limits of the
/// call that started it (see LimitsScope). All members but `Terminate` and `Terminated` are for the
/// owner thread.
class RASTERKIT_EXPORT TThread {
 public:
  /// Nothing runs before `Start`; MakeThread calls that unless `createSuspended`.
  explicit TThread(bool createSuspended = true);
  virtual ~TThread();
  TThread(const TThread&) = delete;
  TThread& operator=(const TThread&) = delete;

  /// The termination event, run on the owner's queue after `Execute` has ended, by error too, with
  /// the thread as sender. Lost when the owner thread or (unless the thread frees itself) this
  /// object is gone by then.
  std::function<void(TThread& sender)> OnTerminate;

  /// Throws LimitError if the system cannot create another thread, Error if it was started before.
  void Start();
  /// Starts a thread that owns itself and is freed right after its termination event (at once when
  /// its owner thread has ended). On an error it is freed too.
  static void StartAndFree(ThreadPtr<TThread> thread);

  /// Blocks until `Execute` has ended; returns at once when the thread was never started.
  void WaitFor() const { handle_.Wait(); }
  const ThreadHandle& Handle() const { return handle_; }

  /// Asks `Execute` to end soon; what it makes of it is its own business.
  void Terminate() noexcept { terminated_.store(true, std::memory_order_relaxed); }
  bool Terminated() const noexcept { return terminated_.load(std::memory_order_relaxed); }

  bool CreateSuspended() const { return createSuspended_; }
  bool FreeOnTerminate() const { return freeOnTerminate_; }
  /// What ended `Execute`, or null. Valid after WaitFor, and in the termination event.
  std::exception_ptr FatalException() const { return fatalException_; }

 protected:
  virtual void Execute() = 0;

 private:
  void Run();
  void PostTermination();
  void DoTerminate();

  const bool createSuspended_;
  bool freeOnTerminate_ = false;
  std::atomic<bool> terminated_{false};
  std::exception_ptr fatalException_;
  std::shared_ptr<ThreadQueue> ownerQueue_;
  /// The only owner: queued messages hold a weak pointer to it, to know if the object exists.
  std::shared_ptr<char> lifeToken_;
  ThreadHandle handle_;
  std::thread thread_;
  ThreadPtr<TThread> self_;
};

/// Makes a thread object of class T, and starts it unless it was created suspended.
template <typename T, typename... Arguments>
ThreadPtr<T> MakeThread(Arguments&&... arguments) {
  ThreadPtr<T> thread(std::make_unique<T>(std::forward<Arguments>(arguments)...).release());
  if (!thread->CreateSuspended()) thread->Start();
  return thread;
}

}  // namespace rasterkit
