#include "tool/reports/layout_facts.h"

#include <rasterkit/pictures/reading/grid.h>

namespace rasterkit::tool {
namespace {

bool IsGray(const PixelLayout& layout) {
  return layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
}

bool HasAlphaBand(const PixelLayout& layout) {
  return layout.alpha == AlphaKind::straight || layout.alpha == AlphaKind::associated;
}

/// Numbers that are more than eight bits of gray.
bool IsGrid(const PixelLayout& layout, PictureType type) {
  const bool isKind = type == PictureType::tiff || type == PictureType::jp2;
  return isKind && IsGray(layout) && !HasAlphaBand(layout) && layout.type != NumberType::uint8;
}

}  // namespace

int ShownBits(const PixelLayout& layout, PictureType type) {
  constexpr int kTrueColor = 24, kWithAlpha = 32, kIndexBits = 8;
  if (HasAlphaBand(layout)) return kWithAlpha;
  if (IsGrid(layout, type)) return static_cast<int>(8 * BytesOf(layout.type));
  if (!IsGray(layout) && layout.model != ColorModel::palette) return kTrueColor;
  if (layout.model == ColorModel::palette && layout.bits > kIndexBits) return kTrueColor;
  if (layout.bits == 1) return 1;
  return layout.bits <= 4 ? 4 : kIndexBits;
}

int ShownPaletteEntries(const PixelLayout& layout, PictureType type) {
  const int bits = ShownBits(layout, type);
  if (bits > 8 || IsGrid(layout, type)) return 0;
  return layout.model == ColorModel::palette ? layout.palette.Count() : 1 << bits;
}

std::string GridName(const PixelLayout& layout, PictureType type) {
  return IsGrid(layout, type) ? GridTypeName(layout.type) : "none";
}

}  // namespace rasterkit::tool
