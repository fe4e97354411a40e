#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>

namespace rasterkit::tool {

/// Six numbers A D B E C F in the order of a world file, for column c and row r counted from the
/// upper left pixel, whose centre is (0, 0):
///
///     x = A c + B r + C      A: x per column, B: x per row, C: x of that centre
///     y = D c + E r + F      D: y per column, E: y per row (negative: rows run south), F: its y
using Affine = std::array<double, 6>;

struct MapPoint {
  double x = 0, y = 0;
};

/// Where a picture lies on a map, and who says so.
struct GeoPosition {
  /// "worldfile", "geotiff" (pixel scale and tie point) or "geotiff-transformation".
  std::string source;
  /// The world file; empty for tags in the picture's own file.
  std::string file;
  Affine affine{};
};

/// What the tags of a TIFF file say, the likelier source first: pixel scale with the first tie
/// point, then the transformation matrix. GeoTIFF counts from the corner of the upper left pixel
/// unless its raster type says that pixels are points; here both are told by pixel centres. A scale
/// of 0 and numbers that are not finite place nothing.
std::vector<GeoPosition> PositionsInTiff(const TiffFacts& facts);

/// What the world file beside the picture says; nothing without one, or when it cannot be read.
std::optional<GeoPosition> PositionBeside(const std::string& picture);

/// Everything that places the picture: a world file beside it comes first, as it is what people
/// change, then the tags.
std::vector<GeoPosition> PositionsOf(const std::string& picture, const TiffFacts& facts);

/// A sentence when the positions of a picture of that size disagree by more than a tenth of a pixel
/// somewhere; the first one counts.
std::optional<std::string> PositionDoubt(const std::vector<GeoPosition>& positions, int width,
                                         int height);

/// The map point of a column and row, which need not be whole.
MapPoint ToMap(const Affine& affine, double column, double row);

/// The column and row (as x and y) of a map point; nothing when the six numbers span no plane.
std::optional<MapPoint> FromMap(const Affine& affine, MapPoint point);

/// The corner where columns and rows begin: half a pixel left of and above the first centre.
MapPoint UpperLeftCorner(const Affine& affine);

}  // namespace rasterkit::tool
