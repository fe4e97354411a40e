#include <array>
#include <optional>
#include <vector>

#include <rasterkit/host/raster/exact_colors.h>
#include <rasterkit/host/raster/quantize.h>
#include <rasterkit/host/runtime/errors.h>

namespace rasterkit {

Raster QuantizeRaster(const Raster& source, TPixelFormat format) {
  Raster target(format, source.Width(), source.Height());
  target.CopyProperties(source);
  target.alphaFormat = afIgnored;
  if (MapExactColors(source, target)) return target;
  throw UnsupportedError("more colours than entries");
}

}  // namespace rasterkit
