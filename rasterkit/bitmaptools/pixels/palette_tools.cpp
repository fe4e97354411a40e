#include <algorithm>
#include <cstring>
#include <span>

#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

/// Bytes of a row that are kept with a palette of `count` entries; may exceed the bytes of the row.
size_t KeptBytes(int width, int32_t count) {
  const auto pixels = static_cast<size_t>(width);
  switch (count) {
    case 2:
      return static_cast<size_t>(Round(width / 8.0)) + (width % 8 != 0 ? 1 : 0);
    case 16:
      return (pixels + pixels % 2) / 2;
    default:
      return pixels;
  }
}

/// Sets each row from byte `kept` on to the content of a new bitmap of the same stored format and
/// size.
void WhitenRowEnds(TBitmap& bitmap, size_t kept) {
  const size_t rowBytes = bitmap.Content().RowBytes();
  if (bitmap.Height() == 0 || kept >= rowBytes) return;
  TBitmap fresh;
  fresh.SetPixelFormat(bitmap.Content().Format());
  fresh.SetSize(bitmap.Width(), 1);
  for (int y = 0; y < bitmap.Height(); ++y) {
    std::memcpy(bitmap.ScanLine(y) + kept, fresh.ScanLine(0) + kept, rowBytes - kept);
  }
}

int32_t ClampTo(int32_t value, int32_t size) {
  return std::clamp(value, 0, size - 1);
}

}  // namespace

HPALETTE CreateColorPalette(const TColorTable& entries, int32_t count) {
  const auto given = static_cast<size_t>(std::clamp(count, 0, 256));
  TColorTable padded{};
  std::copy_n(entries.begin(), given, padded.begin());
  return HPALETTE(std::span(padded).first(given <= 16 ? given : 256));
}

int32_t GetPaletteColors(const HPALETTE& palette, std::unique_ptr<TColorTable>& entries) {
  const auto colors = palette.Entries();
  if (colors.empty()) return 0;
  entries = std::make_unique<TColorTable>();
  std::copy(colors.begin(), colors.end(), entries->begin());
  return static_cast<int32_t>(colors.size());
}

void ChangePalColors(TBitmap& bitmap, const TColorTable& entries, int32_t count) {
  HPALETTE palette = CreateColorPalette(entries, count);
  WhitenRowEnds(bitmap, KeptBytes(bitmap.Width(), count));
  bitmap.SetPalette(std::move(palette));
  bitmap.SetModified(true);
}

void ChgFirstPixCol(TBitmap& bitmap, TColor color) {
  if (bitmap.PixelFormat() != pf4bit && bitmap.PixelFormat() != pf8bit) return;
  if (bitmap.Empty()) return;
  const uint8_t index = GetPalColor(0, 0, bitmap);
  std::unique_ptr<TColorTable> entries;
  const int32_t count = GetPaletteColors(bitmap.Palette(), entries);
  if (index >= count) return;
  if (color < 0) color = static_cast<TColor>(GetSysColor(static_cast<uint32_t>(color) & 0xFFFFFF));
  tagPALETTEENTRY& entry = (*entries)[index];
  GetRGB(color, entry.peRed, entry.peGreen, entry.peBlue);
  ChangePalColors(bitmap, *entries, count);
}

uint8_t GetPalColor(int32_t x, int32_t y, const TBitmap& bitmap) {
  if (bitmap.Empty()) return 0;
  x = ClampTo(x, bitmap.Width());
  const uint8_t* row = bitmap.ScanLine(ClampTo(y, bitmap.Height()));
  if (bitmap.PixelFormat() == pf8bit) return row[x];
  if (bitmap.PixelFormat() != pf4bit) return 0;
  uint8_t even, odd;
  detail::SplitNibbles(row[x / 2], even, odd);
  return x % 2 == 0 ? even : odd;
}

void SetPalColor(int32_t x, int32_t y, TBitmap& bitmap, uint8_t index) {
  if (bitmap.Empty()) return;
  x = ClampTo(x, bitmap.Width());
  const TPixelFormat format = bitmap.PixelFormat();
  if (format != pf8bit && format != pf4bit) return;
  bitmap.SetModified(true);
  uint8_t* row = bitmap.ScanLine(ClampTo(y, bitmap.Height()));
  if (format == pf8bit) {
    row[x] = index;
    return;
  }
  uint8_t even, odd;
  detail::SplitNibbles(row[x / 2], even, odd);
  (x % 2 == 0 ? even : odd) = index;
  detail::JoinNibbles(row[x / 2], even, odd);
}

}  // namespace rasterkit
