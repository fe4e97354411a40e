#include <string>
#include <vector>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

[[noreturn]] void Refuse(const Codec* codec, bool isEmpty) {
  if (codec == nullptr) {
    throw FormatError(isEmpty ? "the file is empty" : "the data is not a picture of a known type");
  }
  throw UnsupportedError(std::string("pictures of the kind ") + codec->name + " are not decoded");
}

}  // namespace

Raster DecodePicture(TStream& stream, CodecReport* report) {
  const LimitsScope limits;
  // Pipes have no size and give their bytes only once.
  if (stream.Size() <= stream.Position()) return DecodePicture(ReadUnsizedPicture(stream), report);
  const Codec* codec = FindFrameCodec(SniffPictureType(stream));
  if (codec != nullptr && codec->decodeStream != nullptr) {
    return codec->decodeStream(stream, report);
  }
  if (codec != nullptr && codec->decodeBytes != nullptr) {
    return codec->decodeBytes(stream.ReadToEnd(), report);
  }
  Refuse(codec, false);
}

Raster DecodePicture(std::span<const uint8_t> file, CodecReport* report) {
  const LimitsScope limits;
  const Codec* codec = FindFrameCodec(SniffPictureType(file));
  if (codec != nullptr && codec->decodeBytes != nullptr) return codec->decodeBytes(file, report);
  if (codec == nullptr || codec->decodeStream == nullptr) Refuse(codec, file.empty());
  TSpanStream stream(file);
  return codec->decodeStream(stream, report);
}

}  // namespace rasterkit
