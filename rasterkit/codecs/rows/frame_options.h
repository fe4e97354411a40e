#pragma once

#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// Options of a frame decoder.
struct FrameOptions {
  /// Threads that decode strips and tiles, 1 to 64. The pixels do not depend on it.
  int threads = 1;
  /// Where DecodeFrame works; the decoders of single formats ignore it.
  Isolation isolation = Isolation::none;
};

}  // namespace rasterkit
