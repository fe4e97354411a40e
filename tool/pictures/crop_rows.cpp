#include "tool/pictures/crop_rows.h"

#include <utility>

#include <rasterkit/raster/cut_out.h>

namespace rasterkit::tool {

void Crop(TBitmap& bitmap, const TRect& rect) {
  TBitmap cut(CutOut(bitmap.Content(), {rect.Left, rect.Top, rect.Right, rect.Bottom}));
  // An automatic transparent color would change with the corner pixel.
  cut.CarryFrom(bitmap, {.transparency = CarriedTransparency::fixed});
  bitmap = std::move(cut);
}

}  // namespace rasterkit::tool
