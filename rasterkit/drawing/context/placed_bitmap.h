#pragma once

#include <array>
#include <optional>

#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/drawing/ink/coverage_mask.h>

namespace rasterkit::detail {

/// How the colour of a target pixel is found.
enum class Sampling {
  nearest,      ///< the bitmap's pixel under its centre
  meanOrPlain,  ///< the mean of what it covers where the bitmap shrinks, else the nearest
  smooth,       ///< the same, and interpolated where the bitmap grows
};

/// Where a bitmap's part goes, in pixels of the target.
struct BitmapCorners {
  PointD topLeft, topRight, bottomLeft;

  /// Along the axes, perhaps mirrored.
  bool IsUpright() const { return topLeft.y == topRight.y && topLeft.x == bottomLeft.x; }
};

/// What a bitmap becomes on the target.
struct PlacedBitmap {
  PixelRect box;
  /// 32 bits; its first pixel lies at the box's upper left corner. Alpha says how much of a pixel
  /// is meant.
  Raster pixels;
  /// Where the bitmap stands aslant: its shape.
  std::optional<CoverageMask> shape;
};

/// The part of a bitmap that is seen inside `visible`; nothing when there is none. Pixels without a
/// source get alpha 0. Sources count as opaque unless `hasAlpha` is set; then alpha is straight.
std::optional<PlacedBitmap> PlaceBitmap(const BitmapPart& source, const BitmapCorners& corners,
                                        const PixelRect& visible, Sampling sampling, bool hasAlpha);

}  // namespace rasterkit::detail
