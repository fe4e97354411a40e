#pragma once

#include <string>

#include <sys/types.h>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_channel.h>

namespace rasterkit::detail {

/// How a process ended.
struct ProcessEnd {
  enum class Kind {
    exited,
    signaled,
    /// Somebody else collected it, or the host ignores SIGCHLD.
    unknown
  } kind = Kind::unknown;
  /// Exit code or signal.
  int value = 0;
};

/// A running worker program. The destructor ends it at once, even in the middle of its work,
/// and leaves no zombie.
class RASTERKIT_EXPORT WorkerProcess {
 public:
  /// Starts a program, which gets one end of the channel as descriptor 3 and nothing else of this
  /// process: no other open file, no terminal, default signal handling. Signal handlers and
  /// children of this process are not affected. Throws Error.
  explicit WorkerProcess(const std::string& program);
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  const WorkerChannel& Channel() const { return channel_; }
  /// Readable once the process has ended.
  int EndHandle() const { return process_.Handle(); }

  /// Kills the process and waits until it is gone, or longer than a user would notice: then a
  /// thread waits instead.
  ProcessEnd End();

 private:
  WorkerChannel channel_;
  /// Refers to the process whatever else gets its number later.
  SystemFile process_;
  pid_t owner_ = 0;
  bool hasEnded_ = false;
};

}  // namespace rasterkit::detail
