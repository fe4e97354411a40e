#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Unit of the coordinates of a map.
struct MapUnit {
  enum class Kind { unknown, length, angle };
  Kind kind = Kind::unknown;
  /// Meters or degrees of one unit; 0 if unknown.
  double size = 0;
  /// "m", "km", "ft", "US ft", "°" and so on, the same in every language; empty if unknown.
  std::string symbol;

  bool IsKnown() const { return kind != Kind::unknown; }
  bool IsLength() const { return kind == Kind::length; }
  friend bool operator==(const MapUnit&, const MapUnit&) = default;
};

/// The unit that a coordinate system states: in the keys of GeoTIFF (linear and angular units, also
/// those with a size of their own), in its text, or by a code whose unit is certain. Unknown
/// otherwise, and for geocentric systems.
RASTERKIT_EXPORT MapUnit MapUnitOf(const CoordinateSystem& system);

/// The unit with this name: "m", "km", "ft", "US ft", "°", or "degrees"; unknown for others.
RASTERKIT_EXPORT MapUnit MapUnitNamed(std::string_view name);

/// The units from which people choose where nothing states one: meters, feet, US survey feet,
/// degrees.
RASTERKIT_EXPORT const std::vector<MapUnit>& UsualMapUnits();

}  // namespace rasterkit
