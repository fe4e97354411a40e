#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/host/graphics/bitmap.h>
#include <rasterkit/host/kernels/whiten.h>

namespace rasterkit {

void ResetTransparent(TBitmap& bitmap) {
  if (!bitmap.Transparent() || bitmap.PixelFormat() != pf32bit) return;
  const auto width = static_cast<size_t>(bitmap.Width());
  for (int y = 0; y < bitmap.Height(); ++y) {
    kernels::WhitenTransparentPixels(bitmap.ScanLine(y), width);
  }
  bitmap.SetTransparent(false);
  bitmap.SetModified(true);
}

}  // namespace rasterkit
