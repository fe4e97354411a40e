#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_message.h>
#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::detail {

/// Thrown by calls of WorkerTurn if the callback canceled them; derived from no other error.
struct WorkerCanceled {};

/// A worker process for one file. It is started when it is needed, and again after it ended. It
/// must never read two files: the first one could change what the second one becomes.
///
/// At most as many workers as processors run at the same time. If there are more sessions, one that
/// is not used loses its process; its next turn starts a fresh one.
///
/// May be used by one thread at a time.
class RASTERKIT_EXPORT WorkerSession {
 public:
  /// Called with each error that the worker reports; may throw one of its own.
  using ErrorHook = std::function<void(const WorkerError& error)>;

  /// `what` begins the messages of errors: "PDF".
  WorkerSession(WorkerReader reader, std::string what, ErrorHook onError = {});
  /// Ends the process.
  ~WorkerSession();
  WorkerSession(const WorkerSession&) = delete;
  WorkerSession& operator=(const WorkerSession&) = delete;

 private:
  friend class WorkerTurn;
  struct State;
  std::unique_ptr<State> state_;
};

/// One use of a session: as long as it lives, the process stays. If a call throws, the process is
/// ended.
class RASTERKIT_EXPORT WorkerTurn {
 public:
  /// Called on the calling thread about every 10 ms while a call waits. False cancels; an exception
  /// leaves through the call.
  using KeepGoing = std::function<bool()>;

  /// Waits for a free place and starts the process if necessary. Throws UnsupportedError if there
  /// is no worker program, Error if it cannot be started, TimeLimitError, and WorkerCanceled.
  WorkerTurn(WorkerSession& session, KeepGoing keepGoing);
  ~WorkerTurn();
  WorkerTurn(const WorkerTurn&) = delete;
  WorkerTurn& operator=(const WorkerTurn&) = delete;

  /// True if the process is new and knows nothing of earlier requests.
  bool IsFresh() const;

  /// Sends a request and returns its answer, which is of the kind `answer` and has `files` files.
  ///
  /// Throws the error that the worker reports; then the worker can still be used. Ends the worker
  /// and throws FormatError if it crashed or answered something else, LimitError if it ran out of
  /// memory, TimeLimitError if the time of the call is over (see Limits), and WorkerCanceled.
  WorkerMessage Ask(const WorkerMessage& request, uint16_t answer, size_t files = 0);

  /// How the process is locked in.
  WorkerProtection Protection();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit::detail
