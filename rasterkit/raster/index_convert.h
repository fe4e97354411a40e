#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// An indexed raster in another indexed format. Indexes are kept where all that are used fit (the
/// palette is cut, or filled up with black to 16 or 256 entries); else colors are kept where they
/// fit; else the rules for true colors apply: an adaptive palette at 4 bits, gray above 127 is
/// white at 1 bit.
Raster ConvertIndexed(const Raster& source, TPixelFormat format);

/// Any raster as black and white: gray above 127 is white (bit 1).
Raster ThresholdToMono(const Raster& source);

}  // namespace rasterkit
