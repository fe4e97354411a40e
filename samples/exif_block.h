#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace rasterkit::samples {

enum class ByteOrder { intel, motorola };

/// Degrees, north and east positive, and meters above sea level.
struct Place {
  double latitude, longitude, altitude;
};

/// A JPEG with an EXIF segment put in behind its first marker: the orientation, and the place where
/// there is one.
std::vector<uint8_t> WithExif(const std::vector<uint8_t>& jpeg, ByteOrder order, int orientation,
                              const std::optional<Place>& place);

}  // namespace rasterkit::samples
