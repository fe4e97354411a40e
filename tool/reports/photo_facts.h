#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace rasterkit::tool {

struct GpsPosition {
  /// Degrees, north and east positive.
  double latitude = 0, longitude = 0;
  /// Metres above sea level, negative below.
  std::optional<double> altitude;
};

/// What a picture's EXIF block says about how the photograph was taken.
struct PhotoFacts {
  /// The orientation tag, 1 to 8, as it stands in the file; nothing when there is none.
  std::optional<int> orientation;
  /// Degrees by which the photo query wants the picture turned: 0, 90, 180 or 270; nothing when it
  /// raises an error.
  std::optional<int> rotation;
  std::optional<GpsPosition> gps;
  /// What of the segment could not be understood.
  std::vector<std::string> warnings;
};

/// Of a whole JPEG file. Orientation and position are found wherever among the segments the EXIF
/// block lies, also where the photo query does not look any more.
PhotoFacts ReadPhotoFacts(std::span<const uint8_t> jpeg);

/// Of an EXIF block alone (see PictureMetadata::exif), wherever it comes from; there is no photo
/// query for it.
PhotoFacts ReadExifFacts(std::span<const uint8_t> exif);

}  // namespace rasterkit::tool
