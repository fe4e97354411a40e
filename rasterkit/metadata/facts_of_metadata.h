#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

struct GpsPosition {
  /// Degrees; north and east are positive.
  double latitude = 0, longitude = 0;
  /// Meters above sea level.
  std::optional<double> altitude;
};

/// What a picture file states about the photograph.
struct PhotoFacts {
  /// The orientation tag as stored in the file, 1 to 8; nothing if there is none.
  std::optional<int> orientation;
  /// Degrees by which the photo query turns the picture: 0, 90, 180 or 270; nothing if it throws.
  /// Only of JPEG files, by ReadPhotoFacts.
  std::optional<int> rotation;
  std::optional<GpsPosition> gps;
  /// When the photograph was taken, else digitized, else changed: "2019-07-04T13:05:09" in the
  /// camera's local time; empty if there is no valid date.
  std::string date;
  /// Of the camera, in UTF-8.
  std::string make, model;
  /// Parts of the segment that could not be read.
  std::vector<std::string> warnings;
};

/// Facts of a picture of any format: of its EXIF block, and of its XMP packet for what the block
/// does not state. A damaged block gives what can be read.
RASTERKIT_EXPORT PhotoFacts FactsOf(const Metadata& metadata);

/// Facts of an EXIF block alone.
RASTERKIT_EXPORT PhotoFacts FactsOf(const ExifBlock& exif);

}  // namespace rasterkit
