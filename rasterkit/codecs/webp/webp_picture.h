#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Reads all that is no pixel from a WebP file, in front of the pixels and behind them. Throws
/// FormatError if the file states no size; damaged metadata gives a warning in the header.
RASTERKIT_EXPORT PictureHeader ReadWebpHeader(std::span<const uint8_t> file);

}  // namespace rasterkit
