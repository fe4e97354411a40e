#include "worker/watch.h"

#include <cstdlib>
#include <optional>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace rasterkit::worker {
namespace {

constexpr int kBetweenQuestionsMilliseconds = 100;

}  // namespace

Watch::Watch(const detail::WorkerChannel& channel, detail::WorkerAnswers& answers)
    : channel_(channel), answers_(answers) {}

void Watch::Start() {
  std::thread([this] { Run(); }).detach();
}

bool Watch::Answer(const detail::WorkerMessage& message) {
  const std::lock_guard lock(sending_);
  isAnswering_ = false;
  return channel_.Send(message);
}

void Watch::Run() {
  while (true) {
    // Requests are left to the other thread; the end of the host is reported in any case.
    pollfd end{channel_.Handle(), 0, 0};
    if (poll(&end, 1, kBetweenQuestionsMilliseconds) > 0) _exit(EXIT_SUCCESS);
    if (!isAnswering_) continue;
    const std::optional<detail::WorkerError> error = answers_.Stuck();
    if (!error) continue;
    const std::lock_guard lock(sending_);
    if (!isAnswering_) continue;
    channel_.Send(detail::FailedMessage(*error));
    _exit(EXIT_FAILURE);
  }
}

}  // namespace rasterkit::worker
