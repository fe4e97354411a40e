#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/metadata_kind.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// The tags of a TIFF file; no pixel is decoded.
struct TiffFacts {
  /// Of the first directory, as stored.
  uint32_t width = 0, height = 0;
  int bitsPerSample = 1, samples = 1;
  /// 1 unsigned, 2 signed, 3 floating point, 4 undefined, 5 and 6 complex.
  int sampleFormat = 1;
  /// The numbers of the tags.
  int compression = 1, photometric = 0;
  bool isTiled = false, isPlanar = false, isBigTiff = false, isBigEndian = false;
  /// Tag 274, 1 to 8; nothing if the file has no valid one.
  std::optional<int> orientation;
  /// Number of directories in the main chain, counted to 65,535.
  int pages = 0;
  /// How many of those after the first are marked as a smaller copy or the mask of another one
  /// (tag 254).
  int secondaryPages = 0;
  /// Model pixel scale (33550), tie points (33922, six numbers each: raster I J K, map X Y Z),
  /// model transformation (34264, 4 x 4 by rows); empty if absent or damaged.
  std::vector<double> pixelScale, tiePoints, transformation;
  /// Raster type key of the GeoTIFF directory (34735): 1 pixel is area, 2 pixel is point; 0 without
  /// one.
  int rasterType = 0;
  /// True if that directory names a coordinate system, by number or by its parts.
  bool hasCoordinateSystem = false;
  /// Tag 42113 as text, without blanks around it.
  std::string noData;
  /// What else the file holds: exif (also for a position alone), xmp, iptc, text (description,
  /// maker, software and so on), profile.
  std::vector<MetadataKind> metadata;
};

/// Reads the tags of a TIFF file that starts at the stream's position. Throws FormatError if the
/// bytes are not a TIFF file or its first directory cannot be read.
RASTERKIT_EXPORT TiffFacts ReadTiffFacts(TStream& stream);

/// The name of a compression: "none", "LZW", "Deflate" and so on; "compression N" if it has none.
RASTERKIT_EXPORT std::string TiffCompressionName(int compression);

}  // namespace rasterkit
