#include <algorithm>

#include <rasterkit/codecs/png/png_metadata.h>
#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

uint32_t BigEndianLong(Bytes bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

void AddChunk(PictureMetadata& metadata, Bytes type, Bytes data) {
  if (StartsWith(type, "eXIf")) {
    metadata.AddExif(data);
  } else if (StartsWith(type, "iCCP")) {
    metadata.Add(MetadataKind::profile);
  } else if (StartsWith(type, "iTXt") && StartsWith(data, "XML:com.adobe.xmp")) {
    metadata.Add(MetadataKind::xmp);
  } else if (StartsWith(type, "tEXt") || StartsWith(type, "zTXt") || StartsWith(type, "iTXt")) {
    metadata.Add(MetadataKind::text);
  } else if (StartsWith(type, "acTL") && data.size() >= 4) {
    constexpr uint32_t kMostPictures = 65535;
    metadata.pictures = static_cast<int>(std::clamp(BigEndianLong(data), 1u, kMostPictures));
  }
}

}  // namespace

/// A chunk is the big-endian length of its data, four letters, the data and a checksum.
void ReadPngMetadata(Bytes file, PictureMetadata& metadata) {
  constexpr size_t kSignatureBytes = 8, kFrameBytes = 12;
  Bytes rest = file.subspan(std::min(kSignatureBytes, file.size()));
  while (rest.size() >= kFrameBytes) {
    const uint32_t length = BigEndianLong(rest);
    if (length > rest.size() - kFrameBytes) return;
    AddChunk(metadata, rest.subspan(4, 4), rest.subspan(8, length));
    rest = rest.subspan(size_t{length} + kFrameBytes);
  }
}

}  // namespace rasterkit::detail
