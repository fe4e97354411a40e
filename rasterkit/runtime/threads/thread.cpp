#include <condition_variable>
#include <mutex>
#include <system_error>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit {

struct ThreadHandle::State {
  std::mutex mutex;
  std::condition_variable changed;
  bool started = false;
  bool finished = false;
};

void ThreadHandle::Wait() const {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait(lock, [this] { return state_->finished || !state_->started; });
}

void WaitForThreads(std::span<const ThreadHandle> handles) {
  for (const ThreadHandle& handle : handles) handle.Wait();
}

void ThreadDeleter::operator()(TThread* thread) const {
  thread->Terminate();
  thread->WaitFor();
  std::default_delete<TThread>()(thread);
}

TThread::TThread(bool createSuspended)
    : createSuspended_(createSuspended),
      ownerQueue_(ThreadQueue::Share()),
      lifeToken_(std::make_shared<char>()) {
  handle_.state_ = std::make_shared<ThreadHandle::State>();
}

TThread::~TThread() {
  WaitFor();
  if (!thread_.joinable()) return;
  // A thread whose owner is gone frees its own object as its last deed.
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

void TThread::Start() {
  // The new thread waits for this lock, and may free the object as soon as it has it.
  const std::shared_ptr<ThreadHandle::State> state = handle_.state_;
  const std::lock_guard lock(state->mutex);
  if (state->started) throw Error("a thread cannot be started twice");
  try {
    thread_ = std::thread([this, call = CurrentCall()] {
      const LimitsScope limits(call);
      Run();
    });
  } catch (const std::system_error& error) {
    throw LimitError(std::string("the system cannot create another thread: ") + error.what());
  }
  state->started = true;
}

void TThread::StartAndFree(ThreadPtr<TThread> thread) {
  TThread& started = *thread;
  started.freeOnTerminate_ = true;
  started.self_ = std::move(thread);
  try {
    started.Start();
  } catch (...) {
    const ThreadPtr<TThread> unstarted = std::move(started.self_);
    throw;
  }
}

void TThread::Run() {
  const std::shared_ptr<ThreadHandle::State> state = handle_.state_;
  { const std::lock_guard untilStartIsDone(state->mutex); }
  try {
    Execute();
  } catch (...) {
    fatalException_ = std::current_exception();
  }
  {
    const std::lock_guard lock(state->mutex);
    state->finished = true;
    state->changed.notify_all();
  }
  PostTermination();
}

void TThread::PostTermination() {
  const std::shared_ptr<ThreadQueue> queue = ownerQueue_;
  if (freeOnTerminate_) {
    std::shared_ptr<TThread> self = std::move(self_);
    queue->Post([self = std::move(self)] { self->DoTerminate(); });
  } else if (OnTerminate) {
    queue->Post([this, life = std::weak_ptr<char>(lifeToken_)] {
      if (!life.expired()) DoTerminate();
    });
  }
}

void TThread::DoTerminate() {
  if (OnTerminate) OnTerminate(*this);
}

}  // namespace rasterkit
