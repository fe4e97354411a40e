#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit::kernels {

/// `Round(distance * scale)`: the product in extended precision (64 significant bits), rounded to a
/// whole number, halves to even, on every processor. |distance| up to 2^32, |scale| 0 or 2^-32 to
/// 2^32; products beyond 2^40 in absolute value are cut to that.
int64_t RoundScaled(int64_t distance, double scale);

/// Which source column each of some adjacent target columns shows when a picture is scaled by
/// nearest pixel: Round((x - targetLeft) * scale) + sourceLeft.
struct ColumnScale {
  int64_t targetLeft = 0;
  int64_t sourceLeft = 0;
  double scale = 1;
};

/// The source columns of target columns `first` to `first + count - 1`; -1 for those outside 0 to
/// `sourceWidth - 1`.
std::vector<int32_t> ScaledColumns(const ColumnScale& columns, int32_t first, int32_t count,
                                   int32_t sourceWidth);

}  // namespace rasterkit::kernels
