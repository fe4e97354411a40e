#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/codecs/tiff/tiff_layout.h>

namespace rasterkit::detail {

/// Which samples of a row are unpacked: number `first` and every `step`-th from there, `count` of
/// them.
struct TiffSampleRange {
  size_t first = 0, step = 1, count = 0;
};

/// Unpacks samples of a row to every `targetStep`-th of the doubles. Samples of 8, 16, 24, 32 and
/// 64 bits are in the processor's byte order, others follow each other bit by bit, the high one
/// first. Integers beyond 2^53 are rounded.
void UnpackNumbers(const uint8_t* row, int bits, TiffNumber number, const TiffSampleRange& range,
                   double* numbers, size_t targetStep);

/// The value that is shown at full brightness: 1 for floating numbers.
double FullScale(int bits, TiffNumber number);

}  // namespace rasterkit::detail
