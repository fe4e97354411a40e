#include <cstring>

#include <rasterkit/host/kernels/gray.h>
#include <rasterkit/host/kernels/recolor.h>

namespace rasterkit::kernels {
namespace {

template <int kBytes>
void RecolorPixels(uint8_t* pixels, size_t width, GraySide side, uint32_t color) {
  for (size_t x = 0; x < width; ++x, pixels += kBytes) {
    if (side.Holds(GrayOf(pixels[2], pixels[1], pixels[0]))) std::memcpy(pixels, &color, kBytes);
  }
}

uint8_t GrayOfWord(uint16_t word) {
  if (word == 0xFFFF) return 255;
  return GrayOf(static_cast<uint8_t>(word >> 11 << 3), static_cast<uint8_t>(word >> 5 << 2),
                static_cast<uint8_t>(word << 3));
}

}  // namespace

void RecolorByGray24(uint8_t* bgr, size_t width, GraySide side, uint32_t color) {
  RecolorPixels<3>(bgr, width, side, color);
}

void RecolorByGray32(uint8_t* bgra, size_t width, GraySide side, uint32_t color) {
  RecolorPixels<4>(bgra, width, side, color);
}

void RecolorByGray16(uint8_t* words, size_t width, GraySide side, uint16_t word) {
  for (size_t x = 0; x < width; ++x, words += 2) {
    uint16_t pixel;
    std::memcpy(&pixel, words, 2);
    if (side.Holds(GrayOfWord(pixel))) std::memcpy(words, &word, 2);
  }
}

void ReplaceColor24(uint8_t* bgr, size_t width, uint32_t from, uint32_t to) {
  for (size_t x = 0; x < width; ++x, bgr += 3) {
    if (std::memcmp(bgr, &from, 3) == 0) std::memcpy(bgr, &to, 3);
  }
}

}  // namespace rasterkit::kernels
