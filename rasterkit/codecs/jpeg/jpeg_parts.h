#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace rasterkit::detail {

namespace jpeg_marker {
inline constexpr uint8_t kStart = 0xFF;
inline constexpr uint8_t kHuffmanTables = 0xC4, kArithmeticTables = 0xCC, kExtension = 0xC8;
inline constexpr uint8_t kImageStart = 0xD8, kImageEnd = 0xD9, kScan = 0xDA, kTables = 0xDB;
inline constexpr uint8_t kRestartInterval = 0xDD, kComment = 0xFE;
inline constexpr uint8_t kApp0 = 0xE0, kApp1 = 0xE1, kApp2 = 0xE2, kApp13 = 0xED, kApp14 = 0xEE;

constexpr bool IsFrame(uint8_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != kHuffmanTables && marker != kExtension &&
         marker != kArithmeticTables;
}
constexpr bool IsApplication(uint8_t marker) {
  return marker >= kApp0 && marker <= 0xEF;
}
}  // namespace jpeg_marker

/// A segment of a JPEG file: FF, a marker, a big-endian length, the payload.
struct JpegPart {
  uint8_t marker = 0;
  /// Place of the FF in front of the marker.
  size_t at = 0;
  /// Place of the payload.
  size_t payloadAt = 0;
  std::span<const uint8_t> payload;
};

/// The segments of a JPEG file.
struct JpegParts {
  /// In front of the first scan, and the header of that scan at the end.
  std::vector<JpegPart> head;
  /// Segments between and behind the scans; empty if only the head was walked.
  std::vector<JpegPart> later;
  /// Place behind the end marker; of a truncated segment; or the size of the file.
  size_t end = 0;
  bool hasEndMarker = false;
  /// The last segment reaches beyond the end of the file.
  bool isCut = false;
};

/// Walks from the start to the first scan. Bytes between segments are skipped, as decoders do.
/// Throws FormatError if there is no scan or a segment is truncated.
JpegParts ReadJpegHead(std::span<const uint8_t> file);

/// Continues to the end marker.
void ReadJpegScans(std::span<const uint8_t> file, JpegParts& parts);

}  // namespace rasterkit::detail
