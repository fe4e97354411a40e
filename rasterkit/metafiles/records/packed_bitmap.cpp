#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/metafiles/records/packed_bitmap.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

std::vector<uint8_t> PackedBitmap(const Raster& raster) {
  TMemoryStream stream;
  EncodeBmp(raster, stream, BmpProfile::omit);
  // A BMP file without its file header.
  std::vector<uint8_t> bytes = stream.TakeBytes();
  bytes.erase(bytes.begin(), bytes.begin() + kBmpFileHeaderBytes);
  return bytes;
}

}  // namespace rasterkit::detail
