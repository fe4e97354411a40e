#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_metadata.h>

namespace rasterkit::detail {

/// Walks the chunks and counts the pictures. `file` starts with a WebP signature. Never throws: the
/// walk ends where the file is damaged.
void ReadWebpMetadata(std::span<const uint8_t> file, PictureMetadata& metadata);

}  // namespace rasterkit::detail
