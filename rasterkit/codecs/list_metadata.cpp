#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/list_metadata.h>

namespace rasterkit {

PictureMetadata ReadMetadata(std::span<const uint8_t> file) {
  PictureMetadata metadata;
  const Codec* codec = FindCodec(SniffPictureType(file));
  if (codec != nullptr && codec->readMetadata != nullptr) codec->readMetadata(file, metadata);
  return metadata;
}

}  // namespace rasterkit
