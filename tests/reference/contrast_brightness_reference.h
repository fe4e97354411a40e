#pragma once

#include <rasterkit/graphics/bitmap.h>

#include "tests/reference/palettes.h"
#include "tests/reference/pixel_mixing_reference.h"

/// Contrast and brightness of bitmaps, written straight from the rules. Thread counts other than 1
/// only tell the multi-threaded rule: every row is done.
namespace rasterkit::reference {

template <class Change>
void ChangeColors(TBitmap& bitmap, int32_t threadsCount, Change change) {
  if (bitmap.Width() == 0 || bitmap.Height() == 0) return;
  if (IsIndexed(bitmap.PixelFormat())) {
    const HPALETTE palette = bitmap.Palette();
    if (palette.Count() == 0) return;
    TColorTable entries{};
    for (int i = 0; i < palette.Count(); ++i) {
      auto& entry = entries[static_cast<size_t>(i)];
      entry = palette.Entry(i);
      if (!IsNotBlackOrWhite(entry.peRed, entry.peGreen, entry.peBlue)) continue;
      const Bgr changed = change(Bgr{entry.peBlue, entry.peGreen, entry.peRed});
      entry.peRed = changed.r;
      entry.peGreen = changed.g;
      entry.peBlue = changed.b;
    }
    bitmap = ChangePalColors(bitmap, entries, palette.Count());
    return;
  }
  bitmap.SetPixelFormat(pf24bit);
  for (int y = 0; y < bitmap.Height(); ++y)
    for (int x = 0; x < bitmap.Width(); ++x) {
      RGBrec& pixel = reinterpret_cast<RGBrec*>(bitmap.ScanLine(y))[x];
      if (threadsCount == 1 && !IsNotBlackOrWhite(pixel.r, pixel.g, pixel.b)) continue;
      const Bgr changed = change(Bgr{pixel.b, pixel.g, pixel.r});
      pixel = {changed.b, changed.g, changed.r};
    }
}

inline void Kontrast(TBitmap& bitmap, int32_t value, int32_t threadsCount) {
  ChangeColors(bitmap, threadsCount, [value](Bgr color) {
    return Bgr{ContrastOf(color.b, value), ContrastOf(color.g, value), ContrastOf(color.r, value)};
  });
}

inline void Helligkeit(TBitmap& bitmap, int32_t value, int32_t threadsCount) {
  if (value == 0 || value < -100 || value > 100) return;
  ChangeColors(bitmap, threadsCount, [value](Bgr color) { return BrightnessOf(color, value); });
}

}  // namespace rasterkit::reference
