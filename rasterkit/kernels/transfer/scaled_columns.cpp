#include <cmath>
#include <cstddef>

#include <rasterkit/kernels/rows/extended_sum.h>
#include <rasterkit/kernels/transfer/scaled_columns.h>

namespace rasterkit::kernels {
namespace {

constexpr double kFarAway = 1099511627776.0;  // 2^40

}  // namespace

int64_t RoundScaled(int64_t distance, double scale) {
  // The double product is off by no more than 2^-53 of itself, the extended one by less; only near
  // a half can they round to different numbers.
  const double product = static_cast<double>(distance) * scale;
  if (product >= kFarAway) return static_cast<int64_t>(kFarAway);
  if (product <= -kFarAway) return -static_cast<int64_t>(kFarAway);
  const double nearest = std::nearbyint(product);
  const double error = (std::fabs(product) + 1) * 0x1p-51;
  if (std::fabs(product - nearest) < 0.5 - error) return static_cast<int64_t>(nearest);
  return RoundExtendedSum(2 * distance, scale, 0, 0, 0);
}

std::vector<int32_t> ScaledColumns(const ColumnScale& columns, int32_t first, int32_t count,
                                   int32_t sourceWidth) {
  std::vector<int32_t> sources(static_cast<size_t>(count));
  int64_t distance = first - columns.targetLeft;
  for (int32_t& source : sources) {
    const int64_t column = RoundScaled(distance++, columns.scale) + columns.sourceLeft;
    source = column >= 0 && column < sourceWidth ? static_cast<int32_t>(column) : -1;
  }
  return sources;
}

}  // namespace rasterkit::kernels
