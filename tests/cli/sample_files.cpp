#include "tests/cli/sample_files.h"

#include <rasterkit/host/codecs/bmp_encoder.h>
#include <rasterkit/host/codecs/decode_picture.h>
#include <rasterkit/host/codecs/jpeg_encoder.h>
#include <rasterkit/host/codecs/png_encoder.h>
#include <rasterkit/host/runtime/stream.h>

#include "samples/exif_block.h"
#include "tests/cli/run_tool.h"

namespace rasterkit::test {

void SavePngFile(const std::string& file, const Raster& raster) {
  TMemoryStream stream;
  EncodePng(raster, stream);
  WriteBytes(file, stream.TakeBytes());
}

void SaveBmpFile(const std::string& file, const Raster& raster) {
  TMemoryStream stream;
  EncodeBmp(raster, stream, BmpProfile::embed);
  WriteBytes(file, stream.TakeBytes());
}

void SaveJpegFile(const std::string& file, const Raster& raster, int orientation) {
  const std::vector<uint8_t> jpeg = EncodeJpeg(raster, 90);
  const auto order =
      orientation % 2 == 0 ? samples::ByteOrder::motorola : samples::ByteOrder::intel;
  WriteBytes(file, orientation == 0 ? jpeg : samples::WithExif(jpeg, order, orientation, {}));
}

Raster LoadFile(const std::string& file) {
  TFileStream stream(file);
  return DecodePicture(stream);
}

}  // namespace rasterkit::test
