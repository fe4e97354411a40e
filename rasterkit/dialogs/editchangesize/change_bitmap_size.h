#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// A new bitmap of another size, with the pixel format and the palette of `bitmap`, which stays as
/// it is. The picture is stretched to the new size (`stretch`: the nearest pixels), or drawn at its
/// own size into the upper left corner: new area is as in a new bitmap, white, and what lies beyond
/// is cut off. Either way transparent pixels are left out, and show white.
///
/// The caller owns the result; it is empty (no bitmap) where `bitmap` is null. Throws RangeError
/// for a negative size and LimitError beyond the memory budget.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> ChangeBitmapSize(const TBitmap* bitmap, int32_t width,
                                                           int32_t height, bool stretch);

}  // namespace rasterkit
