#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/context/brush_ink.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

constexpr int kHatchSide = 8;
/// Largest block that a pixel of a tile becomes, and largest tile, in pixels.
constexpr int kMaxBlock = 64;
constexpr int kMaxTileSide = 8192;
constexpr int kMaxEnlargedSide = 2048;

bool IsOnHatch(int hatch, int x, int y) {
  const bool across = y == 4, down = x == 4;
  const bool falling = x == y, rising = x == kHatchSide - 1 - y;
  switch (hatch) {
    case 0:
      return across;
    case 1:
      return down;
    case 2:
      return falling;
    case 3:
      return rising;
    case 4:
      return across || down;
    case 5:
      return falling || rising;
    default:
      return true;
  }
}

InkTile HatchTile(const LogicalBrush& brush, const DrawingState& state) {
  InkTile tile{kHatchSide, kHatchSide, {}, state.backMode == BackgroundMode::transparent};
  const uint32_t line = PixelOf(brush.color);
  const uint32_t gap = tile.hasGaps ? 0 : PixelOf(state.backColor);
  for (int y = 0; y < kHatchSide; ++y) {
    for (int x = 0; x < kHatchSide; ++x) {
      tile.pixels.push_back(IsOnHatch(brush.hatch, x, y) ? line : gap);
    }
  }
  return tile;
}

HPALETTE MonoPalette(const DrawingState& state) {
  const auto entry = [](TColor color) {
    const uint32_t pixel = PixelOf(color);
    return tagPALETTEENTRY{static_cast<uint8_t>(pixel >> 16), static_cast<uint8_t>(pixel >> 8),
                           static_cast<uint8_t>(pixel), 0};
  };
  const tagPALETTEENTRY entries[] = {entry(state.textColor), entry(state.backColor)};
  return HPALETTE(entries);
}

InkTile PatternTile(const LogicalBrush& brush, const DrawingState& state) {
  const Raster& bitmap = *brush.bitmap;
  InkTile tile{
      std::min(bitmap.Width(), kMaxTileSide), std::min(bitmap.Height(), kMaxTileSide), {}, false};
  const bool isMono = brush.isMono && bitmap.Format() == pf1bit;
  const PixelTable table = MakePixelTable(isMono ? MonoPalette(state) : bitmap.palette);
  const auto width = static_cast<size_t>(tile.width);
  RequirePictureMemory(width * static_cast<size_t>(tile.height) * 4, "metafile: pattern");
  tile.pixels.resize(width * static_cast<size_t>(tile.height));
  for (int y = 0; y < tile.height; ++y) {
    uint32_t* row = tile.pixels.data() + static_cast<size_t>(y) * width;
    RowTo32(bitmap.Row(y), bitmap.Format(), tile.width, table, reinterpret_cast<RGBArec*>(row));
    for (size_t x = 0; x < width; ++x) row[x] |= 0xFF000000;
  }
  return tile;
}

/// Replaces each pixel by a block of `side` x `side` pixels.
InkTile Enlarged(const InkTile& tile, int side) {
  InkTile large{tile.width * side, tile.height * side, {}, tile.hasGaps};
  large.pixels.reserve(static_cast<size_t>(large.width) * static_cast<size_t>(large.height));
  for (int y = 0; y < large.height; ++y) {
    const uint32_t* row = tile.pixels.data() + static_cast<ptrdiff_t>(y / side) * tile.width;
    for (int x = 0; x < large.width; ++x) large.pixels.push_back(row[x / side]);
  }
  return large;
}

int BlockSide(const InkTile& tile, double scale) {
  if (!(scale > 1)) return 1;
  const int side = static_cast<int>(std::min<double>(kMaxBlock, std::floor(scale + 0.5)));
  return std::clamp(kMaxEnlargedSide / std::max(tile.width, tile.height), 1, side);
}

}  // namespace

std::optional<Ink> InkOf(const LogicalBrush& brush, const DrawingState& state,
                         const PlaneAffine& deviceToTarget) {
  if (brush.kind == LogicalBrush::null) return std::nullopt;
  Ink ink{.pixel = PixelOf(brush.color)};
  const bool isPattern = brush.kind == LogicalBrush::pattern && brush.bitmap &&
                         brush.bitmap->Width() > 0 && brush.bitmap->Height() > 0;
  const bool isHatched =
      brush.kind == LogicalBrush::hatched && brush.hatch >= 0 && brush.hatch <= 5;
  if (!isPattern && !isHatched) return ink;
  InkTile tile = isPattern ? PatternTile(brush, state) : HatchTile(brush, state);
  const int side = BlockSide(tile, deviceToTarget.MeanScale());
  if (side > 1) tile = Enlarged(tile, side);
  const PointD origin = deviceToTarget(state.brushOrigin);
  ink.originX = NearestEdge(origin.x) % tile.width;
  ink.originY = NearestEdge(origin.y) % tile.height;
  ink.tile = std::make_shared<const InkTile>(std::move(tile));
  return ink;
}

}  // namespace rasterkit::detail
