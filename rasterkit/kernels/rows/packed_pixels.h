#pragma once

#include <cstdint>

/// Unpacking rows of 1 and 4 bits per pixel to one byte per pixel, and packing them. The first
/// pixel of a byte is in its high bits.
namespace rasterkit::kernels {

/// Unpacks the pixels `first` to `first + count - 1` of a packed row, one per byte.
void UnpackPixels(const uint8_t* row, int bitsPerPixel, int first, int count, uint8_t* pixels);

/// Writes `count` pixels (each below 2 or 16) at pixel `first` of a packed row. `first` is the
/// first pixel of a byte; the rest of the last byte becomes 0.
void PackPixels(const uint8_t* pixels, int bitsPerPixel, int first, int count, uint8_t* row);

}  // namespace rasterkit::kernels
