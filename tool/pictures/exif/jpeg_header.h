#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/metadata_kind.h>

namespace rasterkit::tool {

/// A marker section before a JPEG file's picture data.
struct JpegSegment {
  uint8_t marker = 0;
  /// Of the 0xFF of its marker, counted from the file's beginning.
  size_t place = 0;
  /// Behind marker and length, within the bytes given.
  std::span<const uint8_t> payload;

  /// All of it: marker, length and payload.
  size_t Size() const { return payload.size() + 4; }
};

/// What a JPEG file says before its picture data.
struct JpegHeader {
  std::vector<JpegSegment> segments;
  /// Where the first start of scan lies.
  size_t scanPlace = 0;
  /// Whether that was reached; if not, the file is cut off or no picture.
  bool isComplete = false;
  int width = 0, height = 0, components = 0;
  /// One byte each, such as "\1\2\3" or "RGB".
  std::string componentNames;

  /// The first section of a kind; null if there is none.
  const JpegSegment* Find(MetadataKind kind) const;
};

/// Walks the sections of a file that begins with the start marker. Bytes between sections are
/// passed over as decoders do. Never throws for what the bytes hold.
JpegHeader ReadJpegHeader(std::span<const uint8_t> jpeg);

/// "APP1", "COM", "DQT", "SOF0" ...; "FFxx" for rare ones.
std::string MarkerName(uint8_t marker);

/// What a section holds; nothing if it belongs to the picture or is unknown.
std::optional<MetadataKind> SegmentKind(const JpegSegment& segment);

/// The bytes of a section from its length on, as the library keeps them.
std::string SectionBytes(const JpegSegment& segment);

}  // namespace rasterkit::tool
