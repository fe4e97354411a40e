#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

/// What the colors of an icon made of a bitmap are, a pixel at a time.
namespace rasterkit::reference {

/// `bitmap` must not be transparent and must have pixels, also in its half.
inline TBitmap IconColors(const TBitmap& bitmap, bool leftHalfOnly) {
  TBitmap colors;
  colors.SetPixelFormat(pf32bit);
  colors.SetSize(leftHalfOnly ? bitmap.Width() / 2 : bitmap.Width(), bitmap.Height());
  const TColor key = bitmap.PixelColor(0, 0);
  for (int y = 0; y < colors.Height(); ++y) {
    auto* row = reinterpret_cast<RGBArec*>(colors.ScanLine(y));
    for (int x = 0; x < colors.Width(); ++x) {
      const TColor color = bitmap.PixelColor(x, y);
      if (color == key) {
        row[x] = {255, 255, 255, 0};
      } else {
        row[x] = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                  static_cast<uint8_t>(color), 255};
      }
    }
  }
  return colors;
}

}  // namespace rasterkit::reference
