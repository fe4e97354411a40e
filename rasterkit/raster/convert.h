#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Copies `source` in another format, pf1bit to pf32bit. The properties of the source are carried
/// as far as they apply to the new format:
///
/// - To 8 and 4 bits: exact if the picture has no more colors than entries, else with an adaptive
///   palette (no dithering); always 256 or 16 entries. A gray picture gets the gray ramp at 8 bits.
///   An indexed source keeps its indexes if all used ones fit, else its colors if they fit; unused
///   entries are black.
/// - To 1 bit: an indexed source keeps its indexes if none above 1 is used, else its colors if it
///   has at most two (the darker one becomes 0). Any other source becomes black and white; gray
///   above 127 is white (bit 1).
/// - From indexed: through the palette; an index beyond it is black.
/// - From 15 and 16 bits: to full scale, 31 of 5 bits and 63 of 6 bits become 255 (pixel_words.h).
/// - 24 to 32 bits sets alpha 255, 32 to 24 drops alpha. Alpha is defined only if the format stays.
/// - A picture without pixels gets the format's default palette.
RASTERKIT_EXPORT Raster ConvertRaster(const Raster& source, TPixelFormat format);

}  // namespace rasterkit
