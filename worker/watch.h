#pragma once

#include <atomic>
#include <mutex>

#include <rasterkit/runtime/worker/worker_answers.h>
#include <rasterkit/runtime/worker/worker_channel.h>

namespace rasterkit::worker {

/// Sends the answers, and watches from a thread of its own: ends the process when the host is gone
/// or an answer will never come, whatever the process is doing.
class Watch {
 public:
  /// Both must live as long as the process.
  Watch(const detail::WorkerChannel& channel, detail::WorkerAnswers& answers);

  /// Starts the thread. Throws std::system_error.
  void Start();
  /// A request is answered from now on.
  void Begin() { isAnswering_ = true; }
  /// Sends the answer. Returns false if the host is gone.
  bool Answer(const detail::WorkerMessage& message);

 private:
  [[noreturn]] void Run();

  const detail::WorkerChannel& channel_;
  detail::WorkerAnswers& answers_;
  std::mutex sending_;
  std::atomic<bool> isAnswering_ = false;
};

}  // namespace rasterkit::worker
