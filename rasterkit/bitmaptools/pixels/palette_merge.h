#pragma once

#include <memory>
#include <span>

#include <rasterkit/raster/palette.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Gives all bitmaps one common palette of 256 entries, and returns it as a table that the caller
/// owns.
///
/// The bitmaps are taken as 8-bit: one byte a pixel is read whatever the format, as far as the row
/// goes; an index beyond its palette is black. Colors in use get their entries in the order in
/// which they are met (bitmap by bitmap, row by row); each keeps its index where that entry is free
/// or holds the same color, else it shares the first entry that holds its color, else it takes
/// the lowest free one. Unused entries are black. In the bitmaps' palette entry 255 is black
/// whatever the table says, and pixel indexes are not rewritten: a pixel whose color moved shows
/// the color that now has its old index.
///
/// With more than 256 colors in use a modal message says so, the result is null, and the bitmaps
/// keep their palettes.
RASTERKIT_EXPORT std::unique_ptr<TColorTable> CombineColorPalette(
    std::span<TBitmap* const> bitmaps);

}  // namespace rasterkit
