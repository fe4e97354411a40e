#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit::tool {

/// Cuts the bitmap to a rectangle that lies inside it. Stored pixels move, none is changed, in any
/// format; a transparent colour stays the colour that it was.
void Crop(TBitmap& bitmap, const TRect& rect);

}  // namespace rasterkit::tool
