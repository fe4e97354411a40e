#include <cstring>

#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace detail {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint8_t markerStart = 0xFF;
constexpr uint8_t markerDht = 0xC4, markerJpg = 0xC8, markerDac = 0xCC;
constexpr uint8_t markerSoi = 0xD8, markerEoi = 0xD9, markerSos = 0xDA, markerApp2 = 0xE2;
constexpr char profileName[] = "ICC_PROFILE";

bool IsRestart(uint8_t marker) {
  return marker >= 0xD0 && marker <= 0xD7;
}

bool HasNoLength(uint8_t marker) {
  return marker == 0x01 || IsRestart(marker) || marker == markerSoi;
}

bool IsFrame(uint8_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != markerDht && marker != markerJpg &&
         marker != markerDac;
}

class Walker {
 public:
  explicit Walker(Bytes bytes) : bytes_(bytes) {}

  JpegLayout Walk() {
    if (bytes_.size() < 2 || bytes_[0] != markerStart || bytes_[1] != markerSoi) {
      throw FormatError("JPEG: the start marker is missing");
    }
    position_ = 2;
    WalkHeaders();
    layout_.wholeBytes = bytes_.size();
    if (layout_.manyScans) WalkScans();
    return std::move(layout_);
  }

 private:
  /// Moves behind the next marker; bytes that belong to none are skipped. False at the end of the
  /// file.
  bool NextMarker(uint8_t& marker) {
    while (position_ < bytes_.size()) {
      const auto* start = bytes_.data() + position_;
      const auto* found =
          static_cast<const uint8_t*>(std::memchr(start, markerStart, bytes_.size() - position_));
      if (!found) break;
      position_ = static_cast<size_t>(found - bytes_.data());
      markerAt_ = position_;
      while (position_ < bytes_.size() && bytes_[position_] == markerStart) position_++;
      if (position_ == bytes_.size()) return false;
      marker = bytes_[position_++];
      if (marker != 0) return true;
    }
    position_ = bytes_.size();
    return false;
  }

  /// The segment at the position without its length, and moves behind it. False when it is cut off.
  bool NextSegment(Bytes& segment) {
    if (bytes_.size() - position_ < 2) return false;
    const auto length = static_cast<size_t>(bytes_[position_] << 8 | bytes_[position_ + 1]);
    // A length below its own two bytes is taken as an empty segment, as decoders do.
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
      if (marker == markerEoi) throw FormatError("JPEG: the file holds no picture");
      Bytes segment;
      if (!NextSegment(segment)) break;
      if (IsFrame(marker) && !frameSeen) {
        ReadFrame(marker, segment);
        frameSeen = true;
      } else if (marker == markerApp2) {
        NoteProfile(segment);
      } else if (marker == markerSos) {
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
    constexpr size_t nameBytes = sizeof profileName;
    if (segment.size() < nameBytes + 2 || std::memcmp(segment.data(), profileName, nameBytes) != 0)
      return;
    layout_.profile.push_back(
        {segment[nameBytes], segment[nameBytes + 1], segment.subspan(nameBytes + 2)});
  }

  /// To the end marker, or to the segment that the file's end cuts off.
  void WalkScans() {
    uint8_t marker = 0;
    while (NextMarker(marker)) {
      if (HasNoLength(marker)) continue;
      if (marker == markerEoi) return;
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
          piece.count == static_cast<int>(pieces.size()))
        found = &piece;
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
