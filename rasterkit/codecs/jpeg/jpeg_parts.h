#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

namespace jpeg_coding {
inline constexpr uint8_t kTables = 0xDB, kRestartInterval = 0xDD;

constexpr bool IsFrame(uint8_t marker) {
  constexpr uint8_t kHuffmanTables = 0xC4, kExtension = 0xC8, kArithmeticTables = 0xCC;
  return marker >= 0xC0 && marker <= 0xCF && marker != kHuffmanTables && marker != kExtension &&
         marker != kArithmeticTables;
}
constexpr bool IsApplication(uint8_t marker) {
  return marker >= jpeg_marker::kApp0 && marker <= jpeg_marker::kApp15;
}
}  // namespace jpeg_coding

/// The segments of a JPEG file.
struct JpegParts {
  /// In front of the first scan, and the header of that scan at the end.
  std::vector<JpegSegment> head;
  /// Segments between and behind the scans; empty if only the head was walked.
  std::vector<JpegSegment> later;
  /// Place after the end marker; of a truncated segment; or the size of the file.
  size_t end = 0;
  bool hasEndMarker = false;
  /// The last segment reaches beyond the end of the file.
  bool isCut = false;
};

/// Place of a payload in its file.
inline size_t PlaceOf(const JpegSegment& segment, std::span<const uint8_t> file) {
  return static_cast<size_t>(segment.payload.data() - file.data());
}

/// Reads so much of a file, from the stream's position on, that its head is whole, or all of it.
std::vector<uint8_t> ReadJpegHeadBytes(TStream& stream);

/// Walks from the start to the first scan. Bytes between segments are skipped, as decoders do.
/// Throws FormatError if there is no scan or a segment is truncated.
JpegParts ReadJpegHead(std::span<const uint8_t> file);

/// Continues to the end marker.
void ReadJpegScans(std::span<const uint8_t> file, JpegParts& parts);

}  // namespace rasterkit::detail
