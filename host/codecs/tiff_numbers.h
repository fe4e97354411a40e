#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/host/codecs/tiff_layout.h>

namespace rasterkit::detail {

/// Unpacks `count` samples of a row to doubles. Samples of 8, 16, 24, 32 and 64 bits are in the
/// processor's byte order, others follow each other bit by bit, the high one first. Integers beyond
/// 2^53 are rounded.
void UnpackNumbers(const uint8_t* row, int bits, TiffNumber number, size_t count, double* numbers);

/// An IEEE half as a double.
double HalfToDouble(uint16_t half);

/// The value that is shown at full brightness: 1 for floating numbers.
double FullScale(int bits, TiffNumber number);

}  // namespace rasterkit::detail
