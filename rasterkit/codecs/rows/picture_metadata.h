#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/rows/metadata_kind.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What a picture file holds besides its pixels.
struct PictureMetadata {
  /// Each kind once, in the order of the file.
  std::vector<MetadataKind> kinds;
  /// The first EXIF block from its byte-order mark on, a part of the bytes given; empty if there is
  /// no block.
  std::span<const uint8_t> exif;
  /// Number of pictures in an animation; 1 for every other file.
  int pictures = 1;

  /// Adds the kind unless it is there already.
  RASTERKIT_EXPORT void Add(MetadataKind kind);
  /// Adds the kind `exif`; the first block is kept.
  RASTERKIT_EXPORT void AddExif(std::span<const uint8_t> block);
};

}  // namespace rasterkit
