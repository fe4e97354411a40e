#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What lies in a picture file beside its pixels.
struct PictureMetadata {
  /// Each kind once, in the order of the file: "exif", "xmp", "iptc", "comment", "text", "profile".
  std::vector<std::string> kinds;
  /// The first EXIF block from its byte-order mark on, within the bytes given; empty when there is
  /// none.
  std::span<const uint8_t> exif;
  /// Pictures of an animation; 1 for anything else.
  int pictures = 1;
};

/// Walks the segments of a JPEG, the chunks of a PNG or WebP or the blocks of a GIF file without
/// decoding; other bytes have no metadata known here. Never throws: the walk ends where the file
/// stops making sense.
RASTERKIT_EXPORT PictureMetadata ReadMetadata(std::span<const uint8_t> bytes);

}  // namespace rasterkit
