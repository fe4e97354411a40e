#pragma once

#include <cstdint>

namespace rasterkit {

class TBitmap;

/// Implementation of `SetToTransparent` and `CheckTransColForPDF` for a bitmap with a palette. Only
/// palettes of exactly 16 or 256 entries are supported.
namespace detail {

/// Gives pixels whose entry's gray is above `threshold` the index of white, which replaces the
/// brightest entry if the palette has none.
void SetPaletteToTransparent(TBitmap& bitmap, uint8_t threshold);

/// Makes white the last entry, and the bottom-left pixel of a bitmap that is not empty use it.
void MoveWhiteToTheEnd(TBitmap& bitmap);

}  // namespace detail
}  // namespace rasterkit
