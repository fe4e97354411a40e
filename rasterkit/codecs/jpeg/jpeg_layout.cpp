#include <cstring>

#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace detail {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint8_t kMarkerStart = 0xFF;
constexpr uint8_t kMarkerDht = 0xC4, kMarkerJpg = 0xC8, kMarkerDac = 0xCC;
constexpr uint8_t kMarkerSoi = 0xD8, kMarkerEoi = 0xD9, kMarkerSos = 0xDA, kMarkerApp2 = 0xE2;
constexpr char kProfileName[] = "ICC_PROFILE";

bool IsRestart(uint8_t marker) {
  return marker >= 0xD0 && marker <= 0xD7;
}

bool HasNoLength(uint8_t marker) {
  return marker == 0x01 || IsRestart(marker) || marker == kMarkerSoi;
}

bool IsFrame(uint8_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != kMarkerDht && marker != kMarkerJpg &&
         marker != kMarkerDac;
}

class Walker {
 public:
  explicit Walker(Bytes bytes) : bytes_(bytes) {}

  JpegLayout Walk() {
    if (bytes_.size() < 2 || bytes_[0] != kMarkerStart || bytes_[1] != kMarkerSoi) {
      throw FormatError("JPEG: the start marker is missing");
    }
    position_ = 2;
    WalkHeaders();
    layout_.wholeBytes = bytes_.size();
    if (layout_.manyScans) WalkScans();
    return std::move(layout_);
  }

 private:
  /// Moves to the byte after the next marker; other bytes are skipped. False at the end of the
  /// file.
  bool NextMarker(uint8_t& marker) {
    while (position_ < bytes_.size()) {
      const auto* start = bytes_.data() + position_;
      const auto* found =
          static_cast<const uint8_t*>(std::memchr(start, kMarkerStart, bytes_.size() - position_));
      if (!found) break;
      position_ = static_cast<size_t>(found - bytes_.data());
      markerAt_ = position_;
      while (position_ < bytes_.size() && bytes_[position_] == kMarkerStart) position_++;
      if (position_ == bytes_.size()) return false;
      marker = bytes_[position_++];
      if (marker != 0) return true;
    }
    position_ = bytes_.size();
    return false;
  }

  /// Reads the segment at the position without its length. False if it is truncated.
  bool NextSegment(Bytes& segment) {
    if (bytes_.size() - position_ < 2) return false;
    const auto length = static_cast<size_t>(bytes_[position_] << 8 | bytes_[position_ + 1]);
    // A length below its own two bytes means an empty segment, as in decoders.
    if (length < 2) {
      segment = {};
      position_ += 2;
      return true;
    }
    if (bytes_.size() - position_ < length) return false;
    segment = bytes_.subspan(position_ + 2, length - 2);
    position_ += length;
    return true;
  }

  void WalkHeaders() {
    bool frameSeen = false;
    uint8_t marker = 0;
    while (NextMarker(marker)) {
      if (HasNoLength(marker)) continue;
      if (marker == kMarkerEoi) throw FormatError("JPEG: the file holds no picture");
      Bytes segment;
      if (!NextSegment(segment)) break;
      if (IsFrame(marker) && !frameSeen) {
        ReadFrame(marker, segment);
        frameSeen = true;
      } else if (marker == kMarkerApp2) {
        NoteProfile(segment);
      } else if (marker == kMarkerSos) {
        if (!frameSeen) throw FormatError("JPEG: a scan comes before the frame header");
        const int componentsInScan = segment.empty() ? 0 : segment[0];
        layout_.manyScans =
            layout_.frame.progressive || componentsInScan < layout_.frame.components;
        return;
      }
    }
    throw FormatError("JPEG: the file ends within its headers");
  }

  void ReadFrame(uint8_t marker, Bytes segment) {
    if (segment.size() < 6) throw FormatError("JPEG: the frame header is too short");
    JpegFrame& frame = layout_.frame;
    frame.bits = segment[0];
    frame.height = segment[1] << 8 | segment[2];
    frame.width = segment[3] << 8 | segment[4];
    frame.components = segment[5];
    const int process = marker & 3;
    frame.progressive = process == 2;
    frame.lossless = process == 3;
    frame.arithmetic = marker >= 0xC9;
    frame.hierarchical = (marker & 4) != 0;
  }

  void NoteProfile(Bytes segment) {
    constexpr size_t kNameBytes = sizeof kProfileName;
    if (segment.size() < kNameBytes + 2 ||
        std::memcmp(segment.data(), kProfileName, kNameBytes) != 0) {
      return;
    }
    layout_.profile.push_back(
        {segment[kNameBytes], segment[kNameBytes + 1], segment.subspan(kNameBytes + 2)});
  }

  /// Walks to the end marker, or to a truncated segment.
  void WalkScans() {
    uint8_t marker = 0;
    while (NextMarker(marker)) {
      if (HasNoLength(marker)) continue;
      if (marker == kMarkerEoi) return;
      const size_t markerAt = markerAt_;
      Bytes segment;
      if (NextSegment(segment)) continue;
      layout_.wholeBytes = markerAt;
      break;
    }
    layout_.cutOff = true;
  }

  Bytes bytes_;
  size_t position_ = 0;
  size_t markerAt_ = 0;
  JpegLayout layout_;
};

}  // namespace

JpegLayout ReadJpegLayout(Bytes bytes) {
  return Walker(bytes).Walk();
}

std::vector<uint8_t> JoinProfile(const std::vector<JpegProfilePiece>& pieces) {
  if (pieces.size() == 1) return {pieces[0].bytes.begin(), pieces[0].bytes.end()};
  std::vector<uint8_t> joined;
  for (size_t number = 1; number <= pieces.size(); number++) {
    const JpegProfilePiece* found = nullptr;
    for (const JpegProfilePiece& piece : pieces) {
      if (piece.number == static_cast<int>(number) &&
          piece.count == static_cast<int>(pieces.size())) {
        found = &piece;
      }
    }
    if (!found) return {};
    joined.insert(joined.end(), found->bytes.begin(), found->bytes.end());
  }
  return joined;
}

}  // namespace detail

JpegFrame ReadJpegFrame(std::span<const uint8_t> bytes) {
  return detail::ReadJpegLayout(bytes).frame;
}

}  // namespace rasterkit
