#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <string_view>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/jpeg_assembly.h>
#include <rasterkit/metadata/jpeg_names.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/metadata/md5.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_marker;
using std::string_view_literals::operator""sv;

constexpr size_t kGuidDigits = 32;
constexpr const char* kFormat = "a JPEG file";
constexpr const char* kSegmentLimit = "a segment of a JPEG file holds 65,533 bytes";

void AppendNumber(std::vector<uint8_t>& bytes, uint64_t value, int count) {
  for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<uint8_t>(value >> shift));
  }
}

template <class Content>
std::vector<uint8_t> Named(std::string_view name, const Content& content) {
  std::vector<uint8_t> bytes(name.begin(), name.end());
  bytes.insert(bytes.end(), content.begin(), content.end());
  return bytes;
}

Bytes AsBytes(const std::string& text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

/// Place of the digest by which the packet names its extension; npos if it names none.
size_t FindGuid(const std::string& xmp) {
  constexpr std::string_view kProperty = "HasExtendedXMP";
  // The property as an attribute or as an element: the digits follow close behind its name.
  constexpr size_t kClose = 40;
  for (size_t at = xmp.find(kProperty); at != std::string::npos; at = xmp.find(kProperty, at)) {
    at += kProperty.size();
    for (size_t start = at; start < at + kClose && start + kGuidDigits <= xmp.size(); ++start) {
      const auto first = xmp.begin() + static_cast<std::ptrdiff_t>(start);
      if (std::all_of(first, first + kGuidDigits, IsHexDigit)) return start;
    }
  }
  return std::string::npos;
}

/// A packet that says nothing but that all of it is in the extension.
std::string PacketOfExtension() {
  return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
         "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
         " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
         "  <rdf:Description rdf:about=\"\" xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\""
         " xmpNote:HasExtendedXMP=\"" +
         std::string(kGuidDigits, '0') + "\"/>\n </rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

/// Removes the blanks in front of the packet's end that give room for changes.
void DropPadding(std::string& xmp) {
  const size_t end = xmp.rfind("<?xpacket");
  if (end == std::string::npos || end == 0) return;
  const size_t last = xmp.find_last_not_of(" \t\r\n", end - 1);
  if (last != std::string::npos && last + 2 < end) xmp.replace(last + 1, end - last - 1, "\n");
}

class Assembler {
 public:
  Assembler(const Metadata& metadata, Changes& changes) : metadata_(metadata), changes_(changes) {}

  std::vector<NewJpegSegment> Assemble(bool withJfif) {
    if (withJfif) AddJfif();
    AddExif(withJfif);
    AddXmp();
    AddProfile();
    AddResources();
    for (const OtherBlock& block : metadata_.jpegSegments) {
      Add(static_cast<uint8_t>(block.kind), block.bytes);
    }
    AddComments();
    detail::LoseTiffTags(metadata_, kFormat, changes_);
    detail::LosePngChunks(metadata_, kFormat, changes_);
    return std::move(segments_);
  }

 private:
  void Add(uint8_t marker, std::vector<uint8_t> payload) {
    if (payload.size() > kMostJpegPayload) {
      changes_.Lose(LossKind::otherBlock, "a block of " + std::to_string(payload.size()) + " bytes",
                    kSegmentLimit);
      return;
    }
    segments_.push_back({marker, std::move(payload)});
  }

  void AddJfif() {
    constexpr double kCentimetersPerInch = 2.54, kExact = 1e-6, kMost = 65535;
    const Resolution& dpi = metadata_.resolution;
    Resolution stated = {1, 1};
    uint8_t unit = 0;
    const auto isWhole = [&](double factor) {
      const double x = dpi.x / factor, y = dpi.y / factor;
      return std::abs(x - std::round(x)) < kExact && std::abs(y - std::round(y)) < kExact;
    };
    if (dpi.IsKnown() && dpi.x < kMost && dpi.y < kMost) {
      unit = !isWhole(1) && isWhole(kCentimetersPerInch) ? 2 : 1;
      const double factor = unit == 2 ? kCentimetersPerInch : 1;
      stated = {std::max(1.0, std::round(dpi.x / factor)),
                std::max(1.0, std::round(dpi.y / factor))};
      if (!isWhole(factor)) {
        changes_.Note("the JFIF header states the resolution in whole dots per inch");
      }
    }
    std::vector<uint8_t> payload = Named("JFIF\0\1\2"sv, std::string_view());
    payload.push_back(unit);
    AppendNumber(payload, static_cast<uint64_t>(stated.x), 2);
    AppendNumber(payload, static_cast<uint64_t>(stated.y), 2);
    AppendNumber(payload, 0, 2);
    Add(kApp0, std::move(payload));
  }

  void AddExif(bool withJfif) {
    const size_t most = kMostJpegPayload - detail::kExifName.size();
    ExifBlock block(metadata_.exif);
    const bool isMissing = metadata_.exif.empty();
    if (!withJfif && metadata_.resolution.IsKnown() && !block.IsDamaged()) {
      SetResolution(block, metadata_.resolution);
      if (isMissing) {
        constexpr uint16_t kPositioning = 531, kCentered = 1;
        block.SetWords(ExifDirectoryId::main, kPositioning, std::array{kCentered});
      }
    } else if (isMissing) {
      return;
    }
    const bool hadThumbnail = block.HasThumbnail();
    block.ShrinkTo(most);
    if (hadThumbnail && !block.HasThumbnail()) {
      changes_.Lose(LossKind::thumbnail, "the thumbnail", kSegmentLimit);
    }
    if (block.Bytes().size() > most) {
      changes_.Lose(LossKind::exif,
                    "an EXIF block of " + std::to_string(block.Bytes().size()) + " bytes",
                    kSegmentLimit);
      return;
    }
    Add(kApp1, Named(detail::kExifName, block.Bytes()));
  }

  void AddXmp() {
    std::string xmp = metadata_.xmp, extended = metadata_.extendedXmp;
    if (xmp.empty() && extended.empty()) return;
    const size_t most = kMostJpegPayload - detail::kXmpName.size();
    if (xmp.empty()) xmp = PacketOfExtension();
    if (xmp.size() > most) DropPadding(xmp);
    if (xmp.size() > most && extended.empty()) {
      extended = std::move(xmp);
      xmp = PacketOfExtension();
      changes_.Note("the XMP packet became extended XMP, because it exceeds a segment");
    }
    if (xmp.size() > most) {
      changes_.Lose(LossKind::xmp, "an XMP packet of " + std::to_string(xmp.size()) + " bytes",
                    kSegmentLimit);
      return;
    }
    const std::string guid = detail::Md5Text(AsBytes(extended));
    const size_t place = FindGuid(xmp);
    if (!extended.empty() && place == std::string::npos) {
      changes_.Lose(LossKind::xmp, "extended XMP", "the packet does not name it");
      extended.clear();
    }
    if (!extended.empty()) xmp.replace(place, kGuidDigits, guid);
    Add(kApp1, Named(detail::kXmpName, xmp));
    AddExtendedXmp(extended, guid);
  }

  void AddExtendedXmp(const std::string& extended, const std::string& guid) {
    const size_t step = kMostJpegPayload - detail::kExtendedXmpName.size() - kGuidDigits - 8;
    for (size_t at = 0; at < extended.size(); at += step) {
      std::vector<uint8_t> payload = Named(detail::kExtendedXmpName, guid);
      AppendNumber(payload, extended.size(), 4);
      AppendNumber(payload, at, 4);
      const Bytes piece = AsBytes(extended).subspan(at, std::min(step, extended.size() - at));
      payload.insert(payload.end(), piece.begin(), piece.end());
      Add(kApp1, std::move(payload));
    }
  }

  void AddProfile() {
    if (!metadata_.profile || metadata_.profile->empty()) return;
    constexpr size_t kMostPieces = 255;
    const size_t step = kMostJpegPayload - detail::kProfileName.size() - 2;
    const Bytes profile = *metadata_.profile;
    const size_t pieces = (profile.size() + step - 1) / step;
    if (pieces > kMostPieces) {
      changes_.Lose(LossKind::profile,
                    "an ICC profile of " + std::to_string(profile.size()) + " bytes",
                    "a JPEG file holds 255 pieces of a profile");
      return;
    }
    for (size_t i = 0; i < pieces; ++i) {
      std::vector<uint8_t> payload = Named(detail::kProfileName, std::string_view());
      payload.push_back(static_cast<uint8_t>(i + 1));
      payload.push_back(static_cast<uint8_t>(pieces));
      const Bytes piece = profile.subspan(i * step, std::min(step, profile.size() - i * step));
      payload.insert(payload.end(), piece.begin(), piece.end());
      Add(kApp2, std::move(payload));
    }
  }

  /// Readers join the pieces, so that a cut within a resource does no harm.
  void AddResources() {
    const std::vector<uint8_t> resources = JoinImageResources(metadata_);
    const size_t step = kMostJpegPayload - detail::kPhotoshopName.size();
    for (size_t at = 0; at < resources.size(); at += step) {
      const size_t size = std::min(step, resources.size() - at);
      Add(kApp13, Named(detail::kPhotoshopName, Bytes(resources).subspan(at, size)));
    }
  }

  void AddComment(const std::string& text) {
    for (size_t at = 0; at == 0 || at < text.size(); at += kMostJpegPayload) {
      const std::string piece = text.substr(at, kMostJpegPayload);
      Add(kComment, {piece.begin(), piece.end()});
    }
    if (text.size() > kMostJpegPayload) {
      changes_.Note("a comment became several, because it exceeds a segment");
    }
  }

  void AddComments() {
    for (const std::string& comment : metadata_.comments) AddComment(comment);
    for (const PictureText& text : metadata_.texts) {
      AddComment(text.keyword == "Comment" ? text.text : text.keyword + ": " + text.text);
    }
  }

  const Metadata& metadata_;
  Changes& changes_;
  std::vector<NewJpegSegment> segments_;
};

}  // namespace

std::vector<NewJpegSegment> AssembleJpegSegments(const Metadata& metadata, bool withJfif,
                                                 Changes& changes) {
  return Assembler(metadata, changes).Assemble(withJfif);
}

std::vector<uint8_t> BytesOf(const NewJpegSegment& segment) {
  constexpr size_t kHeadBytes = 4;
  std::vector<uint8_t> bytes(kHeadBytes + segment.payload.size());
  bytes[0] = kStart;
  bytes[1] = segment.marker;
  detail::PutWord(bytes, 2, static_cast<uint16_t>(segment.payload.size() + 2), true);
  std::copy(segment.payload.begin(), segment.payload.end(), bytes.begin() + kHeadBytes);
  return bytes;
}

}  // namespace rasterkit
