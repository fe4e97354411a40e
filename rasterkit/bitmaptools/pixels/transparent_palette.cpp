#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/bitmaptools/pixels/transparent_palette.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/palette/index_rows.h>

namespace rasterkit::detail {
namespace {

using NibbleMap = std::array<uint8_t, 16>;

bool IsWhite(const tagPALETTEENTRY& entry) {
  return entry.peRed == 255 && entry.peGreen == 255 && entry.peBlue == 255;
}

uint8_t GrayOfEntry(const tagPALETTEENTRY& entry) {
  return GrayValue(entry.peRed, entry.peGreen, entry.peBlue);
}

/// Supported palette, and how it makes rows to be read.
struct FullPalette {
  std::unique_ptr<TColorTable> entries;
  int count = 0;

  explicit FullPalette(const TBitmap& bitmap)
      : count(GetPaletteColors(bitmap.Palette(), entries)) {}
  bool IsHandled() const { return count == 16 || count == 256; }
  bool HasPairs() const { return count == 16; }
  int Last() const { return count - 1; }
  tagPALETTEENTRY& Entry(int index) const { return (*entries)[static_cast<size_t>(index)]; }
};

/// Index of the last white entry; -1 if there is none.
int LastWhite(const FullPalette& palette) {
  int i = palette.Last();
  while (i >= 0 && !IsWhite(palette.Entry(i))) --i;
  return i;
}

/// Entry of the greatest sum, the highest index among equals; 0 if none is above 3.
int Brightest(const FullPalette& palette) {
  int best = 0;
  int bestSum = 3;
  for (int i = palette.Last(); i >= 0; --i) {
    const tagPALETTEENTRY& entry = palette.Entry(i);
    const int sum = entry.peRed + entry.peGreen + entry.peBlue;
    if (sum <= bestSum) continue;
    best = i;
    bestSum = sum;
  }
  return best;
}

/// Index of white; the brightest entry becomes white if there is none.
int EnsureWhite(TBitmap& bitmap, const FullPalette& palette) {
  const int white = LastWhite(palette);
  if (white >= 0) return white;
  const int brightest = Brightest(palette);
  tagPALETTEENTRY& entry = palette.Entry(brightest);
  entry.peRed = entry.peGreen = entry.peBlue = 255;
  ChangePalColors(bitmap, *palette.entries, palette.count);
  return brightest;
}

/// Calls `change(row, bytes)` for the bytes of each row that the palette's rule uses. A row may
/// have fewer if palette and pixel format do not match.
template <class Change>
void ChangeIndexes(TBitmap& bitmap, const FullPalette& palette, Change change) {
  const auto width = static_cast<size_t>(bitmap.Width());
  const size_t bytes =
      std::min(palette.HasPairs() ? (width + 1) / 2 : width, bitmap.Content().RowBytes());
  for (int y = 0; y < bitmap.Height(); ++y) change(bitmap.ScanLine(y), bytes);
  bitmap.SetModified(true);
}

NibbleMap KeepNibbles() {
  NibbleMap map;
  for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<uint8_t>(i);
  return map;
}

void MapPairs(TBitmap& bitmap, const FullPalette& palette, const NibbleMap& map) {
  ChangeIndexes(bitmap, palette,
                [&map](uint8_t* row, size_t bytes) { kernels::MapNibblePairs(row, bytes, map); });
}

void ExchangeWithLast(TBitmap& bitmap, const FullPalette& palette, int white) {
  tagPALETTEENTRY& first = palette.Entry(white);
  tagPALETTEENTRY& last = palette.Entry(palette.Last());
  std::swap(first.peRed, last.peRed);
  std::swap(first.peGreen, last.peGreen);
  std::swap(first.peBlue, last.peBlue);
  ChangePalColors(bitmap, *palette.entries, palette.count);
  if (palette.HasPairs()) {
    NibbleMap map = KeepNibbles();
    std::swap(map[static_cast<size_t>(white)], map.back());
    MapPairs(bitmap, palette, map);
  } else {
    ChangeIndexes(bitmap, palette, [white](uint8_t* row, size_t bytes) {
      kernels::SwapIndexes(row, bytes, static_cast<uint8_t>(white), 255);
    });
  }
}

void GiveCornerLastEntry(TBitmap& bitmap, const FullPalette& palette) {
  uint8_t& corner = *bitmap.ScanLine(bitmap.Height() - 1);
  if (palette.HasPairs()) {
    uint8_t even, odd;
    SplitNibbles(corner, even, odd);
    JoinNibbles(corner, 15, odd);
  } else {
    corner = 255;
  }
  bitmap.SetModified(true);
}

}  // namespace

void SetPaletteToTransparent(TBitmap& bitmap, uint8_t threshold) {
  const FullPalette palette(bitmap);
  if (!palette.IsHandled()) return;
  const auto white = static_cast<uint8_t>(EnsureWhite(bitmap, palette));
  const auto isLight = [&](int index) { return GrayOfEntry(palette.Entry(index)) > threshold; };
  if (palette.HasPairs()) {
    NibbleMap map = KeepNibbles();
    for (int i = 0; i < 16; ++i) {
      if (isLight(i)) map[static_cast<size_t>(i)] = white;
    }
    MapPairs(bitmap, palette, map);
  } else {
    kernels::IndexSet light;
    for (int i = 1; i < 256; ++i) {
      if (isLight(i)) light.Add(static_cast<uint8_t>(i));
    }
    ChangeIndexes(bitmap, palette, [&](uint8_t* row, size_t bytes) {
      kernels::ReplaceIndexes(row, bytes, light, white);
    });
  }
}

void MoveWhiteToTheEnd(TBitmap& bitmap) {
  const FullPalette palette(bitmap);
  if (!palette.IsHandled()) return;
  const int white = LastWhite(palette);
  if (white >= 0 && white < palette.Last()) ExchangeWithLast(bitmap, palette, white);
  GiveCornerLastEntry(bitmap, palette);
}

}  // namespace rasterkit::detail
