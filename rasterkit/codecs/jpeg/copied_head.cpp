#include <algorithm>

#include <rasterkit/codecs/jpeg/copied_head.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/metadata/jpeg_assembly.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_coding;
using namespace jpeg_marker;

constexpr size_t kUnitAt = 7, kDensityAt = 8, kThumbnailAt = 12, kPlainBytes = 14;

bool IsJfif(const JpegSegment& segment) {
  return BlockOf(segment) == JpegBlock::jfif;
}

/// The header of the source with the densities of the made one.
std::vector<uint8_t> NewJfif(const JpegSegment& source, Bytes made, bool keepsResolution,
                             const CopiedHead& options) {
  std::vector<uint8_t> payload(source.payload.begin(), source.payload.end());
  if (payload.size() < kPlainBytes) payload.assign(made.begin(), made.end());
  if (!keepsResolution) {
    std::copy(made.begin() + kUnitAt, made.begin() + kThumbnailAt, payload.begin() + kUnitAt);
  } else if (options.exchangesAxes && payload[kUnitAt] == 0) {
    std::rotate(payload.begin() + kDensityAt, payload.begin() + kDensityAt + 2,
                payload.begin() + kThumbnailAt);
  }
  if (options.dropsThumbnails) {
    payload.resize(kPlainBytes);
    payload[kThumbnailAt] = payload[kThumbnailAt + 1] = 0;
  }
  return payload;
}

}  // namespace

bool IsCodingSegment(const JpegSegment& part) {
  if (part.marker == kApp14) return IsAdobeSegment(part.payload);
  return !IsApplication(part.marker) && part.marker != kComment;
}

void AppendSegment(std::vector<uint8_t>& bytes, uint8_t marker, Bytes payload) {
  const std::vector<uint8_t> segment =
      BytesOf(NewJpegSegment{marker, {payload.begin(), payload.end()}});
  bytes.insert(bytes.end(), segment.begin(), segment.end());
}

void AppendMetadata(std::vector<uint8_t>& bytes, const JpegParts& parts, const Metadata& source,
                    const Metadata& metadata, const CopiedHead& options, Changes& changes) {
  const auto jfif = std::find_if(parts.head.begin(), parts.head.end(), IsJfif);
  const bool hasJfif = jfif != parts.head.end();
  Metadata changed = metadata;
  // What did not change keeps its bytes: no resolution is added, no digest is made true.
  const bool keepsResolution = metadata.resolution == source.resolution;
  if (keepsResolution) changed.resolution = {};
  const bool keepsResources =
      metadata.iptc == source.iptc && metadata.photoshop == source.photoshop;
  if (keepsResources) {
    changed.iptc.clear();
    changed.photoshop.clear();
  }
  bool isFirst = true;
  for (const NewJpegSegment& segment : AssembleJpegSegments(changed, hasJfif, changes)) {
    if (isFirst && hasJfif) {
      AppendSegment(bytes, kApp0, NewJfif(*jfif, segment.payload, keepsResolution, options));
      for (const JpegSegment& part : parts.head) {
        // The extensions must follow the header.
        if (BlockOf(part) == JpegBlock::jfxx && !options.dropsThumbnails) {
          AppendSegment(bytes, part.marker, part.payload);
        }
      }
    } else {
      AppendSegment(bytes, segment.marker, segment.payload);
    }
    isFirst = false;
  }
  for (const JpegSegment& part : parts.head) {
    if (keepsResources && BlockOf(part) == JpegBlock::photoshop) {
      AppendSegment(bytes, part.marker, part.payload);
    }
  }
}

}  // namespace rasterkit::detail
