#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_marker;

namespace {

/// True if the bytes have all segments in front of the pixels.
bool HasWholeHead(Bytes bytes) {
  JpegSegmentWalker walker(bytes);
  while (const auto segment = walker.Next()) {
    if (segment->marker == jpeg_marker::kScan) return true;
  }
  return walker.IsAtEnd() || !walker.IsJpeg();
}

}  // namespace

std::vector<uint8_t> ReadJpegHeadBytes(TStream& stream) {
  constexpr size_t kFirstBytes = 32 << 10;
  std::vector<uint8_t> bytes;
  size_t wanted = kFirstBytes;
  for (;;) {
    const size_t had = bytes.size();
    bytes.resize(wanted);
    bytes.resize(had + stream.Read(std::span(bytes).subspan(had)));
    if (bytes.size() < wanted || HasWholeHead(bytes)) return bytes;
    wanted *= 2;
  }
}

JpegParts ReadJpegHead(Bytes file) {
  JpegSegmentWalker walker(file);
  if (!walker.IsJpeg()) throw FormatError("JPEG: the start marker is missing");
  JpegParts parts;
  while (const auto segment = walker.Next()) {
    if (segment->marker == kImageEnd) throw FormatError("JPEG: the file holds no picture");
    parts.head.push_back(*segment);
    parts.end = walker.Position();
    if (segment->marker == kScan) return parts;
  }
  throw FormatError("JPEG: the file ends within its headers");
}

void ReadJpegScans(Bytes file, JpegParts& parts) {
  JpegSegmentWalker walker(file, parts.end);
  while (const auto segment = walker.Next()) {
    if (segment->marker != kImageEnd) parts.later.push_back(*segment);
  }
  parts.end = walker.Position();
  parts.hasEndMarker = walker.IsAtEnd();
  parts.isCut = walker.IsCut();
}

}  // namespace rasterkit::detail
