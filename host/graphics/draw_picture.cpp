#include <optional>

#include <rasterkit/host/graphics/draw_picture.h>
#include <rasterkit/host/graphics/system_color.h>

namespace rasterkit::detail {

void DrawPicture(const TGraphic& graphic, const Raster& rows, TCanvas& canvas, const TRect& rect) {
  std::optional<TColor> key;
  if (graphic.Transparent()) key = ResolveColor(graphic.TransparentColor());
  canvas.DrawRaster(rect, rows, key);
}

}  // namespace rasterkit::detail
