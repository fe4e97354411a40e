#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {
struct CoordinateSystem;
}

/// The names in a coordinate system.
namespace rasterkit::detail {

/// Value of a key whose value is a whole number; 0 without it.
int ShortKey(std::span<const uint16_t> keys, uint16_t number);

/// Value of a key whose value is a number (34736); nothing without it.
std::optional<double> DoubleKey(const CoordinateSystem& system, uint16_t number);

/// True if the raster type in the key directory (34735) says that a pixel is a point.
bool IsPixelPoint(std::span<const uint16_t> keys);

/// What a text of a coordinate system (WKT) begins with.
struct WktHead {
  /// `PROJCS["ETRS89 / UTM zone 32N", ...`; empty if the text is no WKT.
  std::string name;
  /// Its first word: "PROJCS", "GEOGCRS", in upper case.
  std::string keyword;
  /// The code of the system itself: AUTHORITY["EPSG","25832"] or ID["EPSG",25832] at its end.
  std::optional<int> epsg;
};

RASTERKIT_EXPORT WktHead ReadWktHead(std::string_view wkt);

/// A key directory (34735) that names the EPSG code of a projected or geographic system that is
/// known as text alone, and that counts pixels as areas. Empty if the text has no such code.
std::vector<uint16_t> KeysOfWkt(std::string_view wkt);

}  // namespace rasterkit::detail
