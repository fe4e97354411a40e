#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace rasterkit::tool {

struct CopyOptions {
  /// The orientation tag states how the picture lies instead of how the photo lay.
  bool keepOrientation = false;
  bool stripThumbnail = false;
};

/// A JPEG file with the picture of one and the metadata of another, and what is worth a warning.
struct CopiedMetadata {
  std::vector<uint8_t> jpeg;
  std::vector<std::string> warnings;
};

/// Puts the photo's EXIF, IPTC, comment, XMP and other sections in front of the picture's data, in
/// the library's order, and drops those of the picture; the picture's coded data stays as it is.
/// What belongs to the coding of the pixels stays the picture's own: the mark of their colour
/// model, and a colour profile if it has one. The index of further pictures in the photo's file is
/// left out. Throws FormatError when the picture's header does not lead to picture data.
CopiedMetadata CopyMetadata(std::span<const uint8_t> photo, std::span<const uint8_t> picture,
                            const CopyOptions& options);

}  // namespace rasterkit::tool
