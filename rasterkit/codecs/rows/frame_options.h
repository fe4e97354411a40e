#pragma once

namespace rasterkit {

/// Options of a frame decoder.
struct FrameOptions {
  /// Threads that decode strips and tiles, 1 to 64. The pixels do not depend on it.
  int threads = 1;
};

}  // namespace rasterkit
