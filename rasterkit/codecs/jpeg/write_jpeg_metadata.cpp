#include <algorithm>
#include <cmath>
#include <string_view>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/codecs/jpeg/write_jpeg_metadata.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_marker;
using std::string_view_literals::operator""sv;

constexpr size_t kMostPayload = 65533;

Bytes BytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

bool IsWhole(double value) {
  return std::abs(value - std::round(value)) < 1e-6;
}

uint16_t DensityValue(double value) {
  return static_cast<uint16_t>(std::clamp(std::round(value), 1.0, 65535.0));
}

/// Dots per inch, or per centimeter if only that is a whole number: the field holds no fractions.
void SetDensity(const Resolution& resolution, uint8_t* field) {
  if (!resolution.IsKnown()) return;
  const bool inches = IsWhole(resolution.x) && IsWhole(resolution.y);
  const bool centimeters = !inches && IsWhole(resolution.x / 2.54) && IsWhole(resolution.y / 2.54);
  const double unit = centimeters ? 2.54 : 1;
  const uint16_t x = DensityValue(resolution.x / unit), y = DensityValue(resolution.y / unit);
  field[0] = centimeters ? 2 : 1;
  field[1] = static_cast<uint8_t>(x >> 8);
  field[2] = static_cast<uint8_t>(x);
  field[3] = static_cast<uint8_t>(y >> 8);
  field[4] = static_cast<uint8_t>(y);
}

class Assembler {
 public:
  Assembler(const Metadata& metadata, Changes& changes) : metadata_(metadata), changes_(changes) {}

  std::vector<uint8_t> Assemble(const JpegMetadataWish& wish) {
    if (wish.writesJfif) AddJfif(wish.jfif);
    AddBlock(kApp1, "Exif\0\0"sv, metadata_.exif, LossKind::exif, "EXIF");
    AddXmp();
    AddProfile(wish.space);
    AddResources();
    for (const OtherBlock& block : metadata_.jpegSegments) {
      if (IsApplication(static_cast<uint8_t>(block.kind)) && block.bytes.size() <= kMostPayload) {
        AppendSegment(static_cast<uint8_t>(block.kind), block.bytes, bytes_);
      }
    }
    for (const std::string& comment : metadata_.comments) AddComment(comment);
    AddTexts();
    LoseOthers();
    return std::move(bytes_);
  }

 private:
  void AddJfif(Bytes source) {
    constexpr uint8_t kUsual[] = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
    constexpr size_t kDensityAt = 7;
    std::vector<uint8_t> payload(std::begin(kUsual), std::end(kUsual));
    if (source.size() >= payload.size()) payload.assign(source.begin(), source.end());
    SetDensity(metadata_.resolution, &payload[kDensityAt]);
    AppendSegment(kApp0, payload, bytes_);
  }

  void AddBlock(uint8_t marker, std::string_view name, Bytes block, LossKind kind,
                const char* what) {
    if (block.empty()) return;
    if (name.size() + block.size() > kMostPayload) {
      changes_.Lose(kind, fmt::format("{} of {} bytes", what, block.size()),
                    "a segment of a JPEG file holds 65533 bytes");
      return;
    }
    std::vector<uint8_t> payload(name.begin(), name.end());
    payload.insert(payload.end(), block.begin(), block.end());
    AppendSegment(marker, payload, bytes_);
  }

  void AddXmp() {
    AddBlock(kApp1, "http://ns.adobe.com/xap/1.0/\0"sv, BytesOf(metadata_.xmp), LossKind::xmp,
             "XMP");
  }

  void AddProfile(std::optional<ProfileSpace> space) {
    constexpr size_t kPieceBytes = 65519, kMostPieces = 255;
    if (!metadata_.profile || metadata_.profile->empty()) return;
    const Bytes profile(*metadata_.profile);
    if (space && !ProfileFits(profile, *space)) {
      changes_.Lose(LossKind::profile, "the color profile", "it describes other pixels");
      return;
    }
    const size_t pieces = (profile.size() + kPieceBytes - 1) / kPieceBytes;
    if (pieces > kMostPieces) {
      changes_.Lose(LossKind::profile, "the color profile", "it is too large for a JPEG file");
      return;
    }
    for (size_t i = 0; i < pieces; i++) {
      std::vector<uint8_t> payload = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0};
      payload.push_back(static_cast<uint8_t>(i + 1));
      payload.push_back(static_cast<uint8_t>(pieces));
      const Bytes piece =
          profile.subspan(i * kPieceBytes, std::min(kPieceBytes, profile.size() - i * kPieceBytes));
      payload.insert(payload.end(), piece.begin(), piece.end());
      AppendSegment(kApp2, payload, bytes_);
    }
  }

  void AddResources() {
    AddBlock(kApp13, "Photoshop 3.0\0"sv, metadata_.photoshop, LossKind::iptc,
             "Photoshop resources");
  }

  bool AddComment(std::string_view text) {
    if (text.size() > kMostPayload) {
      changes_.Lose(LossKind::comment, fmt::format("a comment of {} bytes", text.size()),
                    "a segment of a JPEG file holds 65533 bytes");
      return false;
    }
    AppendSegment(kComment, BytesOf(text), bytes_);
    return true;
  }

  void AddTexts() {
    for (const PictureText& text : metadata_.texts) {
      const bool isComment = text.keyword == "Comment";
      AddComment(isComment ? text.text : text.keyword + ": " + text.text);
    }
    if (!metadata_.texts.empty()) changes_.Note("texts are written as comments");
  }

  void LoseOthers() {
    for (const TagValue& tag : metadata_.tiffTags) {
      changes_.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", tag.tag),
                    "a JPEG file has no place for it");
    }
    for (const OtherBlock& chunk : metadata_.pngChunks) {
      std::string name;
      for (int shift = 24; shift >= 0; shift -= 8) name += static_cast<char>(chunk.kind >> shift);
      changes_.Lose(LossKind::otherBlock, fmt::format("PNG chunk {}", name),
                    "a JPEG file has no place for it");
    }
  }

  const Metadata& metadata_;
  Changes& changes_;
  std::vector<uint8_t> bytes_;
};

}  // namespace

std::vector<uint8_t> JpegMetadataSegments(const Metadata& metadata, const JpegMetadataWish& wish,
                                          Changes& changes) {
  return Assembler(metadata, changes).Assemble(wish);
}

void AppendSegment(uint8_t marker, Bytes payload, std::vector<uint8_t>& target) {
  const size_t length = payload.size() + 2;
  target.insert(target.end(),
                {kStart, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)});
  target.insert(target.end(), payload.begin(), payload.end());
}

}  // namespace rasterkit::detail
