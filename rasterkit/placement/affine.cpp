#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/placement/affine.h>

namespace rasterkit {
namespace {

/// The sum, or 0 where the terms cancel out but for their rounding errors: a picture that was
/// turned straight is straight.
double SumOf(double a, double b) {
  // Each term is a product of numbers that themselves come from a few roundings.
  constexpr double kRounding = 16 * std::numeric_limits<double>::epsilon();
  const double sum = a + b;
  return std::abs(sum) <= kRounding * std::max(std::abs(a), std::abs(b)) ? 0 : sum;
}

}  // namespace

MapPoint Affine::At(double column, double row) const {
  return {xPerColumn * column + xPerRow * row + x, yPerColumn * column + yPerRow * row + y};
}

std::optional<Affine> Affine::Inverse() const {
  const double determinant = xPerColumn * yPerRow - xPerRow * yPerColumn;
  if (determinant == 0 || !std::isfinite(determinant)) return std::nullopt;
  Affine back;
  back.xPerColumn = yPerRow / determinant;
  back.yPerColumn = -yPerColumn / determinant;
  back.xPerRow = -xPerRow / determinant;
  back.yPerRow = xPerColumn / determinant;
  back.x = -(back.xPerColumn * x + back.xPerRow * y);
  back.y = -(back.yPerColumn * x + back.yPerRow * y);
  if (!back.IsFinite()) return std::nullopt;
  return back;
}

std::optional<MapPoint> Affine::Back(MapPoint point) const {
  const std::optional<Affine> back = Inverse();
  if (!back) return std::nullopt;
  // From the difference to the origin: map coordinates are large, pixels are small.
  const double dx = point.x - x, dy = point.y - y;
  return MapPoint{back->xPerColumn * dx + back->xPerRow * dy,
                  back->yPerColumn * dx + back->yPerRow * dy};
}

Affine Affine::After(const Affine& inner) const {
  Affine both;
  both.xPerColumn = SumOf(xPerColumn * inner.xPerColumn, xPerRow * inner.yPerColumn);
  both.yPerColumn = SumOf(yPerColumn * inner.xPerColumn, yPerRow * inner.yPerColumn);
  both.xPerRow = SumOf(xPerColumn * inner.xPerRow, xPerRow * inner.yPerRow);
  both.yPerRow = SumOf(yPerColumn * inner.xPerRow, yPerRow * inner.yPerRow);
  const MapPoint origin = At(inner.x, inner.y);
  both.x = origin.x;
  both.y = origin.y;
  return both;
}

bool Affine::IsFinite() const {
  return std::isfinite(xPerColumn) && std::isfinite(yPerColumn) && std::isfinite(xPerRow) &&
         std::isfinite(yPerRow) && std::isfinite(x) && std::isfinite(y);
}

}  // namespace rasterkit
