#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/codecs/tiff/tiff_layout.h>

namespace rasterkit::detail {

/// The samples of a row to unpack: `count` of them, from number `first` on, every `step`-th.
struct TiffSampleRange {
  size_t first = 0, step = 1, count = 0;
};

/// Unpacks samples of a row to every `targetStep`-th of the doubles. Samples of 8, 16, 24, 32 and
/// 64 bits are in the byte order of the processor; others follow each other bit by bit, the high
/// bit first. Integers above 2^53 are rounded.
void UnpackNumbers(const uint8_t* row, int bits, TiffNumber number, const TiffSampleRange& range,
                   double* numbers, size_t targetStep);

/// Three bytes in the byte order of the processor.
uint32_t LoadTriple(const uint8_t* bytes);
/// The same to be written.
void StoreTriple(uint32_t value, uint8_t* bytes);

/// The value of full brightness; 1 for floats.
double FullScale(int bits, TiffNumber number);

}  // namespace rasterkit::detail
