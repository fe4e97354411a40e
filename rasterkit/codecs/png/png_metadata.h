#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_metadata.h>

namespace rasterkit::detail {

/// Walks the chunks. `file` starts with a PNG signature. Never throws: the walk ends where the file
/// is damaged.
void ReadPngMetadata(std::span<const uint8_t> file, PictureMetadata& metadata);

}  // namespace rasterkit::detail
