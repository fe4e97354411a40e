#pragma once

#include <rasterkit/raster/raster.h>

/// Changes of the alpha of 32-bit pixels that are about to be drawn.
namespace rasterkit::detail {

/// A copy with colours as they are where the bitmap holds them times alpha.
Raster WithStraightAlpha(const Raster& premultiplied);
/// Alpha times factor / 255.
void ScaleAlpha(Raster& pixels, uint8_t factor);
/// Alpha 0 for pixels of the colour, whatever their alpha.
void DropColor(Raster& pixels, uint32_t pixel);
/// A copy of a mask that has white for 1 and black for 0; masks of more bits are as they look.
Raster MaskBits(const Raster& mask);
/// `front` keeps the pixels where the mask is not black, `back` the others; all three are of one
/// size, or the mask is absent and all is back.
void SplitByMask(Raster& front, Raster& back, const Raster* mask);

}  // namespace rasterkit::detail
