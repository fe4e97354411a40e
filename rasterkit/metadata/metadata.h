#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/metadata/color_profile.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A text of a PNG file (tEXt, zTXt, iTXt) with its keyword.
struct PictureText {
  /// 1 to 79 characters of Latin-1, here as UTF-8.
  std::string keyword;
  /// UTF-8.
  std::string text;
  /// Only international texts have these two.
  std::string language, translatedKeyword;
  bool isInternational = false, isCompressed = false;
  friend bool operator==(const PictureText&, const PictureText&) = default;
};

/// A block that only one file format has and that is kept as it is: a segment of a JPEG file of
/// an unknown kind, an ancillary chunk of a PNG file that is safe to copy.
struct OtherBlock {
  /// The marker of a JPEG segment (0xE0 to 0xEF); the four letters of a PNG chunk, big-endian.
  uint32_t kind = 0;
  std::vector<uint8_t> bytes;
  /// True for a PNG chunk after the pixels.
  bool isBehindPixels = false;
  friend bool operator==(const OtherBlock&, const OtherBlock&) = default;
};

/// What a picture file states besides its pixels and its position on a map. One value for all file
/// formats: a codec reads its own places into it, and writes it to its own places.
struct Metadata {
  /// EXIF block from its byte-order mark on; empty if there is none. For a TIFF file it is made of
  /// the tags of the main directory that an EXIF block can hold and of its EXIF, GPS and
  /// interoperability directories.
  std::vector<uint8_t> exif;
  /// XMP packet, as in the file.
  std::string xmp;
  /// The rest of a packet that exceeds one JPEG segment, joined, without its header.
  std::string extendedXmp;
  /// IPTC-IIM records, from the first 0x1C on.
  std::vector<uint8_t> iptc;
  /// Image resources as in a JPEG file's APP13 (8BIM blocks, joined), without the IPTC records
  /// (resource 1028), which stand in `iptc`.
  std::vector<uint8_t> photoshop;
  ColorProfile profile;
  /// Bytes as in the file; UTF-8 as a rule.
  std::vector<std::string> comments;
  std::vector<PictureText> texts;
  /// By the rule of ChooseResolution.
  Resolution resolution;
  /// Tags of a TIFF file's main directory that are neither structure, nor in `exif`, nor position:
  /// they go to a TIFF file only (42112, private tags and so on).
  std::vector<TagValue> tiffTags;
  std::vector<OtherBlock> jpegSegments, pngChunks;
  /// True if the file has a JFIF header (resolution and aspect live there too).
  bool hasJfif = false;

  friend bool operator==(const Metadata&, const Metadata&) = default;
};

/// The resolutions that a file states, each unknown if absent. `header` is that of the picture
/// file's own header: JFIF with a unit, pHYs and so on.
struct StatedResolutions {
  Resolution header;
  /// JFIF rounds to whole numbers.
  bool headerIsWhole = false;
  /// Dots per inch of one dot of the header's unit: 1, or 2.54 for dots per centimeter.
  double headerUnit = 1;
  Resolution exif, photoshop;
};

/// Chooses: the header's, then EXIF, then Photoshop's. Where EXIF and a header of whole numbers
/// agree within the rounding, EXIF counts.
RASTERKIT_EXPORT Resolution ChooseResolution(const StatedResolutions& stated);

/// The resolution of whole dots per meter, as in PNG and BMP files: the whole number of dots per
/// inch within half a unit of it, if there is one. Unknown if one of them is 0.
RASTERKIT_EXPORT Resolution FromDotsPerMeter(uint32_t x, uint32_t y);

}  // namespace rasterkit
