#pragma once

#include <rasterkit/graphics/bitmap.h>

/// Contrast and brightness of 24-bit pixels by the library's rule for several threads, whatever
/// `threads` is (1 and more): every pixel changes, black and white too. Percentages from -100 to
/// 100; 0 changes nothing.
namespace rasterkit::tool {

void ChangeContrast(TBitmap& pixels, int percent, int threads);
void ChangeBrightness(TBitmap& pixels, int percent, int threads);

}  // namespace rasterkit::tool
