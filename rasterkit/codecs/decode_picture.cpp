#include <string>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

Raster DecodeSized(TStream& stream, CodecReport* report) {
  const PictureType type = SniffPictureType(stream);
  switch (type) {
    case PictureType::bmp:
      return DecodeBmp(stream, report);
    case PictureType::jpeg:
      return DecodeJpeg(stream.ReadToEnd(), report);
    case PictureType::png:
      return DecodePng(stream.ReadToEnd(), report);
    case PictureType::gif:
      return DecodeGif(stream.ReadToEnd(), report);
    case PictureType::webp:
      return DecodeWebp(stream.ReadToEnd(), report);
    case PictureType::unknown:
      throw FormatError(stream.Size() == 0 ? "the file is empty"
                                           : "the data are no picture of a known kind");
    default:
      break;
  }
  throw UnsupportedError(std::string("pictures of the kind ") + PictureTypeName(type) +
                         " are not decoded");
}

}  // namespace

Raster DecodePicture(TStream& stream, CodecReport* report) {
  if (stream.Size() > stream.Position()) return DecodeSized(stream, report);
  const std::vector<uint8_t> bytes = ReadUnsizedPicture(stream);
  TSpanStream memory(bytes);
  return DecodeSized(memory, report);
}

}  // namespace rasterkit
