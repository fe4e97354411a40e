#include <algorithm>

#include <rasterkit/drawing/context/bitmap_alpha.h>

namespace rasterkit::detail {
namespace {

template <class Change>
void ForEachPixel(Raster& pixels, Change change) {
  for (int y = 0; y < pixels.Height(); ++y) {
    auto* row = reinterpret_cast<RGBArec*>(pixels.Row(y));
    for (int x = 0; x < pixels.Width(); ++x) change(row[x], x, y);
  }
}

}  // namespace

Raster WithStraightAlpha(const Raster& premultiplied) {
  Raster copy = premultiplied.Clone();
  ForEachPixel(copy, [](RGBArec& p, int, int) {
    if (p.a == 0 || p.a == 255) return;
    const auto straight = [&](int c) {
      return static_cast<uint8_t>(std::min(255, (c * 255 + p.a / 2) / p.a));
    };
    p = {straight(p.b), straight(p.g), straight(p.r), p.a};
  });
  return copy;
}

void ScaleAlpha(Raster& pixels, uint8_t factor) {
  if (factor == 255) return;
  ForEachPixel(pixels, [&](RGBArec& p, int, int) {
    p.a = static_cast<uint8_t>((p.a * factor + 127) / 255);
  });
}

void DropColor(Raster& pixels, uint32_t pixel) {
  ForEachPixel(pixels, [&](RGBArec& p, int, int) {
    const uint32_t color = static_cast<uint32_t>(p.r) << 16 | static_cast<uint32_t>(p.g) << 8 | p.b;
    if (color == (pixel & 0xFFFFFF)) p.a = 0;
  });
}

Raster MaskBits(const Raster& mask) {
  Raster copy = mask.Clone();
  if (copy.Format() == pf1bit) copy.palette = DefaultPalette(pf1bit);
  return copy;
}

void SplitByMask(Raster& front, Raster& back, const Raster* mask) {
  const auto isFront = [&](int x, int y) {
    if (!mask) return false;
    const RGBArec p = reinterpret_cast<const RGBArec*>(mask->Row(y))[x];
    return p.a != 0 && (p.r | p.g | p.b) != 0;
  };
  ForEachPixel(front, [&](RGBArec& p, int x, int y) {
    if (!isFront(x, y)) p.a = 0;
  });
  ForEachPixel(back, [&](RGBArec& p, int x, int y) {
    if (isFront(x, y)) p.a = 0;
  });
}

}  // namespace rasterkit::detail
