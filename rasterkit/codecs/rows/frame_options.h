#pragma once

namespace rasterkit {

/// How a frame is decoded.
struct FrameOptions {
  /// Threads that decode strips and tiles, 1 to 64. The pixels do not depend on it.
  int threads = 1;
};

}  // namespace rasterkit
