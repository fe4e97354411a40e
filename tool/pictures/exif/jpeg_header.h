#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/metadata_kind.h>

namespace rasterkit::tool {

/// A marker section before the picture data of a JPEG file.
struct JpegSegment {
  uint8_t marker = 0;
  /// Offset of the marker's 0xFF in the file.
  size_t place = 0;
  /// Bytes after marker and length, inside the bytes that were given.
  std::span<const uint8_t> payload;

  /// Size of marker, length and payload.
  size_t Size() const { return payload.size() + 4; }
};

/// What a JPEG file states before its picture data.
struct JpegHeader {
  std::vector<JpegSegment> segments;
  /// Offset of the first start of scan.
  size_t scanPlace = 0;
  /// True if the start of scan was reached; if not, the file is truncated or not a picture.
  bool isComplete = false;
  int width = 0, height = 0, components = 0;
  /// One byte each, such as "\1\2\3" or "RGB".
  std::string componentNames;

  /// The first section of a kind; null if there is none.
  const JpegSegment* Find(MetadataKind kind) const;
};

/// Reads the sections of a file that begins with the start marker. Skips bytes between sections as
/// decoders do. Never throws for the content of the bytes.
JpegHeader ReadJpegHeader(std::span<const uint8_t> jpeg);

/// "APP1", "COM", "DQT", "SOF0" and so on; "FFxx" for rare markers.
std::string MarkerName(uint8_t marker);

/// What a section holds; nothing if it belongs to the picture or is unknown.
std::optional<MetadataKind> SegmentKind(const JpegSegment& segment);

/// Bytes of a section starting at its length field, the form that the library stores.
std::string SectionBytes(const JpegSegment& segment);

}  // namespace rasterkit::tool
