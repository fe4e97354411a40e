#include <algorithm>

#include <rasterkit/host/kernels/gray.h>
#include <rasterkit/host/kernels/gray_bits.h>

namespace rasterkit::kernels {
namespace {

template <int kBytes>
void BitsOfPixels(const uint8_t* pixels, size_t width, int level, uint8_t* bits) {
  for (size_t x = 0; x < width; x += 8) {
    unsigned byte = 255;
    const size_t count = std::min<size_t>(8, width - x);
    for (size_t i = 0; i < count; ++i, pixels += kBytes) {
      if (GrayOf(pixels[2], pixels[1], pixels[0]) < level) byte -= 128u >> i;
    }
    *bits++ = static_cast<uint8_t>(byte);
  }
}

}  // namespace

void GrayBits24(const uint8_t* bgr, size_t width, int level, uint8_t* bits) {
  BitsOfPixels<3>(bgr, width, level, bits);
}

void GrayBits32(const uint8_t* bgra, size_t width, int level, uint8_t* bits) {
  BitsOfPixels<4>(bgra, width, level, bits);
}

}  // namespace rasterkit::kernels
