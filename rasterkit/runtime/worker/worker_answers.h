#pragma once

#include <optional>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_message.h>

namespace rasterkit::detail {

/// In the worker: what answers the requests for one kind of files.
class RASTERKIT_EXPORT WorkerAnswers {
 public:
  virtual ~WorkerAnswers();

  /// Loads what must be loaded before the process is locked in. No byte of a file is read.
  virtual void Prepare() {}
  /// Answers a request. An exception becomes the answer.
  virtual WorkerMessage Answer(WorkerMessage request) = 0;
  /// Asked on another thread every 100 ms while a request is answered. Returns an error if the
  /// answer will never come; the process then ends with it.
  virtual std::optional<WorkerError> Stuck() { return std::nullopt; }
};

/// Lets this process take `bytes` of memory from now on, at most as many as it was allowed when it
/// was locked in. No-op in a process that was not locked in.
RASTERKIT_EXPORT void AllowWorkerMemory(uint64_t bytes);

}  // namespace rasterkit::detail
