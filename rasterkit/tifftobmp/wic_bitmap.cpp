#include <utility>

#include <rasterkit/tifftobmp/frame_reader.h>
#include <rasterkit/tifftobmp/geotiff_writer.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {

void TWICBitmap::LoadFromFile(const std::string& fileName) {
  detail::FrameBitmap picture = detail::ReadFrame(fileName, detail::ReadMode::picture);
  static_cast<TBitmap&>(*this) = std::move(*picture.bitmap);
}

void TWICBitmap::SaveToFile(const std::string& fileName) {
  WriteBitmapToTiff(*this, fileName, false, 0, 0, 0, 0);
  modified_ = false;
}

}  // namespace rasterkit
