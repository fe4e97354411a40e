#pragma once

#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Encodes a pf8bit raster with a gray ramp as gray, pf24bit as color. `quality` is clamped to 1 to
/// 100. Resolution and ICC profile are written. Throws FormatError for other pixel formats (convert
/// them first), LimitError for a width or height above 65,500 pixels.
RASTERKIT_EXPORT std::vector<uint8_t> EncodeJpeg(const Raster& raster, int quality);

}  // namespace rasterkit
