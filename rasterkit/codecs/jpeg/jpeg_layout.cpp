#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace detail {

namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_coding;

JpegFrame FrameOf(uint8_t marker, Bytes segment) {
  if (segment.size() < 6) throw FormatError("JPEG: the frame header is too short");
  JpegFrame frame;
  frame.bits = segment[0];
  frame.height = segment[1] << 8 | segment[2];
  frame.width = segment[3] << 8 | segment[4];
  frame.components = segment[5];
  const int process = marker & 3;
  frame.progressive = process == 2;
  frame.lossless = process == 3;
  frame.arithmetic = marker >= 0xC9;
  frame.hierarchical = (marker & 4) != 0;
  return frame;
}

}  // namespace

JpegLayout LayoutOfJpeg(Bytes bytes, JpegParts& parts) {
  JpegLayout layout;
  bool frameSeen = false;
  for (const JpegSegment& part : parts.head) {
    if (IsFrame(part.marker) && !frameSeen) {
      layout.frame = FrameOf(part.marker, part.payload);
      frameSeen = true;
    } else if (const auto piece = ReadProfilePart(part)) {
      layout.profile.push_back(*piece);
    }
  }
  if (!frameSeen) throw FormatError("JPEG: a scan comes before the frame header");
  const Bytes scan = parts.head.back().payload;
  const int componentsInScan = scan.empty() ? 0 : scan[0];
  layout.manyScans = layout.frame.progressive || componentsInScan < layout.frame.components;
  layout.wholeBytes = bytes.size();
  if (!layout.manyScans) return layout;
  ReadJpegScans(bytes, parts);
  layout.cutOff = !parts.hasEndMarker;
  if (parts.isCut) layout.wholeBytes = parts.end;
  return layout;
}

JpegLayout ReadJpegLayout(Bytes bytes) {
  JpegParts parts = ReadJpegHead(bytes);
  return LayoutOfJpeg(bytes, parts);
}

std::vector<uint8_t> JoinProfile(const std::vector<JpegProfilePart>& pieces) {
  if (pieces.size() == 1) return {pieces[0].bytes.begin(), pieces[0].bytes.end()};
  std::vector<uint8_t> joined;
  for (size_t number = 1; number <= pieces.size(); number++) {
    const JpegProfilePart* found = nullptr;
    for (const JpegProfilePart& piece : pieces) {
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
