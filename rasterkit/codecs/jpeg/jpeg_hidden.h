#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_parts.h>

namespace rasterkit::detail {

/// A picture of the index of several pictures in one file (MPF), from its index entry.
struct JpegIndexPicture {
  /// Attributes with the type in the low 24 bits.
  uint32_t attributes = 0;
  uint32_t bytes = 0;
  /// From the byte-order mark of the index; 0 for the first picture.
  uint32_t offset = 0;
  /// Places in the payload of the segment: of the number of bytes and of the offset.
  size_t bytesAt = 0, offsetAt = 0;
};

/// The index of several pictures (MPF): a TIFF directory in an APP2 segment.
struct JpegIndex {
  /// Number of the segment in JpegParts::head.
  size_t part = 0;
  bool isBigEndian = false;
  std::vector<JpegIndexPicture> pictures;
  /// Place in the file of the byte-order mark, from which offsets count.
  size_t start = 0;
};

/// Reads the first index; without pictures if there is none or it is damaged.
JpegIndex ReadJpegIndex(std::span<const uint8_t> file, const JpegParts& parts);

/// What a file holds besides its picture, by name.
struct JpegHidden {
  /// Copies of the picture: previews, thumbnails.
  std::vector<std::string> copies;
  /// Videos, gain maps, other views, unknown data.
  std::vector<std::string> others;
};

/// Names what the segments and the bytes after the end marker hold. All scans must be walked.
JpegHidden FindHidden(std::span<const uint8_t> file, const JpegParts& parts);

}  // namespace rasterkit::detail
