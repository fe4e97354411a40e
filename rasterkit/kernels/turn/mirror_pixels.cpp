#include <algorithm>
#include <cstring>
#include <vector>

#include <rasterkit/kernels/rows/move_bits.h>
#include <rasterkit/kernels/rows/reverse_row.h>
#include <rasterkit/kernels/turn/mirror_pixels.h>

namespace rasterkit::kernels {
namespace {

/// The bits of a packed row's last byte that belong to no pixel: the lower ones.
int SpareBits(int width, int bitsPerPixel) {
  const int used =
      static_cast<int>(static_cast<size_t>(width) * static_cast<size_t>(bitsPerPixel) % 8);
  return used == 0 ? 0 : 8 - used;
}

/// `target` with the bits above the lowest `spare` ones taken from `source`.
uint8_t MergeBytes(unsigned source, unsigned target, int spare) {
  const unsigned mask = (1u << spare) - 1;
  return static_cast<uint8_t>((source & ~mask) | (target & mask));
}

/// Turned around, a packed row begins with its spare bits: everything moves up by as many.
void MirrorPackedRows(const PixelRows& rows, int bitsPerPixel) {
  const size_t bytes = RowBytes(rows.width, bitsPerPixel);
  const auto spare = static_cast<size_t>(SpareBits(rows.width, bitsPerPixel));
  std::vector<uint8_t> turned(bytes);
  for (int y = 0; y < rows.height; ++y) {
    ReversePackedBytes(rows.Row(y), bytes, bitsPerPixel, turned.data());
    MoveBits(turned.data(), spare, rows.Row(y), 0, bytes * 8 - spare);
  }
}

/// In parts that fit the first-level cache.
void ExchangeBytes(uint8_t* a, uint8_t* b, size_t count) {
  uint8_t part[4096];
  for (size_t i = 0; i < count; i += sizeof part) {
    const size_t size = std::min(sizeof part, count - i);
    std::memcpy(part, a + i, size);
    std::memcpy(a + i, b + i, size);
    std::memcpy(b + i, part, size);
  }
}

}  // namespace

void MirrorLeftRight(const PixelRows& rows, int bitsPerPixel) {
  if (rows.width <= 0) return;
  if (bitsPerPixel < 8) return MirrorPackedRows(rows, bitsPerPixel);
  for (int y = 0; y < rows.height; ++y) {
    ReverseBytePixels(rows.Row(y), static_cast<size_t>(rows.width), bitsPerPixel);
  }
}

void MirrorTopBottom(const PixelRows& rows, int bitsPerPixel) {
  if (rows.width <= 0) return;
  const int spare = SpareBits(rows.width, bitsPerPixel);
  const size_t last = RowBytes(rows.width, bitsPerPixel) - 1;
  for (int top = 0, bottom = rows.height - 1; top < bottom; ++top, --bottom) {
    uint8_t *upper = rows.Row(top), *lower = rows.Row(bottom);
    ExchangeBytes(upper, lower, last);
    const uint8_t byte = upper[last];
    upper[last] = MergeBytes(lower[last], byte, spare);
    lower[last] = MergeBytes(byte, lower[last], spare);
  }
}

}  // namespace rasterkit::kernels
