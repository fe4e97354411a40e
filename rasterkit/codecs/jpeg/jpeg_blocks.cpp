#include <algorithm>
#include <map>

#include <rasterkit/codecs/jpeg/jpeg_blocks.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/metadata/image_resources.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kMostExtendedBytes = 64 << 20;

class Collector {
 public:
  JpegBlocks Collect(const JpegParts& parts) {
    for (const JpegSegment& segment : parts.head) Add(segment);
    JoinExtended();
    AddProfile();
    const ImageResources resources(resources_);
    blocks_.photoshop = ResolutionOf(resources);
    if (resources.IsDamaged()) Warn("the Photoshop resources are damaged");
    SplitImageResources(resources_, blocks_.metadata);
    return std::move(blocks_);
  }

 private:
  void Warn(const char* text) { blocks_.warnings.push_back(std::string("JPEG: ") + text); }

  void Add(const JpegSegment& segment) {
    const Bytes bytes = BlockBytes(segment);
    Metadata& metadata = blocks_.metadata;
    switch (BlockOf(segment)) {
      case JpegBlock::comment:
        metadata.comments.emplace_back(bytes.begin(), bytes.end());
        break;
      case JpegBlock::jfif:
        AddJfif(segment);
        break;
      case JpegBlock::exif:
        if (!metadata.exif.empty() && !bytes.empty()) Warn("a second EXIF block is skipped");
        if (metadata.exif.empty()) metadata.exif.assign(bytes.begin(), bytes.end());
        break;
      case JpegBlock::xmp:
        if (!metadata.xmp.empty()) Warn("a second XMP packet is skipped");
        if (metadata.xmp.empty()) metadata.xmp.assign(bytes.begin(), bytes.end());
        break;
      case JpegBlock::extendedXmp:
        if (const auto part = ReadExtendedXmpPart(segment)) extended_[part->guid].push_back(*part);
        break;
      case JpegBlock::profile:
        if (const auto part = ReadProfilePart(segment)) profile_.push_back(*part);
        break;
      case JpegBlock::photoshop:
        resources_.insert(resources_.end(), bytes.begin(), bytes.end());
        break;
      // Hidden copies, which stay with the pixels.
      case JpegBlock::jfxx:
      case JpegBlock::mpf:
        break;
      case JpegBlock::adobe:
        if (!IsAdobeSegment(segment.payload)) AddOther(segment);
        break;
      case JpegBlock::other:
        if (jpeg_coding::IsApplication(segment.marker)) AddOther(segment);
        break;
    }
  }

  void AddOther(const JpegSegment& segment) {
    blocks_.metadata.jpegSegments.push_back(
        {segment.marker, {segment.payload.begin(), segment.payload.end()}});
  }

  void AddJfif(const JpegSegment& segment) {
    constexpr double kUnits[] = {0, 1, 2.54};
    blocks_.metadata.hasJfif = true;
    const auto header = ReadJfif(segment);
    if (!header) return;
    blocks_.jfif.unit = kUnits[header->unit];
    blocks_.jfif.resolution = {header->densityX * blocks_.jfif.unit,
                               header->densityY * blocks_.jfif.unit};
  }

  void AddProfile() {
    if (profile_.empty()) return;
    std::vector<uint8_t> joined = JoinProfile(profile_);
    if (joined.empty()) return Warn("pieces of the color profile are missing");
    blocks_.metadata.profile = std::make_shared<const std::vector<uint8_t>>(std::move(joined));
  }

  /// Takes the parts that the packet names; others are of an older packet.
  void JoinExtended() {
    for (auto& [guid, parts] : extended_) {
      if (blocks_.metadata.xmp.find(guid) == std::string::npos) {
        Warn("extended XMP that the packet does not name is skipped");
        continue;
      }
      std::sort(parts.begin(), parts.end(),
                [](const auto& a, const auto& b) { return a.offset < b.offset; });
      std::string joined;
      for (const ExtendedXmpPart& part : parts) {
        if (part.offset != joined.size() || part.total != parts[0].total) continue;
        joined.append(part.bytes.begin(), part.bytes.end());
        if (joined.size() > kMostExtendedBytes) break;
      }
      if (joined.size() == parts[0].total) {
        blocks_.metadata.extendedXmp = std::move(joined);
      } else {
        Warn("parts of the extended XMP are missing; it is skipped");
      }
    }
  }

  JpegBlocks blocks_;
  std::vector<uint8_t> resources_;
  std::vector<JpegProfilePart> profile_;
  std::map<std::string, std::vector<ExtendedXmpPart>> extended_;
};

}  // namespace

JpegBlocks CollectJpegBlocks(const JpegParts& parts) {
  return Collector().Collect(parts);
}

}  // namespace rasterkit::detail
