#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace rasterkit::tool {

struct CopyOptions {
  /// Keep the orientation of the picture, not that of the photo.
  bool keepOrientation = false;
  bool stripThumbnail = false;
};

/// A JPEG file with the pixels of one file and the metadata of another, and warnings.
struct CopiedMetadata {
  std::vector<uint8_t> jpeg;
  std::vector<std::string> warnings;
};

/// Replaces the metadata of the picture (EXIF, IPTC, comment, XMP and other sections) by that of
/// the photo, in the order of the library. The coded pixels do not change. Sections that belong to
/// the pixels are those of the picture: the Adobe marker, and the color profile if it has one. The
/// index of further pictures (MPF) in the photo is skipped. Throws FormatError if the header of the
/// picture does not lead to picture data.
CopiedMetadata CopyMetadata(std::span<const uint8_t> photo, std::span<const uint8_t> picture,
                            const CopyOptions& options);

}  // namespace rasterkit::tool
