#pragma once

#include <QObject>
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include <rasterkit/dialogs/editor/editor_view.h>

namespace rasterkit {

/// The job of an editor on a thread of its own. `done` is called on the thread of this object,
/// through Qt's event loop, under `Application.Guard`. What `work` throws ends there and is told as
/// an error. Destroying it cancels the job and waits for its end; `done` is not called then.
class EditorJobs : public QObject {
  Q_OBJECT

 public:
  EditorJobs() = default;
  ~EditorJobs() override;

  /// One job at a time. The job works under the limits of the calling thread. If the system cannot
  /// start a thread, `done` gets an error.
  void Start(EditorJob job);
  void Cancel();
  bool IsRunning() const { return job_ != nullptr; }
  bool IsSaving() const;
  /// Of the running job, 0 to 1; negative as long as it has told nothing.
  double Progress() const;

 Q_SIGNALS:
  /// The job has ended and its `done` was called.
  void ended();

 private:
  struct Running;

  static void Work(Running& job, const std::stop_token& cancel);
  void Finish();

  std::shared_ptr<Running> job_;
  std::jthread thread_;
};

}  // namespace rasterkit
