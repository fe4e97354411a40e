#include <QPdfDocument>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

#include <rasterkit/qt/pdf/pdf_engine.h>
#include <rasterkit/qt/pdf/pdf_thread.h>
#include <rasterkit/qt/pdf/stream_device.h>
#include <rasterkit/runtime/threads/thread_time.h>

namespace rasterkit {
namespace {

/// An idle thread ends well within this time.
constexpr std::chrono::milliseconds kEndsWithin{100};

/// A readable file delivers a byte much sooner, however large it is.
constexpr double kMostSecondsWithoutByte = 5;

std::atomic<bool> isEngineStuck = false;

/// Threads whose owner was destroyed before their last job ended.
class OrphanThreads {
 public:
  /// Never destroyed: it is used at the end of the process.
  static OrphanThreads& Instance() {
    static OrphanThreads& threads = *std::make_unique<OrphanThreads>().release();
    return threads;
  }

  void Adopt(std::thread thread) {
    const std::lock_guard lock(mutex_);
    threads_.push_back(std::move(thread));
  }

  void JoinAll() {
    if (isEngineStuck) return LeaveAll();
    for (std::vector<std::thread> threads; !(threads = Take()).empty();) {
      for (std::thread& thread : threads) thread.join();
    }
  }

 private:
  /// Detaches threads that never end; their objects are leaked on purpose.
  void LeaveAll() {
    for (std::thread& thread : Take()) thread.detach();
  }

  std::vector<std::thread> Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(threads_, {});
  }

  std::mutex mutex_;
  std::vector<std::thread> threads_;
};

/// Exit handlers run in reverse order: this one is registered after the engine's and runs before
/// them.
void WaitAtExit() {
  static const bool registered = [] {
    const QPdfDocument makesTheLock;
    return std::atexit([] { OrphanThreads::Instance().JoinAll(); }) == 0;
  }();
  static_cast<void>(registered);
}

}  // namespace

struct PdfThread::State {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::pair<Kind, Job>> jobs;
  /// A job that only reads is running.
  bool isReading = false;
  bool isEnding = false;
  bool hasEnded = false;

  /// Returns the next job, or an empty one at the end. Abandoned jobs are not started.
  Job Next() {
    std::unique_lock lock(mutex);
    isReading = false;
    changed.wait(lock, [this] { return isEnding || !jobs.empty(); });
    if (isEnding) return {};
    auto [kind, job] = std::move(jobs.front());
    jobs.pop_front();
    isReading = kind == Kind::reading;
    return std::move(job);
  }

  void SayEnded() {
    const std::lock_guard lock(mutex);
    hasEnded = true;
    changed.notify_all();
  }
};

bool PdfThread::IsEngineStuck() {
  return isEngineStuck;
}

bool PdfThread::GoesInCircles() {
  {
    const std::lock_guard lock(state_->mutex);
    if (!state_->isReading) {
      lastReading_.reset();
      return false;
    }
  }
  const Reading now{StreamDevice::Reads(), ProcessorSeconds(thread_)};
  if (!lastReading_ || now.reads != lastReading_->reads) lastReading_ = now;
  if (now.seconds - lastReading_->seconds <= kMostSecondsWithoutByte) return false;
  isEngineStuck = true;
  return true;
}

PdfThread::PdfThread() : state_(std::make_shared<State>()) {
  WaitAtExit();
  thread_ = std::thread([state = state_] { Run(state); });
}

PdfThread::~PdfThread() {
  std::unique_lock lock(state_->mutex);
  state_->isEnding = true;
  state_->changed.notify_all();
  const bool hasEnded =
      state_->changed.wait_for(lock, kEndsWithin, [this] { return state_->hasEnded; });
  lock.unlock();
  if (hasEnded) {
    thread_.join();
  } else {
    OrphanThreads::Instance().Adopt(std::move(thread_));
  }
}

void PdfThread::Post(Kind kind, Job job) {
  lastReading_.reset();
  const std::lock_guard lock(state_->mutex);
  state_->jobs.emplace_back(kind, std::move(job));
  state_->changed.notify_all();
}

void PdfThread::Run(const std::shared_ptr<State>& state) {
  {
    PdfEngine engine;
    while (const Job job = state->Next()) job(engine);
  }
  state->SayEnded();
}

}  // namespace rasterkit
