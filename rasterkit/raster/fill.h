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

/// Part of `rect` inside a picture of this size; may be empty (right <= left or bottom <= top).
PixelRect ClipRect(const PixelRect& rect, int width, int height);

/// Palette entries that a pixel can refer to: at most 2 with 1 bit, 16 with 4 bits.
std::span<const tagPALETTEENTRY> EntriesInReach(const Raster& raster);

/// Fills a rectangle, clipped to the raster, with the color 0x00BBGGRR. An indexed raster gets the
/// nearest palette entry, a 32-bit raster alpha 255. The row padding does not change.
RASTERKIT_EXPORT void FillRaster(Raster& raster, const PixelRect& rect, TColor color);

}  // namespace rasterkit
