#include <algorithm>

#include <rasterkit/dialogs/bitmapframe/cut_bitmap.h>
#include <rasterkit/raster/cut_out.h>

namespace rasterkit {

std::unique_ptr<TBitmap> CutBitmapTo(const TBitmap& bitmap, const TRect& rect) {
  const PixelRect part{std::max(rect.Left, 0), std::max(rect.Top, 0),
                       std::min(rect.Right, bitmap.Width()),
                       std::min(rect.Bottom, bitmap.Height())};
  const bool isInside = part.left < part.right && part.top < part.bottom;
  auto cut = std::make_unique<TBitmap>(CutOut(bitmap.Content(), isInside ? part : PixelRect{}));
  cut->AssignTransparency(bitmap);
  // An automatic transparent color would be taken from another corner pixel.
  if (bitmap.Transparent()) cut->SetTransparentColor(bitmap.TransparentColor());
  return cut;
}

}  // namespace rasterkit
