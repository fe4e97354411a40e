#pragma once

#include <optional>

#include <rasterkit/drawing/context/placed_bitmap.h>

namespace rasterkit::detail {

/// Implements `PlaceBitmap` for bitmaps that are not parallel to the axes.
std::optional<PlacedBitmap> PlaceSlanted(const BitmapPart& source, const BitmapCorners& corners,
                                         const PixelRect& visible, Sampling sampling,
                                         bool hasAlpha);

}  // namespace rasterkit::detail
