#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Least and greatest finite number of a grid; unknown if no number is finite.
struct NumberRange {
  double least = 0, greatest = -1;
  bool IsKnown() const { return least <= greatest; }
};

/// The gray of a number: the least one of the range is black, the greatest white, linear and
/// rounded between them. A range of one value is black. Minus infinity is black; plus infinity and
/// NaN are white. Finite numbers must lie within the range.
uint8_t GrayOf(double number, const NumberRange& range);

/// Paints a 32-bit raster with the grays of a grid of as many numbers. Alpha is 255.
NumberRange StretchNumbers(const double* numbers, Raster& raster);

}  // namespace rasterkit::detail
