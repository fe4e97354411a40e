#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_metadata.h>

namespace rasterkit::detail {

/// Walks the segments up to the first scan. `file` starts with a JPEG signature. Never throws: the
/// walk ends where the file is damaged.
void ReadJpegMetadata(std::span<const uint8_t> file, PictureMetadata& metadata);

}  // namespace rasterkit::detail
