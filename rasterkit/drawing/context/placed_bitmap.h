#pragma once

#include <array>
#include <optional>

#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/drawing/ink/coverage_mask.h>

namespace rasterkit::detail {

/// How the color of a target pixel is sampled.
enum class Sampling {
  nearest,      ///< the bitmap's pixel under its center
  meanOrPlain,  ///< the mean of the covered area when shrinking, else nearest
  smooth,       ///< the same, but interpolated when enlarging
};

/// The place of a bitmap's part, in pixels of the target.
struct BitmapCorners {
  PointD topLeft, topRight, bottomLeft;

  /// Returns whether the sides are parallel to the axes; the bitmap may be mirrored.
  bool IsUpright() const { return topLeft.y == topRight.y && topLeft.x == bottomLeft.x; }
};

/// A bitmap transformed to the target.
struct PlacedBitmap {
  PixelRect box;
  /// pf32bit; the first pixel lies at the upper left corner of the box. Alpha is the coverage.
  Raster pixels;
  /// The shape of a bitmap that is not parallel to the axes.
  std::optional<CoverageMask> shape;
};

/// Transforms the part of a bitmap that is visible inside `visible`; returns nothing if there is
/// none. Pixels without a source get alpha 0. Sources are opaque unless `hasAlpha` is set; then
/// their alpha is straight.
std::optional<PlacedBitmap> PlaceBitmap(const BitmapPart& source, const BitmapCorners& corners,
                                        const PixelRect& visible, Sampling sampling, bool hasAlpha);

}  // namespace rasterkit::detail
