#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Reverses the order of `count` pixels of 8, 16, 24 or 32 bits, in place.
void ReverseBytePixels(uint8_t* row, size_t count, int bitsPerPixel);

/// Writes `bytes` bytes of 1- or 4-bit pixels in reverse order, within each byte too. Source and
/// target do not overlap.
void ReversePackedBytes(const uint8_t* source, size_t bytes, int bitsPerPixel, uint8_t* target);

}  // namespace rasterkit::kernels
