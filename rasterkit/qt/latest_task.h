#pragma once

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

/// Work beside the thread that shows its results. Internal to the room.
namespace rasterkit::detail {

/// Does one piece of work at a time on a thread of its own, always the one asked for last. May be
/// destroyed at any moment and does not wait then: work that cannot be interrupted runs to its end
/// unheard, and is joined before the application object goes.
class LatestTask : public QObject {
 public:
  /// What is done on this object's thread, through Qt's loop, once the work is done.
  using Answer = std::function<void()>;
  /// Runs on the other thread; may end early once `isCancelled`, its answer is dropped then.
  using Work = std::function<Answer(const std::atomic<bool>& isCancelled)>;

  LatestTask() = default;
  ~LatestTask() override;

  /// Asks for some work; what was asked for before is given up. `withoutThread` is called instead
  /// when the system has no further thread.
  void Run(Work work, Answer withoutThread);
  /// Gives up what was asked for; it is not answered.
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

/// Waits for work that outlived those who asked for it.
void JoinLateTasks();

}  // namespace rasterkit::detail
