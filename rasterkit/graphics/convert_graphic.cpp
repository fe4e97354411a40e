#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/convert_graphic.h>
#include <rasterkit/raster/convert.h>

namespace rasterkit::detail {

TBitmap ConvertGraphic(const TGraphic& source, TPixelFormat (*formatFor)(const Raster& rows)) {
  if (const Raster* rows = source.Rows()) return TBitmap(ConvertRaster(*rows, formatFor(*rows)));
  TBitmap shown;
  source.AssignToBitmap(shown);
  shown.SetPixelFormat(formatFor(shown.Content()));
  return shown;
}

}  // namespace rasterkit::detail
