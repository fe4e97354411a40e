#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit {

void TBitmap::LoadFromStream(TStream& stream) {
  raster_ = detail::IsEmptyBmp(stream) ? Raster(pf32bit, 0, 0) : DecodeBmp(stream);
  format_ = raster_.Format();
  modified_ = false;
}

void TBitmap::SaveToStream(TStream& stream) {
  EncodeBmp(raster_, stream, BmpProfile::omit);
}

void TBitmap::SaveToFile(const std::string& fileName) {
  detail::NameErrors(fileName, [&] {
    AtomicFile file(fileName);
    EncodeBmp(raster_, file, BmpProfile::embed);
    file.Commit();
  });
  modified_ = false;
}

}  // namespace rasterkit
