#include <QCoreApplication>
#include <list>
#include <mutex>
#include <system_error>
#include <utility>

#include <rasterkit/qt/latest_task.h>
#include <rasterkit/runtime/threads/application.h>

namespace rasterkit::detail {

/// Shared by the thread and the task, which may end in either order.
struct LatestTask::Job {
  Work work;
  std::atomic<bool> isCanceled = false;
  std::atomic<bool> isDone = false;
  std::mutex mutex;
  /// Null after the task was destroyed; guarded by the mutex.
  LatestTask* task = nullptr;
};

namespace {

using DoneMark = std::shared_ptr<const std::atomic<bool>>;

/// Threads whose task was destroyed.
class LateThreads {
 public:
  ~LateThreads() { Join(); }

  void Keep(std::thread thread, DoneMark done) {
    const std::lock_guard lock(mutex_);
    threads_.remove_if([](Late& late) {
      if (!*late.done) return false;
      late.thread.join();
      return true;
    });
    // The application ends before the libraries whose memory the work uses.
    if (threads_.empty()) qAddPostRoutine(JoinLateTasks);
    threads_.push_back({std::move(thread), std::move(done)});
  }

  void Join() {
    std::list<Late> threads;
    {
      const std::lock_guard lock(mutex_);
      threads.swap(threads_);
    }
    for (Late& late : threads) late.thread.join();
  }

 private:
  struct Late {
    std::thread thread;
    DoneMark done;
  };

  std::mutex mutex_;
  std::list<Late> threads_;
};

LateThreads& Late() {
  static LateThreads threads;
  return threads;
}

}  // namespace

void JoinLateTasks() {
  Late().Join();
}

LatestTask::~LatestTask() {
  if (!job_) return;
  job_->isCanceled = true;
  {
    const std::lock_guard lock(job_->mutex);
    job_->task = nullptr;
  }
  if (job_->isDone) {
    thread_.join();
  } else {
    Late().Keep(std::move(thread_), DoneMark(job_, &job_->isDone));
  }
}

void LatestTask::Run(Work work, Answer withoutThread) {
  Request request{std::move(work), std::move(withoutThread)};
  if (!job_) return Start(std::move(request));
  job_->isCanceled = true;
  next_ = std::move(request);
}

void LatestTask::Cancel() {
  next_.reset();
  if (job_) job_->isCanceled = true;
}

void LatestTask::Start(Request request) {
  auto job = std::make_shared<Job>();
  job->work = std::move(request.work);
  job->task = this;
  try {
    thread_ = std::thread([job] { RunJob(job); });
    job_ = std::move(job);
  } catch (const std::system_error&) {
    request.withoutThread();
  }
}

void LatestTask::RunJob(const std::shared_ptr<Job>& job) {
  Answer answer;
  try {
    answer = job->work(job->isCanceled);
  } catch (...) {
    // There is no one to tell here; an exception that leaves the thread would end the process.
    answer = nullptr;
  }
  const std::lock_guard lock(job->mutex);
  job->isDone = true;
  if (job->task == nullptr) return;
  // Qt drops the event if the task is destroyed first.
  QMetaObject::invokeMethod(
      job->task, [task = job->task, job, answer] { task->Finish(job, answer); },
      Qt::QueuedConnection);
}

void LatestTask::Finish(const std::shared_ptr<Job>& job, const Answer& answer) {
  thread_.join();
  job_.reset();
  if (next_) {
    Application.Guard([this] { Start(*std::exchange(next_, std::nullopt)); });
  } else if (!job->isCanceled && answer) {
    Application.Guard([&] { answer(); });
  }
}

}  // namespace rasterkit::detail
