#include <memory>
#include <utility>
#include <vector>

#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/gray/gray_bits.h>
#include <rasterkit/raster/row_conversion.h>

namespace rasterkit {
namespace {

/// Makes a bitmap with the size and the properties of another, except those that describe its rows.
TBitmap WithoutPixels(const TBitmap& bitmap, TPixelFormat format) {
  TBitmap fresh;
  fresh.ResetPixels(format, bitmap.Width(), bitmap.Height());
  fresh.CarryFrom(bitmap, {.palette = false, .alphaFormat = false});
  return fresh;
}

/// Calls `rowOf24` or `rowOf32(row, y)` for every row: colors as they are in true-color bitmaps,
/// else converted to 24 bits row by row.
template <class RowOf24, class RowOf32>
void ReadColors(const TBitmap& bitmap, RowOf24 rowOf24, RowOf32 rowOf32) {
  const TPixelFormat format = bitmap.Content().Format();
  const PixelTable table = MakePixelTable(bitmap.Palette());
  const bool isTrueColor = format == pf24bit || format == pf32bit;
  std::vector<RGBrec> converted(isTrueColor ? 0 : static_cast<size_t>(bitmap.Width()));
  for (int y = 0; y < bitmap.Height(); ++y) {
    const uint8_t* row = bitmap.ScanLine(y);
    if (format == pf24bit) {
      rowOf24(row, y);
    } else if (format == pf32bit) {
      rowOf32(row, y);
    } else {
      RowTo24(row, format, bitmap.Width(), table, converted.data());
      rowOf24(reinterpret_cast<const uint8_t*>(converted.data()), y);
    }
  }
}

void GrayInPlace(TBitmap& bitmap) {
  const auto width = static_cast<size_t>(bitmap.Width());
  for (int y = 0; y < bitmap.Height(); ++y) kernels::GrayInPlace24(bitmap.ScanLine(y), width);
  bitmap.SetModified(true);
}

void GrayPaletteOf(TBitmap& bitmap, TColorTable& entries, int32_t count) {
  for (tagPALETTEENTRY& entry : entries) {
    entry.peRed = entry.peGreen = entry.peBlue =
        GrayValue(entry.peRed, entry.peGreen, entry.peBlue);
  }
  ChangePalColors(bitmap, entries, count);
}

void GrayIndexes(TBitmap& bitmap) {
  TBitmap gray = WithoutPixels(bitmap, pf8bit);
  gray.SetPalette(GrayPalette(256));
  const auto width = static_cast<size_t>(bitmap.Width());
  ReadColors(
      bitmap,
      [&](const uint8_t* row, int y) { kernels::GrayOfRow24(row, width, gray.ScanLine(y)); },
      [&](const uint8_t* row, int y) { kernels::GrayOfRow32(row, width, gray.ScanLine(y)); });
  bitmap = std::move(gray);
}

tagPALETTEENTRY EntryOf(int32_t red, int32_t green, int32_t blue) {
  return {static_cast<uint8_t>(red), static_cast<uint8_t>(green), static_cast<uint8_t>(blue), 0};
}

}  // namespace

void ColorBmpTo1Bit(TBitmap* bitmap, int32_t threshold, int32_t red0, int32_t green0, int32_t blue0,
                    int32_t red1, int32_t green1, int32_t blue1) {
  if (bitmap == nullptr) return;
  TBitmap mono = WithoutPixels(*bitmap, pf1bit);
  TColorTable colors{};
  colors[0] = EntryOf(red0, green0, blue0);
  colors[1] = EntryOf(red1, green1, blue1);
  mono.SetPalette(CreateColorPalette(colors, 2));
  const auto width = static_cast<size_t>(bitmap->Width());
  ReadColors(
      *bitmap,
      [&](const uint8_t* row, int y) {
        kernels::GrayBits24(row, width, threshold, mono.ScanLine(y));
      },
      [&](const uint8_t* row, int y) {
        kernels::GrayBits32(row, width, threshold, mono.ScanLine(y));
      });
  *bitmap = std::move(mono);
}

void ColorBmpToSW(TBitmap* bitmap, int32_t threshold) {
  ColorBmpTo1Bit(bitmap, threshold, 0, 0, 0, 255, 255, 255);
}

void BitmapToGray(TBitmap* bitmap, bool keepTrueColor) {
  if (bitmap == nullptr) return;
  if (keepTrueColor && bitmap->PixelFormat() == pf24bit) return GrayInPlace(*bitmap);
  std::unique_ptr<TColorTable> entries;
  const int32_t count = GetPaletteColors(bitmap->Palette(), entries);
  if (count == 16 || count == 256) return GrayPaletteOf(*bitmap, *entries, count);
  GrayIndexes(*bitmap);
}

}  // namespace rasterkit
