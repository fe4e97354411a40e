#include "tests/tool/support/sample_files.h"

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/runtime/files/stream.h>

#include "samples/exif_block.h"
#include "tests/tool/support/run_tool.h"

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
