#pragma once

#include <cstdint>

/// Rows of 1 and 4 bits a pixel as bytes, one pixel a byte, and back. The first pixel of a byte
/// lies in its high bits.
namespace rasterkit::kernels {

/// Pixels `first` to `first + count - 1` of a packed row, one a byte.
void UnpackPixels(const uint8_t* row, int bitsPerPixel, int first, int count, uint8_t* pixels);

/// Writes `count` pixels (each below 2 or 16) at pixel `first` of a packed row. `first` is the
/// first pixel of a byte; the rest of the last byte becomes 0.
void PackPixels(const uint8_t* pixels, int bitsPerPixel, int first, int count, uint8_t* row);

}  // namespace rasterkit::kernels
