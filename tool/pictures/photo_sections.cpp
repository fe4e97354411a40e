#include "tool/pictures/photo_sections.h"

#include <algorithm>
#include <array>

#include <fmt/core.h>

#include <rasterkit/codecs/rows/metadata_kind.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/text.h>

#include "tool/reports/loss_report.h"

namespace rasterkit::tool {
namespace {

using Bytes = std::span<const uint8_t>;

/// True for frame headers; C4, C8 and CC have another meaning.
bool IsFrame(uint8_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

std::string MarkerName(uint8_t marker) {
  if (marker >= jpeg_marker::kApp0 && marker <= jpeg_marker::kApp15) {
    return fmt::format("APP{}", marker - jpeg_marker::kApp0);
  }
  if (IsFrame(marker)) return fmt::format("SOF{}", marker - 0xC0);
  switch (marker) {
    case 0xC4:
      return "DHT";
    case 0xCC:
      return "DAC";
    case 0xDB:
      return "DQT";
    case 0xDD:
      return "DRI";
    case jpeg_marker::kComment:
      return "COM";
    default:
      return fmt::format("FF{:02X}", marker);
  }
}

const char* KindOf(const JpegSegment& segment) {
  switch (BlockOf(segment)) {
    case JpegBlock::jfif:
      return MetadataKindName(MetadataKind::jfif);
    case JpegBlock::jfxx:
      return MetadataKindName(MetadataKind::jfxx);
    case JpegBlock::exif:
      return MetadataKindName(MetadataKind::exif);
    case JpegBlock::xmp:
    case JpegBlock::extendedXmp:
      return MetadataKindName(MetadataKind::xmp);
    case JpegBlock::profile:
      return MetadataKindName(MetadataKind::profile);
    case JpegBlock::mpf:
      return MetadataKindName(MetadataKind::mpf);
    case JpegBlock::photoshop:
      return MetadataKindName(MetadataKind::iptc);
    case JpegBlock::adobe:
      return MetadataKindName(MetadataKind::adobe);
    case JpegBlock::comment:
      return MetadataKindName(MetadataKind::comment);
    default:
      // Some writers name their records otherwise.
      return segment.marker == jpeg_marker::kApp13 ? MetadataKindName(MetadataKind::iptc) : "";
  }
}

void TakeFrame(PhotoHeader& header, Bytes payload) {
  constexpr size_t kHeightAt = 1, kWidthAt = 3, kLeast = 6;
  if (payload.size() < kLeast || header.width != 0) return;
  header.height = payload[kHeightAt] << 8 | payload[kHeightAt + 1];
  header.width = payload[kWidthAt] << 8 | payload[kWidthAt + 1];
}

bool HasIndex(const std::string& file) {
  try {
    TFileStream stream(file);
    const std::vector<uint8_t> bytes = stream.ReadToEnd();
    const PhotoHeader header = ReadPhotoHeader(bytes);
    return std::any_of(header.sections.begin(), header.sections.end(), [](const auto& section) {
      return section.kind == MetadataKindName(MetadataKind::mpf);
    });
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

PhotoHeader ReadPhotoHeader(Bytes jpeg) {
  PhotoHeader header;
  JpegSegmentWalker walker(jpeg);
  while (const auto segment = walker.Next()) {
    header.leadsToPixels = segment->marker == jpeg_marker::kScan;
    if (header.leadsToPixels || segment->marker == jpeg_marker::kImageEnd) break;
    if (IsFrame(segment->marker)) TakeFrame(header, segment->payload);
    header.sections.push_back(
        {MarkerName(segment->marker), KindOf(*segment), segment->at, segment->payload.size() + 4});
    if (segment->marker != jpeg_marker::kComment) continue;
    const auto* text = reinterpret_cast<const char*>(segment->payload.data());
    std::string comment = Utf8OfBytes(Trim({text, segment->payload.size()}));
    if (!comment.empty()) header.comments.push_back(std::move(comment));
  }
  return header;
}

Bytes ThumbnailOf(const ExifBlock& block) {
  if (const Bytes stated = block.Thumbnail(); !stated.empty()) return stated;
  if (!block.HasThumbnail()) return {};
  constexpr std::array<uint8_t, 4> kStart = {0xFF, 0xD8, 0xFF, 0xDB};
  constexpr std::array<uint8_t, 2> kEnd = {0xFF, 0xD9};
  const Bytes bytes = block.Bytes();
  const auto first = std::search(bytes.begin(), bytes.end(), kStart.begin(), kStart.end());
  const auto last = std::search(first, bytes.end(), kEnd.begin(), kEnd.end());
  if (last == bytes.end()) return {};
  return Bytes(first, last + kEnd.size());
}

std::vector<std::string> CopiedKinds(const Picture& picture, const std::string& file) {
  std::vector<std::string> names;
  for (const LossKind kind : KindsOf(picture)) {
    switch (kind) {
      case LossKind::exif:
      case LossKind::gps:
      case LossKind::xmp:
      case LossKind::iptc:
      case LossKind::comment:
      case LossKind::text:
      case LossKind::profile:
        names.emplace_back(LossKindName(kind));
        break;
      default:
        break;
    }
  }
  const bool isJpeg = picture.SourceType() == PictureType::jpeg;
  if (isJpeg && HasIndex(file)) names.emplace_back(MetadataKindName(MetadataKind::mpf));
  for (const OtherBlock& block : picture.GetMetadata().jpegSegments) {
    names.push_back(fmt::format("app{}", block.kind - jpeg_marker::kApp0));
  }
  return names;
}

}  // namespace rasterkit::tool
