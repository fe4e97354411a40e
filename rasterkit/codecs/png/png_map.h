#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Where the chunks of a PNG file are, found by a walk over their lengths.
struct PngMap {
  /// Bytes from the start of the file to the end of the stream.
  uint64_t fileBytes = 0;
  /// A chunk reaches beyond the file, or the end chunk is missing.
  bool isTruncated = true;
  /// Place of the first chunk of pixels in the stream, and bytes of pixels in all chunks that
  /// follow it directly. 0 without such chunks.
  uint64_t dataAt = 0, dataBytes = 0;
  /// Most bytes of one of them.
  uint64_t mostBytes = 0;
  /// A file of the signature, the header chunk, and the chunks in front of the pixels that hold the
  /// palette and its opacities. The signature alone if the header chunk is not the first one.
  std::vector<uint8_t> front;
};

/// Walks over the file that starts at the stream's position, and goes back to it.
PngMap MapPng(TStream& stream);

}  // namespace rasterkit::detail
