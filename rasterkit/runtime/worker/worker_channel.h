#pragma once

#include <optional>
#include <utility>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_message.h>

namespace rasterkit::detail {

/// One end of the socket between this process and a worker. No call raises SIGPIPE.
class RASTERKIT_EXPORT WorkerChannel {
 public:
  WorkerChannel() = default;
  explicit WorkerChannel(SystemFile socket) : socket_(std::move(socket)) {}
  /// Makes two connected ends, which programs started later do not inherit. Throws Error.
  static std::pair<WorkerChannel, WorkerChannel> Pair();

  int Handle() const { return socket_.Handle(); }
  void Close() { socket_ = SystemFile(); }

  /// Sends a message; its files stay open here. Does not wait: a full socket is an error, since
  /// each side sends one message at a time. Returns false if the other end is closed or full.
  bool Send(const WorkerMessage& message) const;
  /// Waits for a message; nothing if the other end is closed. Throws FormatError for an invalid
  /// one; the files that came with it are closed.
  std::optional<WorkerMessage> Receive() const;

 private:
  SystemFile socket_;
};

}  // namespace rasterkit::detail
