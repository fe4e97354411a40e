#pragma once

#include <functional>

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Lets the user choose a part of the bitmap in a modal window with the crop tool. It starts with
/// `rect` (bitmap pixels; the whole bitmap if it is empty or outside). Returns true if the user
/// confirmed: `rect` is the chosen part then, inside the bitmap, or the whole bitmap if no
/// rectangle was drawn. Otherwise `rect` does not change. The pixels of the bitmap do not change.
/// Throws Error if no window can be shown.
RASTERKIT_EXPORT bool ChooseCropRect(TBitmap& bitmap, TRect& rect);

/// The same for a picture from a JPEG file: the window says for each part whether its compressed
/// pixels can be kept, which `isLossless` tells. It must not throw.
RASTERKIT_EXPORT bool ChooseCropRect(TBitmap& bitmap, TRect& rect,
                                     const std::function<bool(const TRect& part)>& isLossless);

/// Like ChooseCropRect; in addition, a confirmed part replaces the bitmap with the same pixel
/// format and palette.
RASTERKIT_EXPORT bool CropBitmap(TBitmap& bitmap, TRect& rect);

}  // namespace rasterkit
