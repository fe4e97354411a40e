#include "tests/support/test_pictures.h"

#include <vector>

namespace rasterkit::test {
namespace {

// Writes a pixel's stored bits: a packed index, or a little-endian number of whole bytes.
void StorePixel(Raster& raster, int x, int y, uint32_t bits) {
  uint8_t* row = raster.Row(y);
  const auto column = static_cast<size_t>(x);
  switch (StoredBitsPerPixel(raster.Format())) {
    case 1:
      if (column % 8 == 0) row[column / 8] = 0;
      row[column / 8] |= static_cast<uint8_t>((bits & 1) << (7 - column % 8));
      break;
    case 4:
      if (column % 2 == 0) row[column / 2] = 0;
      row[column / 2] |= static_cast<uint8_t>((bits & 15) << (column % 2 == 0 ? 4 : 0));
      break;
    default: {
      const auto bytes = static_cast<size_t>(StoredBitsPerPixel(raster.Format()) / 8);
      for (size_t i = 0; i < bytes; ++i)
        row[column * bytes + i] = static_cast<uint8_t>(bits >> (8 * i));
    }
  }
}

uint32_t GradientPixel(TPixelFormat format, int x, int y) {
  const auto h = static_cast<uint32_t>(x), v = static_cast<uint32_t>(y);
  switch (format) {
    case pf1bit:
      return (h / 3 + v / 2) & 1;
    case pf4bit:
      return (h + v * 3) & 15;
    case pf8bit:
      return (h * 2 + v * 5) & 255;
    case pf15bit:
      return ((h & 31) << 10 | (v & 31) << 5 | ((h + v) & 31)) & 0x7FFF;
    case pf16bit:
      return (h & 31) << 11 | (v & 63) << 5 | ((h + v) & 31);
    default:
      return (255 - (h * 7 & 255)) << 24 | (h * 3 & 255) << 16 | (v * 5 & 255) << 8 |
             ((h + v) * 2 & 255);
  }
}

template <class Pixel>
void PaintEveryPixel(Raster& raster, Pixel pixel) {
  for (int y = 0; y < raster.Height(); ++y)
    for (int x = 0; x < raster.Width(); ++x) StorePixel(raster, x, y, pixel(x, y));
  raster.ClearPadding();
}

}  // namespace

Raster GradientRaster(TPixelFormat format, int width, int height) {
  Raster raster(format, width, height);
  PaintEveryPixel(raster, [&](int x, int y) { return GradientPixel(format, x, y); });
  return raster;
}

Raster RandomRaster(TPixelFormat format, int width, int height, std::mt19937& random) {
  Raster raster(format, width, height);
  PaintEveryPixel(raster, [&](int, int) { return static_cast<uint32_t>(random()); });
  if (IsIndexed(format)) raster.palette = RandomPalette(1 << StoredBitsPerPixel(format), random);
  return raster;
}

Raster FewColorsRaster(TPixelFormat format, int width, int height, int colors,
                       std::mt19937& random) {
  std::vector<uint32_t> choice(static_cast<size_t>(colors));
  for (uint32_t& color : choice) color = static_cast<uint32_t>(random());
  Raster raster(format, width, height);
  PaintEveryPixel(raster, [&](int, int) { return choice[random() % choice.size()]; });
  return raster;
}

Raster GrayRaster(int width, int height) {
  Raster raster(pf8bit, width, height);
  raster.palette = GrayPalette(256);
  PaintEveryPixel(raster, [](int x, int y) { return static_cast<uint32_t>(x * 3 + y * 5) & 255; });
  return raster;
}

HPALETTE RandomPalette(int count, std::mt19937& random) {
  std::vector<tagPALETTEENTRY> entries(static_cast<size_t>(count));
  for (tagPALETTEENTRY& entry : entries) {
    const auto bits = static_cast<uint32_t>(random());
    entry = {static_cast<uint8_t>(bits), static_cast<uint8_t>(bits >> 8),
             static_cast<uint8_t>(bits >> 16), 0};
  }
  return HPALETTE(entries);
}

}  // namespace rasterkit::test
