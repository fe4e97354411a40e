#pragma once

#include <memory>

#include <rasterkit/raster/stretch/halftone_means.h>

namespace rasterkit::detail {

/// Computes rows of mean 32-bit pixels, with colors weighted by alpha.
class AlphaMeans {
 public:
  virtual ~AlphaMeans() = default;
  /// Computes the target row of the tap `rows`: one pixel per tap of the columns. If the alpha of
  /// all source pixels is 0, the colors are plain means.
  virtual void Make(const kernels::HalftoneTap& rows, RGBArec* target) = 0;
};

/// Chooses the cheapest implementation for these axes. Both need taps, and their totals must not
/// both be 1. The axes and the source, which is 32-bit, must outlive the result.
std::unique_ptr<AlphaMeans> MakeAlphaMeans(const Raster& source, const HalftoneAxes& axes);

}  // namespace rasterkit::detail
