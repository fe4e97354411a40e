#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Tags of the directories that a TIFF file and an EXIF block share.
struct TiffDirectories {
  std::vector<TagValue> main, exif, gps, interop;
  /// Byte order of the block: texts of two-byte characters and maker notes depend on it.
  bool isBigEndian = false;
};

/// True for tags of a TIFF main directory that say how its pixels are stored, that lead to other
/// directories, or that have a place of their own in Metadata or in the position (XMP, IPTC, ICC,
/// Photoshop, GeoTIFF, "no data"). They never travel with an EXIF block.
RASTERKIT_EXPORT bool IsStructureOfTiff(uint16_t tag);

/// True for tags of a TIFF main directory that an EXIF block holds too: orientation, description,
/// make, model, software, date, artist, copyright, host computer, resolution, texts of Windows,
/// rating, and all tags of photographs. Others that are no structure are a TIFF file's alone.
RASTERKIT_EXPORT bool IsTagOfExif(uint16_t tag);

/// Makes an EXIF block; empty if no tag is for it. Of `main` it takes the tags of IsTagOfExif;
/// pointers to directories are made anew. Values of 64-bit types become 32-bit ones where they fit;
/// others are skipped.
RASTERKIT_EXPORT std::vector<uint8_t> ExifOfTags(std::span<const TagValue> main,
                                                 std::span<const TagValue> exif,
                                                 std::span<const TagValue> gps,
                                                 std::span<const TagValue> interop,
                                                 bool isBigEndian = false);

/// Lists the tags of an EXIF block for a TIFF file: all of its directories but the thumbnail's,
/// without structure and pointers. A damaged block gives what can be read.
RASTERKIT_EXPORT TiffDirectories TagsOfExif(std::span<const uint8_t> exif);

}  // namespace rasterkit
