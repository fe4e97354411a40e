#include <rasterkit/kernels/rows/packed_pixels.h>

namespace rasterkit::kernels {
namespace {

void UnpackBits(const uint8_t* row, int first, int count, uint8_t* pixels) {
  for (int i = 0; i < count; ++i) {
    const int x = first + i;
    pixels[i] = static_cast<uint8_t>(row[x >> 3] >> (7 - (x & 7)) & 1);
  }
}

void UnpackNibbles(const uint8_t* row, int first, int count, uint8_t* pixels) {
  for (int i = 0; i < count; ++i) {
    const int x = first + i;
    pixels[i] = static_cast<uint8_t>(x & 1 ? row[x >> 1] & 15 : row[x >> 1] >> 4);
  }
}

void PackBits(const uint8_t* pixels, int count, uint8_t* target) {
  int i = 0;
  for (; i + 8 <= count; i += 8) {
    const uint8_t* p = pixels + i;
    *target++ = static_cast<uint8_t>(p[0] << 7 | p[1] << 6 | p[2] << 5 | p[3] << 4 | p[4] << 3 |
                                     p[5] << 2 | p[6] << 1 | p[7]);
  }
  if (i == count) return;
  int last = 0;
  for (int bit = 7; i < count; ++i, --bit) last |= pixels[i] << bit;
  *target = static_cast<uint8_t>(last);
}

void PackNibbles(const uint8_t* pixels, int count, uint8_t* target) {
  int i = 0;
  for (; i + 2 <= count; i += 2) *target++ = static_cast<uint8_t>(pixels[i] << 4 | pixels[i + 1]);
  if (i < count) *target = static_cast<uint8_t>(pixels[i] << 4);
}

}  // namespace

void UnpackPixels(const uint8_t* row, int bitsPerPixel, int first, int count, uint8_t* pixels) {
  if (bitsPerPixel == 1) {
    UnpackBits(row, first, count, pixels);
  } else {
    UnpackNibbles(row, first, count, pixels);
  }
}

void PackPixels(const uint8_t* pixels, int bitsPerPixel, int first, int count, uint8_t* row) {
  if (bitsPerPixel == 1) {
    PackBits(pixels, count, row + (first >> 3));
  } else {
    PackNibbles(pixels, count, row + (first >> 1));
  }
}

}  // namespace rasterkit::kernels
