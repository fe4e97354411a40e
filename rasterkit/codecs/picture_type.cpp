#include <algorithm>
#include <array>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/picture_type.h>

namespace rasterkit {

PictureType SniffPictureType(std::span<const uint8_t> bytes) {
  const std::span<const Codec> codecs = CodecTable();
  const auto found = std::find_if(codecs.begin(), codecs.end(),
                                  [=](const Codec& codec) { return codec.matches(bytes); });
  return found == codecs.end() ? PictureType::unknown : found->type;
}

PictureType SniffPictureType(TStream& stream) {
  std::array<uint8_t, kSignatureBytes> first;
  const uint64_t position = stream.Position();
  const size_t count = stream.Read(first);
  stream.SetPosition(position);
  return SniffPictureType(std::span(first).first(count));
}

const char* PictureTypeName(PictureType type) {
  const Codec* codec = FindCodec(type);
  return codec != nullptr ? codec->name : "unknown";
}

}  // namespace rasterkit
