#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Returns a new bitmap of another size with the pixel format and the palette of `bitmap`, which
/// does not change. The picture is either stretched to the new size (`stretch`: nearest neighbor)
/// or drawn at its own size into the upper left corner: the new area is white, and the rest is cut
/// off. Transparent pixels are not drawn and appear white.
///
/// The caller owns the result, which is null if `bitmap` is null. Throws RangeError for a negative
/// size and LimitError beyond the memory budget.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> ChangeBitmapSize(const TBitmap* bitmap, int32_t width,
                                                           int32_t height, bool stretch);

}  // namespace rasterkit
