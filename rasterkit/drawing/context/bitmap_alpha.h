#pragma once

#include <rasterkit/raster/raster.h>

/// Changes of the alpha of 32-bit pixels before they are drawn.
namespace rasterkit::detail {

/// Returns a copy of a premultiplied bitmap with straight alpha.
Raster WithStraightAlpha(const Raster& premultiplied);
/// Multiplies the alpha by factor / 255.
void ScaleAlpha(Raster& pixels, uint8_t factor);
/// Sets alpha 0 for all pixels of a color, regardless of their alpha.
void DropColor(Raster& pixels, uint32_t pixel);
/// Returns a copy of a mask with white for 1 and black for 0. A mask of more bits per pixel is used
/// as displayed.
Raster MaskBits(const Raster& mask);
/// Makes the pixels of `front` transparent where the mask is black, and those of `back` elsewhere.
/// All three have the same size. Without a mask, `back` gets all pixels.
void SplitByMask(Raster& front, Raster& back, const Raster* mask);

}  // namespace rasterkit::detail
