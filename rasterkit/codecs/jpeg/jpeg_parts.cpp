#include <cstring>
#include <optional>

#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_marker;

bool HasNoLength(uint8_t marker) {
  const bool isRestart = marker >= 0xD0 && marker <= 0xD7;
  return marker == 0x01 || isRestart || marker == kImageStart;
}

class Walker {
 public:
  Walker(Bytes file, size_t position) : file_(file), position_(position) {}

  size_t Position() const { return position_; }

  /// The next marker, whose length or payload stands at the position; other bytes are skipped.
  /// Nothing at the end of the file.
  std::optional<JpegPart> NextMarker() {
    while (position_ < file_.size()) {
      const auto* start = file_.data() + position_;
      const auto* found =
          static_cast<const uint8_t*>(std::memchr(start, kStart, file_.size() - position_));
      if (!found) break;
      position_ = static_cast<size_t>(found - file_.data());
      const size_t at = position_;
      while (position_ < file_.size() && file_[position_] == kStart) position_++;
      if (position_ == file_.size()) return std::nullopt;
      const uint8_t marker = file_[position_++];
      if (marker != 0 && !HasNoLength(marker)) return JpegPart{marker, at, position_, {}};
    }
    position_ = file_.size();
    return std::nullopt;
  }

  /// Reads the payload at the position. False if it is truncated.
  bool ReadPayload(JpegPart& part) {
    if (file_.size() - position_ < 2) return false;
    const auto length = static_cast<size_t>(file_[position_] << 8 | file_[position_ + 1]);
    // A length below its own two bytes means an empty segment, as in decoders.
    if (length < 2) {
      position_ += 2;
      return true;
    }
    if (file_.size() - position_ < length) return false;
    part.payloadAt = position_ + 2;
    part.payload = file_.subspan(part.payloadAt, length - 2);
    position_ += length;
    return true;
  }

 private:
  const Bytes file_;
  size_t position_;
};

}  // namespace

JpegParts ReadJpegHead(Bytes file) {
  if (file.size() < 2 || file[0] != kStart || file[1] != kImageStart) {
    throw FormatError("JPEG: the start marker is missing");
  }
  JpegParts parts;
  Walker walker(file, 2);
  while (auto part = walker.NextMarker()) {
    if (part->marker == kImageEnd) throw FormatError("JPEG: the file holds no picture");
    if (!walker.ReadPayload(*part)) break;
    parts.head.push_back(*part);
    parts.end = walker.Position();
    if (part->marker == kScan) return parts;
  }
  throw FormatError("JPEG: the file ends within its headers");
}

void ReadJpegScans(Bytes file, JpegParts& parts) {
  Walker walker(file, parts.end);
  while (auto part = walker.NextMarker()) {
    if (part->marker == kImageEnd) {
      parts.end = walker.Position();
      parts.hasEndMarker = true;
      return;
    }
    if (!walker.ReadPayload(*part)) {
      parts.end = part->at;
      parts.isCut = true;
      return;
    }
    parts.later.push_back(*part);
  }
  parts.end = file.size();
}

}  // namespace rasterkit::detail
