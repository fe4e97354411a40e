#pragma once

#include <optional>

#include <rasterkit/drawing/context/placed_bitmap.h>

namespace rasterkit::detail {

/// `PlaceBitmap` for one that does not stand upright.
std::optional<PlacedBitmap> PlaceSlanted(const BitmapPart& source, const BitmapCorners& corners,
                                         const PixelRect& visible, Sampling sampling,
                                         bool hasAlpha);

}  // namespace rasterkit::detail
