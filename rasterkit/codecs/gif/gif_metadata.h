#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_metadata.h>

namespace rasterkit::detail {

/// Walks the blocks and counts the pictures. `file` starts with a GIF signature. Never throws: the
/// walk ends where the file is damaged.
void ReadGifMetadata(std::span<const uint8_t> file, PictureMetadata& metadata);

}  // namespace rasterkit::detail
