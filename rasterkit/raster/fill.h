#pragma once

#include <span>

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Half-open rectangle of pixels: right and bottom lie outside.
struct PixelRect {
  int left = 0, top = 0, right = 0, bottom = 0;
};

struct PixelPoint {
  int x = 0, y = 0;
};

/// The part of `rect` inside a picture of this size; may be empty (right <= left or bottom <= top).
PixelRect ClipRect(const PixelRect& rect, int width, int height);

/// The palette entries that a pixel can name: those beyond 2 or 16 are out of reach of 1 and 4
/// bits.
std::span<const tagPALETTEENTRY> EntriesInReach(const Raster& raster);

/// Fills the rectangle, clipped to the raster, with the color 0x00BBGGRR: the nearest palette
/// entry of an indexed raster, alpha 255 of a 32-bit one. The row padding is left alone.
RASTERKIT_EXPORT void FillRaster(Raster& raster, const PixelRect& rect, TColor color);

}  // namespace rasterkit
