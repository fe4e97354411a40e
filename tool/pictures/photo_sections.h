#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/pictures/picture.h>

namespace rasterkit::tool {

/// A section of a JPEG file in front of its pixels.
struct PhotoSection {
  /// "APP1", "COM", "DQT", "SOF0" and so on; "FFxx" for rare markers.
  std::string marker;
  /// "exif", "xmp" and so on; empty if it belongs to the picture or is unknown.
  std::string kind;
  /// Offset in the file, and size with marker and length.
  size_t place = 0, bytes = 0;
};

/// What stands in front of the pixels of a JPEG file.
struct PhotoHeader {
  std::vector<PhotoSection> sections;
  std::vector<std::string> comments;
  int width = 0, height = 0;
  /// False if the file is cut off in front of its pixels.
  bool leadsToPixels = false;
};

PhotoHeader ReadPhotoHeader(std::span<const uint8_t> jpeg);

/// The JPEG thumbnail of an EXIF block, also where its entry is wrong; empty if there is none.
std::span<const uint8_t> ThumbnailOf(const ExifBlock& block);

/// Names what a picture states and `--copy-from` is about: "exif", "gps", "xmp", "comment", "app6"
/// for an unknown section, and "mpf" for the index of further pictures in the JPEG file `file`.
std::vector<std::string> CopiedKinds(const Picture& picture, const std::string& file);

}  // namespace rasterkit::tool
