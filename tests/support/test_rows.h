#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include <rasterkit/kernels/rows/pixel_rows.h>
#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::test {

/// Rows of pixels in a block of exactly their size, so that the address sanitizer sees a step
/// outside.
struct TestRows {
  TestRows(int width, int height, int bitsPerPixel)
      : width(width),
        height(height),
        bits(bitsPerPixel),
        stride(StrideBytes(width, bitsPerPixel)),
        bytes(stride * static_cast<size_t>(height), 0xCD) {}

  /// Random pixels; the padding stays 0xCD.
  void FillRandomly(std::mt19937& random) {
    const size_t rowBytes = kernels::RowBytes(width, bits);
    for (int y = 0; y < height; ++y)
      for (size_t i = 0; i < rowBytes; ++i)
        bytes[static_cast<size_t>(y) * stride + i] = static_cast<uint8_t>(random());
  }

  kernels::PixelRows Rows() { return {bytes.data(), stride, width, height}; }
  kernels::ConstPixelRows Rows() const { return {bytes.data(), stride, width, height}; }

  /// A pixel's bits as a number: little-endian for whole bytes, the packed value for 1 and 4 bits.
  uint32_t Pixel(int x, int y) const {
    const uint8_t* row = bytes.data() + static_cast<size_t>(y) * stride;
    if (bits == 1) return row[x / 8] >> (7 - x % 8) & 1;
    if (bits == 4) return row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15;
    uint32_t value = 0;
    for (int i = 0; i < bits / 8; ++i)
      value |= static_cast<uint32_t>(row[static_cast<size_t>(x) * (bits / 8) + i]) << (8 * i);
    return value;
  }

  void SetPixel(int x, int y, uint32_t value) {
    uint8_t* row = bytes.data() + static_cast<size_t>(y) * stride;
    if (bits >= 8) {
      for (int i = 0; i < bits / 8; ++i)
        row[static_cast<size_t>(x) * (bits / 8) + i] = static_cast<uint8_t>(value >> (8 * i));
      return;
    }
    const int perByte = 8 / bits;
    const int shift = (perByte - 1 - x % perByte) * bits;
    const int mask = ((1 << bits) - 1) << shift;
    row[x / perByte] = static_cast<uint8_t>((row[x / perByte] & ~mask) | (value << shift & mask));
  }

  void FillWith(uint32_t value) {
    std::fill(bytes.begin(), bytes.end(), uint8_t{0});
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) SetPixel(x, y, value);
  }

  int width;
  int height;
  int bits;
  size_t stride;
  std::vector<uint8_t> bytes;
};

}  // namespace rasterkit::test
