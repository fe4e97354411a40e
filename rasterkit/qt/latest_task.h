#pragma once

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

/// Background work whose results are shown by the thread that started it. Internal to this folder.
namespace rasterkit::detail {

/// Runs one job at a time on a separate thread, always the latest one requested. May be destroyed
/// at any time without waiting: a job that cannot be interrupted runs to its end, its answer is
/// dropped, and it is joined before the application object is destroyed.
class LatestTask : public QObject {
 public:
  /// Called on the thread of this object, through Qt's event loop, after the work is done.
  using Answer = std::function<void()>;
  /// Runs on the other thread. It may end early once `isCanceled` is set; its answer is dropped
  /// then. After an exception there is no answer: work that must tell of its faults catches them.
  using Work = std::function<Answer(const std::atomic<bool>& isCanceled)>;

  LatestTask() = default;
  ~LatestTask() override;

  /// Requests a job and cancels the previous request. `withoutThread` is called instead if the
  /// system cannot start a thread.
  void Run(Work work, Answer withoutThread);
  /// Cancels the request; its answer is not called.
  void Cancel();

 private:
  struct Job;
  struct Request {
    Work work;
    Answer withoutThread;
  };

  static void RunJob(const std::shared_ptr<Job>& job);
  void Start(Request request);
  void Finish(const std::shared_ptr<Job>& job, const Answer& answer);

  std::shared_ptr<Job> job_;
  std::thread thread_;
  std::optional<Request> next_;
};

/// Waits for the jobs whose LatestTask was destroyed.
void JoinLateTasks();

}  // namespace rasterkit::detail
