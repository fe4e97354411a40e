#pragma once

#include <rasterkit/host/graphics/bitmap.h>

/// Contrast, brightness, sharpness and colour balance of 24-bit pixels, in percent from -100 to
/// 100; 0 changes nothing. Every pixel changes by one rule, black and white too.
namespace rasterkit::tool {

/// The library's rule for several threads, whatever `threads` is (1 and more).
void ChangeContrast(TBitmap& pixels, int percent, int threads);
void ChangeBrightness(TBitmap& pixels, int percent, int threads);

/// Moves each channel away from the mean of the 3 x 3 pixels around it (above 0: by twice the
/// percentage of its distance), or towards it (below 0). Rows and columns beyond the edge count as
/// the edge.
void Sharpen(TBitmap& pixels, int percent);

/// Scales each channel: at -100 it is gone, at 100 doubled, cut at 255.
void ShiftColors(TBitmap& pixels, int red, int green, int blue);

}  // namespace rasterkit::tool
