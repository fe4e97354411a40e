#include <rasterkit/codecs/jpeg/jpeg_metadata.h>
#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/metadata/jpeg_segments.h>

namespace rasterkit::detail {
namespace {

void AddSegment(PictureMetadata& metadata, const JpegSegment& segment) {
  switch (BlockOf(segment)) {
    case JpegBlock::exif:
      return metadata.AddExif(BlockBytes(segment));
    case JpegBlock::xmp:
    case JpegBlock::extendedXmp:
      return metadata.Add(MetadataKind::xmp);
    case JpegBlock::profile:
      return metadata.Add(MetadataKind::profile);
    case JpegBlock::photoshop:
      return metadata.Add(MetadataKind::iptc);
    case JpegBlock::comment:
      return metadata.Add(MetadataKind::comment);
    default:
      // Some writers name their records otherwise.
      if (segment.marker == jpeg_marker::kApp13) metadata.Add(MetadataKind::iptc);
  }
}

/// True if the length counts fewer than its own two bytes: what follows is a matter of chance.
bool IsLengthTooSmall(const JpegSegment& segment, std::span<const uint8_t> file) {
  const size_t payload = PlaceOf(segment, file);
  return file[payload - 2] == 0 && file[payload - 1] < 2;
}

}  // namespace

void ReadJpegMetadata(std::span<const uint8_t> file, PictureMetadata& metadata) {
  JpegSegmentWalker walker(file);
  while (const auto segment = walker.Next()) {
    if (segment->marker == jpeg_marker::kScan || segment->marker == jpeg_marker::kImageEnd) return;
    if (IsLengthTooSmall(*segment, file)) return;
    AddSegment(metadata, *segment);
  }
}

}  // namespace rasterkit::detail
