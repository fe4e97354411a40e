#pragma once

#include <memory>

#include <rasterkit/raster/stretch/halftone_means.h>

namespace rasterkit::detail {

/// Rows of means of 32-bit pixels, the colors weighted by alpha.
class AlphaMeans {
 public:
  virtual ~AlphaMeans() = default;
  /// Makes the target row of the tap `rows`: one pixel for each tap of the columns. Where the alpha
  /// of everything that a pixel takes is 0 its colors are plain means.
  virtual void Make(const kernels::HalftoneTap& rows, RGBArec* target) = 0;
};

/// The cheapest way for these axes, of which both have taps; they and the source, of 32 bits, must
/// outlive it. The totals of the two are not both 1.
std::unique_ptr<AlphaMeans> MakeAlphaMeans(const Raster& source, const HalftoneAxes& axes);

}  // namespace rasterkit::detail
