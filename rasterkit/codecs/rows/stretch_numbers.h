#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Least and greatest finite number of a grid; none when no number is finite.
struct NumberRange {
  double least = 0, greatest = -1;
  bool IsKnown() const { return least <= greatest; }
};

/// The grey of a number when the least one of the range is black and the greatest white, linear and
/// rounded between them. In a range of one value it is black; minus infinity is black, plus
/// infinity and what is no number white. Finite numbers lie within the range.
uint8_t GrayOf(double number, const NumberRange& range);

/// Paints a 32-bit raster with a grid of as many numbers, in the greys of its finite ones. Alpha is
/// 255.
NumberRange StretchNumbers(const double* numbers, Raster& raster);

}  // namespace rasterkit::detail
