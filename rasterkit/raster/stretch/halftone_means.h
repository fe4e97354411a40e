#pragma once

#include <memory>

#include <rasterkit/kernels/halftone/halftone_axis.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

struct HalftoneAxes {
  kernels::HalftoneAxis columns, rows;
};

/// Rows summed at once: few enough that their columns stay in the cache.
inline constexpr int kBandRows = 16;

/// Weight of the `i`-th position that a tap covers.
inline uint32_t TapWeight(const kernels::HalftoneTap& tap, int i, uint32_t innerWeight) {
  if (i == 0) return tap.firstWeight;
  return i + 1 < tap.count ? innerWeight : tap.lastWeight;
}

/// Computes rows of mean colors of a source in any format, without its alpha.
class RowMeans {
 public:
  virtual ~RowMeans() = default;
  /// Computes the target row of the tap `rows`: pixels B G R, one per tap of the columns.
  /// Consecutive taps are cheapest.
  virtual void Make(const kernels::HalftoneTap& rows, uint8_t* target) = 0;
};

/// Chooses the cheapest implementation for these axes. Both need taps, and their totals must not
/// both be 1. The axes and the source must outlive the result.
std::unique_ptr<RowMeans> MakeRowMeans(const Raster& source, const HalftoneAxes& axes);

}  // namespace rasterkit::detail
