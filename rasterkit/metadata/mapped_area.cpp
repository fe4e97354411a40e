#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/metadata/mapped_area.h>

namespace rasterkit::detail {

std::optional<PictureArea> MapArea(const PixelChange& change, const PictureArea& area) {
  const auto& m = change.toNew;
  double left = std::numeric_limits<double>::max(), right = std::numeric_limits<double>::lowest();
  double top = left, bottom = right;
  for (const double sideX : {-0.5, 0.5}) {
    for (const double sideY : {-0.5, 0.5}) {
      const double x = area.centerX + sideX * area.width;
      const double y = area.centerY + sideY * area.height;
      const double newX = m[0] * x + m[1] * y + m[2], newY = m[3] * x + m[4] * y + m[5];
      left = std::min(left, newX);
      right = std::max(right, newX);
      top = std::min(top, newY);
      bottom = std::max(bottom, newY);
    }
  }
  left = std::max(left, 0.0);
  top = std::max(top, 0.0);
  right = std::min(right, static_cast<double>(change.width));
  bottom = std::min(bottom, static_cast<double>(change.height));
  const bool isArea = area.width > 0 && area.height > 0;
  const bool isInside = isArea ? left < right && top < bottom : left <= right && top <= bottom;
  // Also false for numbers that are not finite.
  if (!isInside) return std::nullopt;
  return PictureArea{(left + right) / 2, (top + bottom) / 2, right - left, bottom - top};
}

AxisScale ScaleOf(const PixelChange& change) {
  const auto& m = change.toNew;
  const double alongX = std::hypot(m[0], m[3]), alongY = std::hypot(m[1], m[4]);
  if (std::abs(m[0]) >= std::abs(m[1])) return {alongX, alongY, false};
  return {alongY, alongX, true};
}

}  // namespace rasterkit::detail
