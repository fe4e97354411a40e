#pragma once

#include <rasterkit/graphics/bitmap.h>

/// Changes the contrast or brightness of 24-bit pixels by the library's rule for several threads,
/// even if `threads` is 1: every pixel changes, black and white too. Percentages are -100 to 100; 0
/// is a no-op.
namespace rasterkit::tool {

void ChangeContrast(TBitmap& pixels, int percent, int threads);
void ChangeBrightness(TBitmap& pixels, int percent, int threads);

}  // namespace rasterkit::tool
