#pragma once

#include <functional>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Changes the pixels of a 24-bit bitmap in place, each by its own color. It may read the color of
/// the bottom-left pixel.
using PixelChange = std::function<void(TBitmap& pixels)>;

/// Changes the colors of a picture of any kind, each pixel independently.
///
/// A picture with a palette keeps its depth and its indexes: the change runs over the entries, laid
/// out as a column of pixels with the color of the bottom-left pixel below them. An 8-bit gray
/// picture stays one if the change yields only grays. All other pictures become 24-bit.
/// Transparency is kept: a transparent entry gets a color that no other entry has, and a
/// transparent color of a true-color picture becomes an alpha channel.
RASTERKIT_EXPORT void ChangeColors(TBitmap& bitmap, const PixelChange& change);

}  // namespace rasterkit::detail
