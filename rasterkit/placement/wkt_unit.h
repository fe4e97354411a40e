#pragma once

#include <optional>
#include <string_view>

namespace rasterkit::detail {

/// The unit of the coordinates in a text of a coordinate system (WKT, both versions).
struct WktUnit {
  /// True for a projected system: `size` is in meters, else in radians.
  bool isLength = false;
  double size = 0;
};

/// Reads the unit of the projected system in a text, or of its geographic system if there is none.
/// Nothing if the text states none, and for coordinates from the center of the earth.
std::optional<WktUnit> ReadWktUnit(std::string_view wkt);

}  // namespace rasterkit::detail
