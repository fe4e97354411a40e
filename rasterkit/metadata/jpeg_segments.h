#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

namespace jpeg_marker {
inline constexpr uint8_t kStart = 0xFF, kImageStart = 0xD8, kImageEnd = 0xD9, kScan = 0xDA;
inline constexpr uint8_t kApp0 = 0xE0, kApp1 = 0xE1, kApp2 = 0xE2, kApp13 = 0xED, kApp14 = 0xEE,
                         kApp15 = 0xEF, kComment = 0xFE;
}  // namespace jpeg_marker

/// Most bytes of a segment's payload: its length field counts itself too.
inline constexpr size_t kMostJpegPayload = 65533;

/// A segment of a JPEG file: FF, a marker, a big-endian length, the payload. The end of the image
/// has no payload.
struct JpegSegment {
  uint8_t marker = 0;
  /// Place of the first FF in front of the marker.
  size_t at = 0;
  /// Within the bytes of the file.
  std::span<const uint8_t> payload;
};

/// Walks through the segments of a JPEG file, as decoders do: bytes between segments, fill bytes
/// and markers without a length are skipped, a length below 2 means an empty segment. Behind a
/// start of scan the coded pixels are skipped, so that a walk that goes on finds the later segments
/// and the end of the image.
class RASTERKIT_EXPORT JpegSegmentWalker {
 public:
  /// Starts after the start of the image.
  explicit JpegSegmentWalker(std::span<const uint8_t> file);
  /// Goes on at a place of the file.
  JpegSegmentWalker(std::span<const uint8_t> file, size_t position);

  /// True if the file begins with the start of an image; otherwise there is no segment.
  bool IsJpeg() const { return isJpeg_; }
  /// The next segment; the end of the image is the last one. Nothing at the end of the file or if
  /// the next segment reaches beyond it.
  std::optional<JpegSegment> Next();
  /// Place after the last segment; of the segment that is cut off.
  size_t Position() const { return position_; }
  /// The walk ended at a segment that reaches beyond the end of the file.
  bool IsCut() const { return isCut_; }
  /// The end of the image was reached.
  bool IsAtEnd() const { return isAtEnd_; }

 private:
  std::optional<JpegSegment> NextMarker();

  std::span<const uint8_t> file_;
  size_t position_ = 2;
  bool isJpeg_ = true, isCut_ = false, isAtEnd_ = false;
};

/// What a segment holds.
enum class JpegBlock {
  /// Part of the coded picture, or unknown.
  other,
  jfif,
  jfxx,
  exif,
  xmp,
  extendedXmp,
  profile,
  mpf,
  photoshop,
  adobe,
  comment,
};

/// Recognizes a segment by its marker and the name at its start.
RASTERKIT_EXPORT JpegBlock BlockOf(const JpegSegment& segment);

/// The payload behind the name of the block; empty if it is too short.
RASTERKIT_EXPORT std::span<const uint8_t> BlockBytes(const JpegSegment& segment);

/// A JFIF header.
struct JfifHeader {
  /// 0: the densities are an aspect ratio; 1: dots per inch; 2: dots per centimeter.
  int unit = 0;
  uint16_t densityX = 0, densityY = 0;
};
/// Nothing if the segment is none, or is too short.
RASTERKIT_EXPORT std::optional<JfifHeader> ReadJfif(const JpegSegment& segment);

/// A piece of a color profile, counted from 1.
struct JpegProfilePart {
  int number = 0, count = 0;
  std::span<const uint8_t> bytes;
};
RASTERKIT_EXPORT std::optional<JpegProfilePart> ReadProfilePart(const JpegSegment& segment);

/// A piece of an extended XMP packet.
struct ExtendedXmpPart {
  /// 32 hexadecimal digits, by which the main packet names it.
  std::string guid;
  uint32_t total = 0, offset = 0;
  std::span<const uint8_t> bytes;
};
RASTERKIT_EXPORT std::optional<ExtendedXmpPart> ReadExtendedXmpPart(const JpegSegment& segment);

/// The first EXIF block in front of the pixels, from its byte-order mark on; empty if there is none
/// or the bytes are no JPEG file.
RASTERKIT_EXPORT std::span<const uint8_t> FindExif(std::span<const uint8_t> file);

}  // namespace rasterkit
