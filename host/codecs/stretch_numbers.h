#pragma once

#include <rasterkit/host/raster/raster.h>

namespace rasterkit::detail {

/// Least and greatest finite number of a grid; none when no number is finite.
struct NumberRange {
  double least = 0, greatest = -1;
  bool IsKnown() const { return least <= greatest; }
};

/// Paints a 32-bit raster with a grid of as many numbers: the least finite one black, the greatest
/// white, linear and rounded between them. A grid of one value is black; minus infinity is black,
/// plus infinity and what is no number is white. Alpha is 255.
NumberRange StretchNumbers(const double* numbers, Raster& raster);

}  // namespace rasterkit::detail
