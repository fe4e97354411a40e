#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// Returns a new bitmap with the part of `bitmap` inside `rect`: same pixel format, palette and
/// transparent color. 0 x 0 if they do not intersect.
std::unique_ptr<TBitmap> CutBitmapTo(const TBitmap& bitmap, const TRect& rect);

}  // namespace rasterkit
