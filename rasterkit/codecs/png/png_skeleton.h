#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A PNG file without its pixels.
struct PngSkeleton {
  /// The file up to its end chunk; chunks of pixels are empty. Of a chunk that is cut off, at most
  /// its first 12 bytes are there.
  std::vector<uint8_t> file;
  /// Bytes after the end chunk.
  uint64_t trailingBytes = 0;
};

/// Reads a file from the stream's position on, and skips its pixels.
PngSkeleton ReadPngSkeleton(TStream& stream);

}  // namespace rasterkit::detail
