#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Borrowed rows of pixels: what a kernel reads. `stride` is in bytes from one row to the next; a
/// row may be followed by padding up to it.
struct ConstPixelRows {
  const uint8_t* data = nullptr;
  size_t stride = 0;
  int width = 0;
  int height = 0;

  const uint8_t* Row(int y) const { return data + static_cast<size_t>(y) * stride; }
};

/// Borrowed rows of pixels: what a kernel writes.
struct PixelRows {
  uint8_t* data = nullptr;
  size_t stride = 0;
  int width = 0;
  int height = 0;

  uint8_t* Row(int y) const { return data + static_cast<size_t>(y) * stride; }
  operator ConstPixelRows() const { return {data, stride, width, height}; }
};

/// Bytes of a row of `width` pixels without its padding.
constexpr size_t RowBytes(int width, int bitsPerPixel) {
  return (static_cast<size_t>(width) * static_cast<size_t>(bitsPerPixel) + 7) / 8;
}

/// Zeroes what lies between the last pixel of row `y` and the next row.
inline void ClearPadding(const PixelRows& rows, int y, int bitsPerPixel) {
  uint8_t* row = rows.Row(y);
  for (size_t i = RowBytes(rows.width, bitsPerPixel); i < rows.stride; ++i) row[i] = 0;
}

}  // namespace rasterkit::kernels
