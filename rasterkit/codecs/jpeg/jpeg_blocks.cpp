#include <algorithm>
#include <map>
#include <string_view>

#include <rasterkit/codecs/jpeg/jpeg_blocks.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_marker;
using std::string_view_literals::operator""sv;

constexpr std::string_view kExif = "Exif\0"sv, kXmp = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kExtendedXmp = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::string_view kProfile = "ICC_PROFILE\0"sv, kResources = "Photoshop 3.0\0"sv;
constexpr std::string_view kJfif = "JFIF\0"sv, kJfxx = "JFXX\0"sv, kIndex = "MPF\0"sv;
/// The name, a zero, and a byte that fills up.
constexpr size_t kExifNameBytes = 6;
/// The digest that names the packet, the size of the whole and the place of this part.
constexpr size_t kDigestBytes = 32, kExtendedHeadBytes = kDigestBytes + 8;
constexpr uint32_t kMostExtendedBytes = 64 << 20;

uint32_t BigEndian(const uint8_t* bytes, int count) {
  uint32_t value = 0;
  for (int i = 0; i < count; i++) value = value << 8 | bytes[i];
  return value;
}

/// One part of an extended packet.
struct ExtendedPart {
  uint32_t size = 0, offset = 0;
  Bytes bytes;
};

class Collector {
 public:
  JpegBlocks Collect(const JpegParts& parts) {
    for (const JpegPart& part : parts.head) Add(part);
    JoinExtended();
    if (!profile_.empty()) {
      std::vector<uint8_t> joined = JoinProfile(profile_);
      if (joined.empty()) {
        Warn("pieces of the color profile are missing");
      } else {
        blocks_.metadata.profile = std::make_shared<const std::vector<uint8_t>>(std::move(joined));
      }
    }
    return std::move(blocks_);
  }

 private:
  void Warn(const char* text) { blocks_.warnings.push_back(std::string("JPEG: ") + text); }

  void Add(const JpegPart& part) {
    const Bytes payload = part.payload;
    Metadata& metadata = blocks_.metadata;
    if (part.marker == kComment) {
      metadata.comments.emplace_back(payload.begin(), payload.end());
    } else if (part.marker == kApp0 && StartsWith(payload, kJfif)) {
      AddJfif(payload);
    } else if (part.marker == kApp1 && StartsWith(payload, kExif)) {
      const Bytes block = payload.subspan(std::min(kExifNameBytes, payload.size()));
      if (metadata.exif.empty()) {
        metadata.exif.assign(block.begin(), block.end());
      } else {
        Warn("a second EXIF block is left out");
      }
    } else if (part.marker == kApp1 && StartsWith(payload, kXmp)) {
      const Bytes packet = payload.subspan(kXmp.size());
      if (metadata.xmp.empty()) metadata.xmp.assign(packet.begin(), packet.end());
    } else if (part.marker == kApp1 && StartsWith(payload, kExtendedXmp)) {
      AddExtended(payload.subspan(kExtendedXmp.size()));
    } else if (part.marker == kApp2 && StartsWith(payload, kProfile)) {
      const Bytes piece = payload.subspan(kProfile.size());
      if (piece.size() >= 2) profile_.push_back({piece[0], piece[1], piece.subspan(2)});
    } else if (part.marker == kApp13 && StartsWith(payload, kResources)) {
      const Bytes piece = payload.subspan(kResources.size());
      blocks_.resources.insert(blocks_.resources.end(), piece.begin(), piece.end());
    } else if (IsApplication(part.marker) && !IsStructure(part)) {
      metadata.jpegSegments.push_back({part.marker, {payload.begin(), payload.end()}});
    }
  }

  /// True for segments that belong to the coded picture or to hidden copies.
  static bool IsStructure(const JpegPart& part) {
    return (part.marker == kApp0 && StartsWith(part.payload, kJfxx)) ||
           (part.marker == kApp2 && StartsWith(part.payload, kIndex)) ||
           (part.marker == kApp14 && IsAdobeSegment(part.payload));
  }

  void AddJfif(Bytes payload) {
    constexpr size_t kUnitAt = 7, kDensityAt = 8;
    constexpr double kUnits[] = {0, 1, 2.54};
    blocks_.metadata.hasJfif = true;
    if (payload.size() < kDensityAt + 4 || payload[kUnitAt] > 2) return;
    const double unit = kUnits[payload[kUnitAt]];
    blocks_.jfif.unit = unit;
    blocks_.jfif.resolution = {BigEndian(&payload[kDensityAt], 2) * unit,
                               BigEndian(&payload[kDensityAt + 2], 2) * unit};
  }

  void AddExtended(Bytes payload) {
    if (payload.size() < kExtendedHeadBytes) return;
    const std::string digest(payload.begin(), payload.begin() + kDigestBytes);
    extended_[digest].push_back({BigEndian(&payload[kDigestBytes], 4),
                                 BigEndian(&payload[kDigestBytes + 4], 4),
                                 payload.subspan(kExtendedHeadBytes)});
  }

  /// Takes the parts that the packet names; parts of other packets are of older ones.
  void JoinExtended() {
    for (auto& [digest, parts] : extended_) {
      if (blocks_.metadata.xmp.find(digest) == std::string::npos) {
        Warn("extended XMP that the packet does not name is left out");
        continue;
      }
      std::sort(parts.begin(), parts.end(),
                [](const auto& a, const auto& b) { return a.offset < b.offset; });
      std::string joined;
      for (const ExtendedPart& part : parts) {
        if (part.offset != joined.size() || part.size != parts[0].size) continue;
        joined.append(part.bytes.begin(), part.bytes.end());
        if (joined.size() > kMostExtendedBytes) break;
      }
      if (joined.size() == parts[0].size) {
        blocks_.metadata.extendedXmp = std::move(joined);
      } else {
        Warn("parts of the extended XMP are missing; it is left out");
      }
    }
  }

  JpegBlocks blocks_;
  std::vector<JpegProfilePiece> profile_;
  std::map<std::string, std::vector<ExtendedPart>> extended_;
};

}  // namespace

JpegBlocks CollectJpegBlocks(const JpegParts& parts) {
  return Collector().Collect(parts);
}

}  // namespace rasterkit::detail
