#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/palette.h>

#include "tests/reference/gray.h"
#include "tests/reference/palettes.h"

/// Gray and monochrome conversion written straight from the rules, slow and obvious: through a
/// 24-bit copy of the whole bitmap.
namespace rasterkit::reference {

inline uint8_t GrayOf24(const TBitmap& bitmap, int x, int y) {
  const auto& pixel = reinterpret_cast<const RGBrec*>(bitmap.ScanLine(y))[x];
  return GrayInWholeNumbers(pixel.r, pixel.g, pixel.b);
}

inline void ColorBmpTo1Bit(TBitmap& bitmap, int32_t threshold, int32_t red0, int32_t green0,
                           int32_t blue0, int32_t red1, int32_t green1, int32_t blue1) {
  const std::unique_ptr<TBitmap> copy = bitmap.Clone();
  copy->SetPixelFormat(pf24bit);
  bitmap.SetPixelFormat(pf1bit);
  const auto byte = [](int32_t value) { return static_cast<uint8_t>(value); };
  const tagPALETTEENTRY colors[2] = {{byte(red0), byte(green0), byte(blue0), 0},
                                     {byte(red1), byte(green1), byte(blue1), 0}};
  bitmap.SetPalette(HPALETTE(colors));
  for (int y = 0; y < bitmap.Height(); ++y) {
    uint8_t* target = bitmap.ScanLine(y);
    int built = 255;
    for (int x = 0; x < bitmap.Width(); ++x) {
      if (x % 8 == 0) {
        if (x > 0) *target++ = static_cast<uint8_t>(built);
        built = 255;
      }
      if (GrayOf24(*copy, x, y) < threshold) built -= 128 >> (x % 8);
    }
    if (bitmap.Width() > 0) *target = static_cast<uint8_t>(built);
  }
}

inline void BitmapToGray(TBitmap& bitmap, bool keepTrueColor) {
  if (keepTrueColor && bitmap.PixelFormat() == pf24bit) {
    for (int y = 0; y < bitmap.Height(); ++y) {
      for (int x = 0; x < bitmap.Width(); ++x) {
        auto& pixel = reinterpret_cast<RGBrec*>(bitmap.ScanLine(y))[x];
        pixel.r = pixel.g = pixel.b = GrayInWholeNumbers(pixel.r, pixel.g, pixel.b);
      }
    }
    return;
  }
  const int count = bitmap.Palette().Count();
  TColorTable entries = PaletteTable(bitmap.Palette());
  if (count == 16 || count == 256) {
    for (tagPALETTEENTRY& entry : entries)
      entry.peRed = entry.peGreen = entry.peBlue =
          GrayInWholeNumbers(entry.peRed, entry.peGreen, entry.peBlue);
    bitmap = reference::ChangePalColors(bitmap, entries, count);
    return;
  }
  const std::unique_ptr<TBitmap> copy = bitmap.Clone();
  copy->SetPixelFormat(pf24bit);
  bitmap.SetPixelFormat(pf8bit);
  for (int i = 0; i < 256; ++i) {
    const auto level = static_cast<uint8_t>(i);
    entries[static_cast<size_t>(i)] = {level, level, level, 0};
  }
  bitmap.SetPalette(HPALETTE(entries));
  for (int y = 0; y < bitmap.Height(); ++y)
    for (int x = 0; x < bitmap.Width(); ++x) bitmap.ScanLine(y)[x] = GrayOf24(*copy, x, y);
}

}  // namespace rasterkit::reference
