#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A segment to be written: marker and payload, without length.
struct NewJpegSegment {
  uint8_t marker = 0;
  std::vector<uint8_t> payload;
};

/// Makes the APP and COM segments of a JPEG file in the order in which they are written: JFIF if
/// `withJfif` (not for RGB and CMYK), EXIF, XMP, extended XMP, profile, image resources with the
/// IPTC records, others, comments. The Adobe segment is the encoder's.
///
/// - JFIF states the resolution in whole dots per inch or per centimeter, whichever is exact; a
///   rounded one is a note. Without JFIF the resolution goes to the EXIF block, made if needed.
/// - An EXIF block that exceeds a segment loses its thumbnail; one that still does is dropped.
/// - An XMP packet that exceeds a segment loses its padding, then becomes extended XMP as a whole.
///   Extended XMP gets its true digest, in the packet too.
/// - Texts of PNG files become comments, "Keyword: text"; of "Comment" the text alone.
///
/// What has no place is added to `changes`: TIFF tags, chunks of PNG files, profiles above 16 MB.
RASTERKIT_EXPORT std::vector<NewJpegSegment> AssembleJpegSegments(const Metadata& metadata,
                                                                  bool withJfif, Changes& changes);

/// The bytes of a segment in a file: FF, marker, length, payload.
RASTERKIT_EXPORT std::vector<uint8_t> BytesOf(const NewJpegSegment& segment);

}  // namespace rasterkit
