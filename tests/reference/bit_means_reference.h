#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_axis.h>

namespace rasterkit::reference {

/// The weight of a position in a tap; 0 outside.
inline uint64_t WeightIn(const kernels::HalftoneAxis& axis, size_t tap, int position) {
  const kernels::HalftoneTap& weights = axis.taps[tap];
  const int i = position - weights.first;
  if (i < 0 || i >= weights.count) return 0;
  if (i == 0) return weights.firstWeight;
  return i + 1 == weights.count ? weights.lastWeight : axis.innerWeight;
}

/// The mean gray of the bits that a tap of the columns and one of the rows cover, halves up. A gray
/// belongs to each bit.
inline uint8_t BitMean(const std::vector<std::vector<bool>>& rows,
                       const kernels::HalftoneAxis& columnAxis, size_t column,
                       const kernels::HalftoneAxis& rowAxis, size_t row,
                       const uint8_t (&grays)[2]) {
  uint64_t sum = 0, total = 0;
  for (size_t y = 0; y < rows.size(); y++) {
    for (size_t x = 0; x < rows[y].size(); x++) {
      const uint64_t weight = WeightIn(columnAxis, column, static_cast<int>(x)) *
                              WeightIn(rowAxis, row, static_cast<int>(y));
      total += weight;
      sum += weight * grays[rows[y][x] ? 1 : 0];
    }
  }
  return static_cast<uint8_t>((2 * sum + total) / (2 * total));
}

}  // namespace rasterkit::reference
