#include <vector>

#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/index_convert.h>
#include <rasterkit/raster/quantize.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

Raster ConvertToTrueColor(const Raster& source, TPixelFormat format) {
  Raster target(format, source.Width(), source.Height());
  target.CopyProperties(source);
  target.palette = {};
  target.alphaFormat = afIgnored;
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels;
  if (format == pf15bit || format == pf16bit) pixels.resize(static_cast<size_t>(source.Width()));
  for (int y = 0; y < source.Height(); ++y) {
    RequireTime();
    const uint8_t* from = source.Row(y);
    uint8_t* to = target.Row(y);
    if (format == pf32bit) {
      RowTo32(from, source.Format(), source.Width(), table, reinterpret_cast<RGBArec*>(to));
    } else if (format == pf24bit) {
      RowTo24(from, source.Format(), source.Width(), table, reinterpret_cast<RGBrec*>(to));
    } else {
      RowTo32(from, source.Format(), source.Width(), table, pixels.data());
      RowFrom32(pixels.data(), format, source.Width(), to);
    }
  }
  target.ClearPadding();
  return target;
}

// There are no pixels to choose colors from: the palette is that of a new picture.
Raster ConvertEmpty(const Raster& source, TPixelFormat format) {
  Raster target(format, source.Width(), source.Height());
  const HPALETTE palette = target.palette;
  target.CopyProperties(source);
  target.palette = palette;
  target.alphaFormat = afIgnored;
  return target;
}

}  // namespace

Raster ConvertRaster(const Raster& source, TPixelFormat format) {
  if (format == source.Format()) return source.Clone();
  if (source.Width() == 0 || source.Height() == 0) return ConvertEmpty(source, format);
  if (!IsIndexed(format)) return ConvertToTrueColor(source, format);
  if (IsIndexed(source.Format())) return ConvertIndexed(source, format);
  return format == pf1bit ? ThresholdToMono(source) : QuantizeRaster(source, format);
}

}  // namespace rasterkit
