#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

struct GpsPosition {
  /// Degrees; north and east are positive.
  double latitude = 0, longitude = 0;
  /// Meters above sea level.
  std::optional<double> altitude;
};

/// What the EXIF block of a picture states about the photograph.
struct PhotoFacts {
  /// The orientation tag as stored in the file, 1 to 8; nothing if there is none.
  std::optional<int> orientation;
  /// Degrees by which the photo query turns the picture: 0, 90, 180 or 270; nothing if it throws.
  std::optional<int> rotation;
  std::optional<GpsPosition> gps;
  /// Parts of the segment that could not be read.
  std::vector<std::string> warnings;
};

/// Reads the facts of a whole JPEG file. Finds orientation and position in any segment, even where
/// the photo query does not look.
RASTERKIT_EXPORT PhotoFacts ReadPhotoFacts(std::span<const uint8_t> jpeg);

/// Reads the facts of an EXIF block (see PictureMetadata::exif). There is no photo query for it.
RASTERKIT_EXPORT PhotoFacts ReadExifFacts(std::span<const uint8_t> exif);

}  // namespace rasterkit
