#pragma once

#include <optional>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

struct MapPoint {
  double x = 0, y = 0;
};

/// Leads from pixel indexes to a map, in the order of a world file. Column and row count from the
/// top left pixel, whose center is (0, 0):
///
///     x = xPerColumn column + xPerRow row + x
///     y = yPerColumn column + yPerRow row + y
struct RASTERKIT_EXPORT Affine {
  double xPerColumn = 1, yPerColumn = 0, xPerRow = 0, yPerRow = 1, x = 0, y = 0;

  MapPoint At(double column, double row) const;
  /// Column and row (as x and y) of a map point; nothing if the numbers cannot be inverted.
  std::optional<MapPoint> Back(MapPoint point) const;
  std::optional<Affine> Inverse() const;
  /// First `inner`, then this: the place of `At(inner.At(column, row))`.
  Affine After(const Affine& inner) const;
  /// Map position of the corner of the top left pixel, half a pixel from its center.
  MapPoint Corner() const { return At(-0.5, -0.5); }
  bool IsFinite() const;
  /// True if columns run along x and rows along y.
  bool IsStraight() const { return xPerRow == 0 && yPerColumn == 0; }
  friend bool operator==(const Affine&, const Affine&) = default;
};

}  // namespace rasterkit
