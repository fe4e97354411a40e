#include <algorithm>

#include <rasterkit/codecs/rows/picture_metadata.h>

namespace rasterkit {

void PictureMetadata::Add(MetadataKind kind) {
  if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) kinds.push_back(kind);
}

void PictureMetadata::AddExif(std::span<const uint8_t> block) {
  Add(MetadataKind::exif);
  if (exif.empty()) exif = block;
}

}  // namespace rasterkit
