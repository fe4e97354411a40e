#include <algorithm>

#include <rasterkit/drawing/ink/ink.h>

namespace rasterkit::detail {
namespace {

int Modulo(int value, int size) {
  const int rest = value % size;
  return rest < 0 ? rest + size : rest;
}

}  // namespace

void InkRow(const Ink& ink, int x, int y, int count, uint32_t* pixels, uint8_t* coverage) {
  if (!ink.tile) {
    std::fill_n(pixels, count, ink.pixel);
    return;
  }
  const InkTile& tile = *ink.tile;
  const uint32_t* row =
      tile.pixels.data() +
      static_cast<size_t>(Modulo(y - ink.originY, tile.height)) * static_cast<size_t>(tile.width);
  int at = Modulo(x - ink.originX, tile.width);
  for (int i = 0; i < count; ++i) {
    pixels[i] = row[at];
    if (++at == tile.width) at = 0;
  }
  if (!tile.hasGaps) return;
  for (int i = 0; i < count; ++i) {
    if (pixels[i] >> 24 == 0) coverage[i] = 0;
  }
}

}  // namespace rasterkit::detail
