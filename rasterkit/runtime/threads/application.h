#pragma once

#include <chrono>
#include <functional>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The process as its threads see it.
class RASTERKIT_EXPORT TApplication {
 public:
  /// The host's own event loop is turned at most once in this time.
  static constexpr std::chrono::milliseconds PumpInterval{10};

  /// Runs what waits in the calling thread's queue and turns the host's event loop (the port
  /// `messagePump`), without blocking. On a thread without a queue it does nothing: a worker may
  /// call it at every row.
  void ProcessMessages();

  /// Runs a handler; what it throws goes to HandleException, for no exception may leave an event
  /// loop.
  void Guard(const std::function<void()>& handler) noexcept;

  /// Shows the text of the exception that is being handled (the port `messageBox`). Call it in a
  /// catch clause.
  void HandleException() noexcept;
};

RASTERKIT_EXPORT extern TApplication Application;

}  // namespace rasterkit
