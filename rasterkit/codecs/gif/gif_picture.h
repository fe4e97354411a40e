#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Reads all that is no pixel from a GIF file: the kind of pixels of the first picture, comments,
/// XMP, ICC profile, the number of pictures. Throws FormatError if there is no picture; damage
/// after the first one gives a warning in the header.
RASTERKIT_EXPORT PictureHeader ReadGifHeader(std::span<const uint8_t> file);

}  // namespace rasterkit
