#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Converts an indexed raster to another indexed format. Indexes are kept if all used ones fit (the
/// palette is cut, or filled up with black to 16 or 256 entries). Else colors are kept if they fit.
/// Else the rules for true color apply: an adaptive palette at 4 bits; at 1 bit, gray above 127 is
/// white.
Raster ConvertIndexed(const Raster& source, TPixelFormat format);

/// Converts any raster to black and white: gray above 127 is white (bit 1).
Raster ThresholdToMono(const Raster& source);

}  // namespace rasterkit
