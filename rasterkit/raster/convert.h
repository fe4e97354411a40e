#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// A copy of `source` in another format, pf1bit to pf32bit, with palette, resolution, profile and
/// alpha mark as they apply there:
///
/// - To 8 and 4 bits: exactly when the picture has no more colors than entries, else with an
///   adaptive palette (no dithering); always 256 or 16 entries. A picture of grays alone gets the
///   gray ramp at 8 bits. An indexed source keeps its indexes where all that are used fit, else
///   its colors where they fit; unused entries are black.
/// - To 1 bit: an indexed source keeps its indexes when none above 1 is used, else its colors when
///   they are no more than two (the darker becomes 0); any other source is black and white, and
///   gray above 127 is white (bit 1).
/// - From indexed: through the palette, an index beyond it is black.
/// - From 15 and 16 bits: red and blue times 8, green times 8 and 4; all ones is white.
/// - 24 to 32 bits sets alpha 255, 32 to 24 drops it. No target but a copy has a defined alpha.
/// - A picture without pixels gets the format's default palette.
RASTERKIT_EXPORT Raster ConvertRaster(const Raster& source, TPixelFormat format);

}  // namespace rasterkit
