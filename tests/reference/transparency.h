#pragma once

#include <rasterkit/host/graphics/bitmap.h>

/// Transparency operations written straight from their rules, slow and obvious.
namespace rasterkit::reference {

inline void ResetTransparent(TBitmap& bitmap) {
  if (!bitmap.Transparent()) return;
  if (bitmap.PixelFormat() != pf32bit) return;
  for (int y = 0; y < bitmap.Height(); ++y) {
    for (int x = 0; x < bitmap.Width(); ++x) {
      auto& pixel = reinterpret_cast<RGBArec*>(bitmap.ScanLine(y))[x];
      if (pixel.a == 0) pixel = RGBArec{255, 255, 255, 255};
    }
  }
  bitmap.SetTransparent(false);
}

}  // namespace rasterkit::reference
