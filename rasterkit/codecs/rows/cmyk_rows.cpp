#include <rasterkit/codecs/rows/cmyk_rows.h>

namespace rasterkit::detail {

namespace {

/// value / 255 rounded to nearest, exact for products of two bytes.
uint8_t DivideBy255(unsigned value) {
  value += 128;
  return static_cast<uint8_t>((value + (value >> 8)) >> 8);
}

}  // namespace

void CmykRowToBgr(const uint8_t* cmyk, uint8_t* bgr, size_t width, bool inverted) {
  const unsigned flip = inverted ? 0 : 0xFF;
  for (size_t x = 0; x < width; x++) {
    const uint8_t* ink = cmyk + 4 * x;
    uint8_t* pixel = bgr + 3 * x;
    const unsigned black = ink[3] ^ flip;
    pixel[0] = DivideBy255((ink[2] ^ flip) * black);
    pixel[1] = DivideBy255((ink[1] ^ flip) * black);
    pixel[2] = DivideBy255((ink[0] ^ flip) * black);
  }
}

}  // namespace rasterkit::detail
