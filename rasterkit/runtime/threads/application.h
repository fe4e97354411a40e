#pragma once

#include <chrono>
#include <functional>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Event processing of the process.
class RASTERKIT_EXPORT TApplication {
 public:
  /// The port `messagePump` is called at most once in this time.
  static constexpr std::chrono::milliseconds kPumpInterval{10};

  /// Runs the messages in the calling thread's queue and calls the port `messagePump`, without
  /// blocking. No-op on a thread without a queue, so a worker may call it for every row.
  void ProcessMessages();

  /// Runs a handler and passes its exceptions to HandleException: no exception may leave an event
  /// loop.
  void Guard(const std::function<void()>& handler) noexcept;

  /// Shows the text of the current exception with the port `messageBox`. Call it in a catch
  /// clause.
  void HandleException() noexcept;
};

RASTERKIT_EXPORT extern TApplication Application;

}  // namespace rasterkit
