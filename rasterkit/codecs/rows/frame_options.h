#pragma once

#include <optional>

#include <rasterkit/runtime/limits.h>

namespace rasterkit {

/// Options of a frame decoder.
struct FrameOptions {
  /// Threads that decode strips and tiles, 1 to 64. The pixels do not depend on it.
  int threads = 1;
  /// Limits of this call. No value: those of the calling thread (see CurrentLimits). If the thread
  /// has a LimitsScope, the stricter value of each field counts.
  std::optional<Limits> limits = {};
};

}  // namespace rasterkit
