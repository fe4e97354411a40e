#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// A new bitmap with the part of `bitmap` that lies in `rect`: same pixel format and palette, and
/// the transparent colour stays the colour that it was. 0 x 0 where they do not meet.
std::unique_ptr<TBitmap> CutBitmapTo(const TBitmap& bitmap, const TRect& rect);

}  // namespace rasterkit
