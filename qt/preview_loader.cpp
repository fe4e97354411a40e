#include <QCoreApplication>
#include <list>
#include <mutex>
#include <system_error>
#include <utility>

#include <rasterkit/host/runtime/application.h>
#include <rasterkit/package/strings.h>
#include <rasterkit/qt/preview_loader.h>

namespace rasterkit::detail {

/// What the thread and the loader share, whichever of them ends first.
struct PreviewLoader::Job {
  Request request;
  std::atomic<bool> isCancelled = false;
  std::atomic<bool> isDone = false;
  std::mutex mutex;
  /// Null once the loader is gone; guarded by the mutex.
  PreviewLoader* loader = nullptr;
};

namespace {

using DoneMark = std::shared_ptr<const std::atomic<bool>>;

/// Threads whose loader is gone.
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
    // The application's end comes before that of the libraries, whose memory the decoders use.
    if (threads_.empty()) qAddPostRoutine(JoinLatePreviews);
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

void JoinLatePreviews() {
  Late().Join();
}

PreviewLoader::PreviewLoader(Answer answer) : answer_(std::move(answer)) {}

PreviewLoader::~PreviewLoader() {
  if (!job_) return;
  job_->isCancelled = true;
  {
    const std::lock_guard lock(job_->mutex);
    job_->loader = nullptr;
  }
  if (job_->isDone) {
    thread_.join();
  } else {
    Late().Keep(std::move(thread_), DoneMark(job_, &job_->isDone));
  }
}

void PreviewLoader::Load(std::string fileName, int side) {
  Request request{std::move(fileName), side};
  if (!job_) return Start(std::move(request));
  job_->isCancelled = true;
  next_ = std::move(request);
}

void PreviewLoader::Cancel() {
  next_.reset();
  if (job_) job_->isCancelled = true;
}

void PreviewLoader::Start(Request request) {
  auto job = std::make_shared<Job>();
  job->request = std::move(request);
  job->loader = this;
  try {
    thread_ = std::thread([job] { Run(job); });
    job_ = std::move(job);
  } catch (const std::system_error&) {
    // The system has no further thread; the dialog works without.
    answer_({{}, rsPreviewNone});
  }
}

void PreviewLoader::Run(const std::shared_ptr<Job>& job) {
  const Preview preview = DecodePreview(job->request.fileName, job->request.side, job->isCancelled);
  const std::lock_guard lock(job->mutex);
  job->isDone = true;
  if (job->loader == nullptr) return;
  // Dropped by Qt when the loader goes before its turn comes.
  QMetaObject::invokeMethod(
      job->loader, [loader = job->loader, job, preview] { loader->Finish(job, preview); },
      Qt::QueuedConnection);
}

void PreviewLoader::Finish(const std::shared_ptr<Job>& job, const Preview& preview) {
  thread_.join();
  job_.reset();
  if (next_) {
    Start(*std::exchange(next_, std::nullopt));
  } else if (!job->isCancelled) {
    Application.Guard([&] { answer_(preview); });
  }
}

}  // namespace rasterkit::detail
