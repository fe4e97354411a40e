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
/// The bitmaps count as 8-bit: one byte per pixel is read regardless of the format, up to the end
/// of the row; an index beyond the palette is black. Used colors get their entries in order of
/// appearance (bitmap by bitmap, row by row). A color keeps its index if that entry is free or
/// holds the same color; else it shares the first entry that holds its color; else it takes the
/// lowest free one. Unused entries are black. In the palette of the bitmaps entry 255 is always
/// black. Pixel indexes are not rewritten: a pixel whose color moved shows the color that now has
/// its old index.
///
/// If more than 256 colors are used, a modal message says so, the result is null, and the bitmaps
/// keep their palettes.
RASTERKIT_EXPORT std::unique_ptr<TColorTable> CombineColorPalette(
    std::span<TBitmap* const> bitmaps);

}  // namespace rasterkit
