#pragma once

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Lets the user choose a part of the bitmap in a modal window with the crop tool. It begins with
/// `rect` (bitmap pixels; the whole bitmap where it is empty or lies outside). True when the user
/// confirmed: `rect` is then the part chosen, inside the bitmap, the whole of it where no rectangle
/// was drawn. Else `rect` stays as it was. The bitmap's pixels are not changed. Throws Error when
/// no window can be shown.
RASTERKIT_EXPORT bool ChooseCropRect(TBitmap& bitmap, TRect& rect);

/// The same, and a confirmed part becomes the bitmap: same pixel format and palette.
RASTERKIT_EXPORT bool CropBitmap(TBitmap& bitmap, TRect& rect);

}  // namespace rasterkit
