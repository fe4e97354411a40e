#pragma once

#include <functional>

namespace rasterkit {

/// How a stage runs.
struct StageRun {
  /// At least 1. No result depends on it.
  int threads = 1;
  /// Called on the calling thread with 0 to 1, never going back; may throw CanceledError.
  std::function<void(double)> progress;
};

}  // namespace rasterkit
