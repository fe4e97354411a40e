#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit::tool {

/// Crops the bitmap to a rectangle inside it. Stored pixels move but do not change, in any format;
/// the transparent color stays the same.
void Crop(TBitmap& bitmap, const TRect& rect);

}  // namespace rasterkit::tool
