#include <vector>

#include <rasterkit/raster/adaptive_palette.h>
#include <rasterkit/raster/color_points.h>
#include <rasterkit/raster/exact_colors.h>
#include <rasterkit/raster/nearest_color.h>
#include <rasterkit/raster/quantize.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

void MapNearestColors(const Raster& source, Raster& target) {
  NearestColor nearest(target.palette.Entries());
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels(static_cast<size_t>(source.Width()));
  std::vector<uint8_t> indexes(pixels.size());
  for (int y = 0; y < source.Height(); ++y) {
    RequireTime();
    RowTo32(source.Row(y), source.Format(), source.Width(), table, pixels.data());
    nearest.OfRow(pixels.data(), pixels.size(), indexes.data());
    PackIndexes(indexes.data(), target.Format(), source.Width(), target.Row(y));
  }
  target.ClearPadding();
}

}  // namespace

Raster QuantizeRaster(const Raster& source, TPixelFormat format) {
  Raster target(format, source.Width(), source.Height());
  target.CopyProperties(source);
  target.alphaFormat = afIgnored;
  if (MapExactColors(source, target)) return target;
  const size_t count = size_t{1} << StoredBitsPerPixel(format);
  target.palette = HPALETTE(ChooseAdaptivePalette(CollectColorPoints(source), count));
  MapNearestColors(source, target);
  return target;
}

}  // namespace rasterkit
