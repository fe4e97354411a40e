#include "tool/pictures/crop_rows.h"

#include <utility>

#include <rasterkit/raster/cut_out.h>

namespace rasterkit::tool {
namespace {

/// Fixes an automatic transparent color: it would change with the corner pixel.
void FixTransparentColor(TBitmap& bitmap) {
  if (bitmap.Transparent()) bitmap.SetTransparentColor(bitmap.TransparentColor());
}

}  // namespace

void Crop(TBitmap& bitmap, const TRect& rect) {
  FixTransparentColor(bitmap);
  TBitmap cut(CutOut(bitmap.Content(), {rect.Left, rect.Top, rect.Right, rect.Bottom}));
  cut.AssignTransparency(bitmap);
  bitmap = std::move(cut);
}

}  // namespace rasterkit::tool
