#pragma once

#include <QTimer>
#include <memory>
#include <stop_token>

#include <rasterkit/dialogs/saving/saving_view.h>
#include <rasterkit/qt/latest_task.h>
#include <rasterkit/runtime/limits.h>

/// Background work of the windows of saving. Internal to this folder.
namespace rasterkit::detail {

/// Runs the latest job of one kind beside the window, after a short rest in which further changes
/// replace it. Jobs in the way are stopped, and nothing waits for them.
class StoppableTask {
 public:
  /// `rest` is in milliseconds.
  explicit StoppableTask(int rest);
  ~StoppableTask();

  /// The job works under the limits of the calling thread.
  void Start(SavingView::Job job);
  void Stop();

 private:
  void Run();

  QTimer timer_;
  SavingView::Job job_;
  Limits limits_;
  std::stop_source stop_;
  LatestTask task_;
};

}  // namespace rasterkit::detail
