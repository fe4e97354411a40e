#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::detail {

/// Returns a color as an opaque pixel 0xAARRGGBB, which is B G R A in memory.
constexpr uint32_t PixelOf(TColor color) {
  const auto c = static_cast<uint32_t>(color);
  return 0xFF000000 | (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF);
}

constexpr TColor ColorOf(uint32_t pixel) {
  return static_cast<TColor>((pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF));
}

/// A small picture that is repeated over the plane. Pixels with alpha 0 are gaps and leave the
/// picture unchanged; all others have alpha 255.
struct InkTile {
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;
  bool hasGaps = false;
};

/// What a brush or pen paints with: one color, or a tile.
struct Ink {
  uint32_t pixel = 0xFF000000;
  std::shared_ptr<const InkTile> tile = {};
  /// The pixel of the picture at which a tile begins.
  int originX = 0, originY = 0;
};

/// Writes `count` pixels of the ink from (x, y) to the right. Sets the coverage of gaps to 0.
void InkRow(const Ink& ink, int x, int y, int count, uint32_t* pixels, uint8_t* coverage);

}  // namespace rasterkit::detail
