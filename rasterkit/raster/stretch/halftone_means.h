#pragma once

#include <memory>

#include <rasterkit/kernels/halftone/halftone_axis.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

struct HalftoneAxes {
  kernels::HalftoneAxis columns, rows;
};

/// Rows added up at once: not so many that their columns drive one another out of the cache.
inline constexpr int kBandRows = 16;

/// What the `i`-th of the positions that a tap covers weighs.
inline uint32_t TapWeight(const kernels::HalftoneTap& tap, int i, uint32_t innerWeight) {
  if (i == 0) return tap.firstWeight;
  return i + 1 < tap.count ? innerWeight : tap.lastWeight;
}

/// Rows of mean colors of a source in any format, whose alpha is not looked at.
class RowMeans {
 public:
  virtual ~RowMeans() = default;
  /// Makes the target row of the tap `rows`: pixels B G R, one for each tap of the columns. Taps
  /// that follow one another are cheapest.
  virtual void Make(const kernels::HalftoneTap& rows, uint8_t* target) = 0;
};

/// The cheapest way for these axes, of which both have taps; they and the source must outlive it.
/// The totals of the two are not both 1.
std::unique_ptr<RowMeans> MakeRowMeans(const Raster& source, const HalftoneAxes& axes);

}  // namespace rasterkit::detail
