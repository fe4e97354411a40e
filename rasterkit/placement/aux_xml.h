#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// What GDAL writes beside a picture, as far as it concerns the position.
struct AuxXml {
  /// Pixel centers.
  std::optional<Affine> affine;
  /// Text of the coordinate system, of the picture or else of its control points.
  std::string wkt;
  std::vector<ControlPoint> controlPoints;
  /// "No data" of each band that has one, as text.
  std::vector<std::string> noData;
  /// From the metadata domain RPC; empty if a number is missing.
  RationalModel rationalModel;
  /// Elements and attributes that hold something else: "Metadata", "Histograms".
  std::vector<std::string> others;
  /// Why a part was ignored: "line 3: the transformation has 5 of 6 numbers".
  std::vector<std::string> faults;
};

/// Longest file that is read.
inline constexpr size_t kLongestAuxXml = size_t{16} << 20;

/// Reads such a file. Throws FormatError with the line if it is no XML, nests deeper than 64
/// levels or has a document type (entities could grow without bounds).
RASTERKIT_EXPORT AuxXml ParseAuxXml(std::string_view text);

}  // namespace rasterkit::detail
