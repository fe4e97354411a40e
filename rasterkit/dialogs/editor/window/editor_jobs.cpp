#include <exception>
#include <new>
#include <system_error>
#include <utility>

#include <rasterkit/dialogs/editor/window/editor_jobs.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

struct EditorJobs::Running {
  EditorJob job;
  Limits limits;
  std::atomic<double> progress = -1;
  /// Written by the thread, read after it ended.
  std::string error;
  bool wasCanceled = false;
};

EditorJobs::~EditorJobs() {
  thread_.request_stop();
  if (thread_.joinable()) thread_.join();
}

double EditorJobs::Progress() const {
  return job_ ? job_->progress.load() : -1;
}

bool EditorJobs::IsSaving() const {
  return job_ && job_->job.isSave;
}

void EditorJobs::Cancel() {
  thread_.request_stop();
}

void EditorJobs::Start(EditorJob job) {
  job_ = std::make_shared<Running>();
  job_->job = std::move(job);
  job_->limits = CurrentLimits();
  try {
    thread_ = std::jthread([this, running = job_](const std::stop_token& cancel) {
      Work(*running, cancel);
      // Qt drops the call if this object is destroyed first.
      QMetaObject::invokeMethod(
          this, [this] { Finish(); }, Qt::QueuedConnection);
    });
  } catch (const std::system_error& error) {
    job_->error = error.what();
    QMetaObject::invokeMethod(
        this, [this] { Finish(); }, Qt::QueuedConnection);
  }
}

void EditorJobs::Work(Running& job, const std::stop_token& cancel) {
  try {
    const LimitsScope scope(job.limits);
    job.job.work(cancel, [&job](double progress) { job.progress = progress; });
  } catch (const CanceledError&) {
    job.wasCanceled = true;
  } catch (const std::bad_alloc&) {
    job.error = ResourceString(rsEditorNoMemory);
  } catch (const std::exception& error) {
    job.error = error.what();
  } catch (...) {
    job.error = ResourceString(rsEditorUnknownFault);
  }
}

void EditorJobs::Finish() {
  if (thread_.joinable()) thread_.join();
  // The next job may be started by `done`.
  const std::shared_ptr<Running> ended = std::exchange(job_, nullptr);
  Application.Guard([&] { ended->job.done(ended->error, ended->wasCanceled); });
  Q_EMIT this->ended();
}

}  // namespace rasterkit
