#include <rasterkit/host/codecs/bmp_encoder.h>
#include <rasterkit/host/codecs/bmp_format.h>
#include <rasterkit/host/metafiles/packed_bitmap.h>
#include <rasterkit/host/runtime/stream.h>

namespace rasterkit::detail {

std::vector<uint8_t> PackedBitmap(const Raster& raster) {
  TMemoryStream stream;
  EncodeBmp(raster, stream, BmpProfile::omit);
  // A bitmap file without its file header.
  std::vector<uint8_t> bytes = stream.TakeBytes();
  bytes.erase(bytes.begin(), bytes.begin() + kBmpFileHeaderBytes);
  return bytes;
}

}  // namespace rasterkit::detail
