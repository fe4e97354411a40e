#include <utility>

#include <rasterkit/tifftobmp/frame_reader.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

namespace rasterkit {

bool ReadGeoTiffIntoBitmap(const std::string& FileName, std::unique_ptr<TBitmap>& Bitmap,
                           TWICFloatFormat& FloatFormat) {
  Bitmap.reset();
  FloatFormat = ffNoFloat;
  detail::FrameBitmap grid = detail::ReadFrame(FileName, detail::ReadMode::raster);
  Bitmap = std::move(grid.bitmap);
  FloatFormat = grid.floatFormat;
  return Bitmap != nullptr;
}

}  // namespace rasterkit
