#include <utility>

#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/tifftobmp/frame_reader.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {

void TWICBitmap::LoadFromFile(const std::string& fileName) {
  detail::FrameBitmap picture = detail::ReadFrame(fileName, detail::ReadMode::picture);
  static_cast<TBitmap&>(*this) = std::move(*picture.bitmap);
}

void TWICBitmap::SaveToFile(const std::string& fileName) {
  throw UnsupportedError("TIFF files cannot be written by this version", fileName);
}

}  // namespace rasterkit
