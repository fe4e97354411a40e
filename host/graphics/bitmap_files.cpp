#include <rasterkit/host/codecs/bmp_decoder.h>
#include <rasterkit/host/codecs/bmp_encoder.h>
#include <rasterkit/host/graphics/bitmap.h>
#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/graphics/name_errors.h>
#include <rasterkit/host/runtime/atomic_file.h>

namespace rasterkit {

void TBitmap::LoadFromStream(TStream& stream) {
  raster_ = DecodeBmp(stream);
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
