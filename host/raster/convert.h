#pragma once

#include <rasterkit/host/raster/raster.h>

namespace rasterkit {

/// A copy of `source` in another format, pf1bit to pf32bit, with palette, resolution, profile and
/// alpha mark as they apply there:
/// - to 8 and 4 bits: exactly when the picture has no more colours than entries, else with an
/// adaptive palette (no
///   dithering) of all 256 or 16 entries; indexes of an indexed source are kept where they fit;
/// - to 1 bit: an indexed source of two colours keeps them; else grey above 127 is white (bit 1);
/// - from indexed: through the palette, an index beyond it is black;
/// - from 15 and 16 bits: channels times 8, 4, 8; all ones is white;
/// - 24 to 32 bits sets alpha 255, 32 to 24 drops it.
RASTERKIT_EXPORT Raster ConvertRaster(const Raster& source, TPixelFormat format);

}  // namespace rasterkit
