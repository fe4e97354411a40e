#include <utility>

#include <rasterkit/dialogs/saving/stoppable_task.h>

namespace rasterkit::detail {

StoppableTask::StoppableTask(int rest) {
  timer_.setSingleShot(true);
  timer_.setInterval(rest);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Run(); });
}

StoppableTask::~StoppableTask() {
  stop_.request_stop();
}

void StoppableTask::Start(SavingView::Job job) {
  Stop();
  job_ = std::move(job);
  limits_ = CurrentLimits();
  timer_.start();
}

void StoppableTask::Stop() {
  timer_.stop();
  stop_.request_stop();
  task_.Cancel();
  job_ = {};
}

void StoppableTask::Run() {
  stop_ = std::stop_source();
  const auto work = [job = std::move(job_), stop = stop_.get_token(),
                     limits = limits_](const std::atomic<bool>&) {
    const LimitsScope scope(limits);
    return job(stop);
  };
  job_ = {};
  // Without a thread the window shows what is known without the work.
  task_.Run(work, [] {});
}

}  // namespace rasterkit::detail
