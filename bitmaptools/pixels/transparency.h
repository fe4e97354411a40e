#pragma once

#include <rasterkit/host/runtime/export.h>

/// What counts as transparent in a bitmap, and how that is undone. Everything runs on the thread
/// that owns the bitmap and changes it in place.
namespace rasterkit {

class TBitmap;

/// Lets a transparent pf32bit bitmap show paper where it shows nothing: pixels of alpha 0 become
/// opaque white, all others stay as they are, and the bitmap is no longer `Transparent`. Any other
/// bitmap stays as it is, its `Transparent` included.
RASTERKIT_EXPORT void ResetTransparent(TBitmap& bitmap);

}  // namespace rasterkit
