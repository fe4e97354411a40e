#pragma once

#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Encodes a pf8bit raster with a grey ramp as grey, pf24bit as colour (other formats: convert
/// first; FormatError). `quality` is clamped to 1 to 100. Resolution and ICC profile are written.
/// Throws LimitError for more than 65,500 pixels in one direction.
RASTERKIT_EXPORT std::vector<uint8_t> EncodeJpeg(const Raster& raster, int quality);

}  // namespace rasterkit
