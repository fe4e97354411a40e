#include <algorithm>
#include <string_view>

#include <rasterkit/codecs/jpeg/jpeg_metadata.h>
#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint8_t kApp1 = 0xE1, kApp2 = 0xE2, kApp13 = 0xED, kComment = 0xFE;
constexpr uint8_t kEndOfImage = 0xD9, kStartOfScan = 0xDA;

void AddSegment(PictureMetadata& metadata, uint8_t marker, Bytes payload) {
  using std::string_view_literals::operator""sv;
  if (marker == kApp1 && StartsWith(payload, "Exif\0"sv)) {
    metadata.AddExif(payload.subspan(std::min<size_t>(6, payload.size())));
  } else if (marker == kApp1 && StartsWith(payload, "http://ns.adobe.com/x"sv)) {
    metadata.Add(MetadataKind::xmp);
  } else if (marker == kApp2 && StartsWith(payload, "ICC_PROFILE\0"sv)) {
    metadata.Add(MetadataKind::profile);
  } else if (marker == kApp13) {
    metadata.Add(MetadataKind::iptc);
  } else if (marker == kComment) {
    metadata.Add(MetadataKind::comment);
  }
}

}  // namespace

/// A segment is FF, a marker, a big-endian length that includes its own two bytes, and the payload.
void ReadJpegMetadata(Bytes file, PictureMetadata& metadata) {
  Bytes rest = file.subspan(2);
  while (rest.size() >= 4 && rest[0] == 0xFF) {
    const uint8_t marker = rest[1];
    if (marker == 0xFF) {
      rest = rest.subspan(1);
      continue;
    }
    const size_t length = static_cast<size_t>(rest[2]) << 8 | rest[3];
    if (marker == kEndOfImage || marker == kStartOfScan || length < 2 || rest.size() < length + 2) {
      return;
    }
    AddSegment(metadata, marker, rest.subspan(4, length - 2));
    rest = rest.subspan(length + 2);
  }
}

}  // namespace rasterkit::detail
