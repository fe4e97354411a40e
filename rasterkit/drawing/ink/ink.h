#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::detail {

/// A pixel of the picture as a number: 0xAARRGGBB, which lies in memory as B G R A.
constexpr uint32_t PixelOf(TColor color) {
  const auto c = static_cast<uint32_t>(color);
  return 0xFF000000 | (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF);
}

constexpr TColor ColorOf(uint32_t pixel) {
  return static_cast<TColor>((pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF));
}

/// A small picture that is laid side by side over the plane. Pixels of alpha 0 are gaps, which
/// leave the picture as it is; others have alpha 255.
struct InkTile {
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;
  bool hasGaps = false;
};

/// What a brush or pen paints with: one colour, or a tile.
struct Ink {
  uint32_t pixel = 0xFF000000;
  std::shared_ptr<const InkTile> tile = {};
  /// The pixel of the picture where a tile begins.
  int originX = 0, originY = 0;
};

/// The ink's pixels from (x, y) on, to the right. Where there are gaps their coverage becomes 0.
void InkRow(const Ink& ink, int x, int y, int count, uint32_t* pixels, uint8_t* coverage);

}  // namespace rasterkit::detail
