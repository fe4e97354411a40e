#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include <rasterkit/metadata/ifd.h>
#include <rasterkit/metadata/jpeg_names.h>
#include <rasterkit/metadata/jpeg_segments.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_marker;
using std::string_view_literals::operator""sv;

bool HasNoLength(uint8_t marker) {
  constexpr uint8_t kTemporary = 0x01, kFirstRestart = 0xD0;
  return marker == kTemporary || (marker >= kFirstRestart && marker <= kImageStart);
}

bool StartsWith(Bytes bytes, std::string_view text) {
  // An empty payload has no address.
  if (text.empty()) return true;
  return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

struct BlockName {
  JpegBlock block;
  uint8_t marker;
  /// What tells the block, and the bytes in front of its content.
  std::string_view mark;
  size_t nameBytes;
};

constexpr BlockName kNames[] = {
    {JpegBlock::jfif, kApp0, "JFIF\0"sv, 5},
    {JpegBlock::jfxx, kApp0, "JFXX\0"sv, 5},
    // Some writers fill the second byte behind the name with something else.
    {JpegBlock::exif, kApp1, "Exif\0"sv, detail::kExifName.size()},
    {JpegBlock::xmp, kApp1, detail::kXmpName, detail::kXmpName.size()},
    {JpegBlock::extendedXmp, kApp1, detail::kExtendedXmpName, detail::kExtendedXmpName.size()},
    {JpegBlock::profile, kApp2, detail::kProfileName, detail::kProfileName.size()},
    {JpegBlock::mpf, kApp2, "MPF\0"sv, 4},
    {JpegBlock::photoshop, kApp13, detail::kPhotoshopName, detail::kPhotoshopName.size()},
    {JpegBlock::adobe, kApp14, "Adobe"sv, 5},
    {JpegBlock::comment, kComment, ""sv, 0},
};

const BlockName* NameOf(const JpegSegment& segment) {
  const auto* found = std::find_if(std::begin(kNames), std::end(kNames), [&](const BlockName& n) {
    return n.marker == segment.marker && StartsWith(segment.payload, n.mark);
  });
  return found == std::end(kNames) ? nullptr : found;
}

/// The bytes behind the name if the segment is of that kind and has at least so many.
std::optional<Bytes> ContentOf(const JpegSegment& segment, JpegBlock block, size_t least) {
  if (BlockOf(segment) != block) return std::nullopt;
  const Bytes content = BlockBytes(segment);
  return content.size() < least ? std::nullopt : std::optional(content);
}

}  // namespace

JpegSegmentWalker::JpegSegmentWalker(Bytes file)
    : file_(file), isJpeg_(file.size() >= 2 && file[0] == kStart && file[1] == kImageStart) {}

JpegSegmentWalker::JpegSegmentWalker(Bytes file, size_t position)
    : file_(file), position_(std::min(position, file.size())) {}

/// Moves behind the next marker that has a length or ends the image.
std::optional<JpegSegment> JpegSegmentWalker::NextMarker() {
  while (position_ < file_.size()) {
    const void* found = std::memchr(&file_[position_], kStart, file_.size() - position_);
    if (found == nullptr) break;
    const auto at = static_cast<size_t>(static_cast<const uint8_t*>(found) - file_.data());
    position_ = at;
    while (position_ < file_.size() && file_[position_] == kStart) ++position_;
    if (position_ == file_.size()) break;
    const uint8_t marker = file_[position_++];
    if (marker != 0 && !HasNoLength(marker)) return JpegSegment{marker, at, {}};
  }
  position_ = file_.size();
  return std::nullopt;
}

std::optional<JpegSegment> JpegSegmentWalker::Next() {
  if (!isJpeg_ || isCut_ || isAtEnd_) return std::nullopt;
  std::optional<JpegSegment> segment = NextMarker();
  if (!segment) return std::nullopt;
  isAtEnd_ = segment->marker == kImageEnd;
  if (isAtEnd_) return segment;
  constexpr size_t kLengthBytes = 2;
  const Bytes rest = file_.subspan(position_);
  const size_t stated =
      rest.size() < kLengthBytes ? SIZE_MAX : detail::OrderedBytes(rest, true).Word(0);
  const size_t length = std::max(stated, kLengthBytes);
  if (length > rest.size()) {
    isCut_ = true;
    position_ = segment->at;
    return std::nullopt;
  }
  segment->payload = rest.subspan(kLengthBytes, length - kLengthBytes);
  position_ += length;
  return segment;
}

JpegBlock BlockOf(const JpegSegment& segment) {
  const BlockName* name = NameOf(segment);
  return name == nullptr ? JpegBlock::other : name->block;
}

Bytes BlockBytes(const JpegSegment& segment) {
  const BlockName* name = NameOf(segment);
  const size_t nameBytes = name == nullptr ? 0 : name->nameBytes;
  return segment.payload.subspan(std::min(nameBytes, segment.payload.size()));
}

std::optional<JfifHeader> ReadJfif(const JpegSegment& segment) {
  constexpr size_t kUnitAt = 2, kDensityAt = 3, kLeast = 7;
  const auto content = ContentOf(segment, JpegBlock::jfif, kLeast);
  if (!content || (*content)[kUnitAt] > 2) return std::nullopt;
  const detail::OrderedBytes numbers(*content, true);
  return JfifHeader{(*content)[kUnitAt], numbers.Word(kDensityAt), numbers.Word(kDensityAt + 2)};
}

std::optional<JpegProfilePart> ReadProfilePart(const JpegSegment& segment) {
  const auto content = ContentOf(segment, JpegBlock::profile, 2);
  if (!content) return std::nullopt;
  return JpegProfilePart{(*content)[0], (*content)[1], content->subspan(2)};
}

std::optional<ExtendedXmpPart> ReadExtendedXmpPart(const JpegSegment& segment) {
  constexpr size_t kGuidBytes = 32, kLeast = kGuidBytes + 8;
  const auto content = ContentOf(segment, JpegBlock::extendedXmp, kLeast);
  if (!content) return std::nullopt;
  const detail::OrderedBytes numbers(*content, true);
  ExtendedXmpPart part;
  part.guid.assign(content->begin(), content->begin() + kGuidBytes);
  part.total = numbers.Long(kGuidBytes);
  part.offset = numbers.Long(kGuidBytes + 4);
  part.bytes = content->subspan(kLeast);
  return part;
}

Bytes FindExif(Bytes file) {
  JpegSegmentWalker walker(file);
  while (const auto segment = walker.Next()) {
    if (segment->marker == kScan) break;
    const Bytes block = BlockBytes(*segment);
    if (BlockOf(*segment) == JpegBlock::exif && !block.empty()) return block;
  }
  return {};
}

}  // namespace rasterkit
