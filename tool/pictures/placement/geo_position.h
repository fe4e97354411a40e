#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>

namespace rasterkit::tool {

/// Six numbers A D B E C F in the order of a world file, for column c and row r counted from the
/// top left pixel, whose center is (0, 0):
///
///     x = A c + B r + C      A: x per column, B: x per row, C: x of that center
///     y = D c + E r + F      D: y per column, E: y per row (negative: rows run south), F: its y
using Affine = std::array<double, 6>;

struct MapPoint {
  double x = 0, y = 0;
};

/// The position of a picture on a map, and its source.
struct GeoPosition {
  /// "worldfile", "geotiff" (pixel scale and tie point) or "geotiff-transformation".
  std::string source;
  /// The world file; empty for tags in the picture's own file.
  std::string file;
  Affine affine{};
};

/// Positions from the tags of a TIFF file, the more reliable source first: pixel scale with the
/// first tie point, then the transformation matrix. GeoTIFF counts from the corner of the top left
/// pixel unless its raster type says that pixels are points; this function returns pixel centers
/// for both. A scale of 0 or a non-finite number gives no position.
std::vector<GeoPosition> PositionsInTiff(const TiffFacts& facts);

/// The position from the world file beside the picture; nothing if there is none or it cannot be
/// read.
std::optional<GeoPosition> PositionBeside(const std::string& picture);

/// All positions of the picture: first that of a world file beside it, because people edit world
/// files, then those of the tags.
std::vector<GeoPosition> PositionsOf(const std::string& picture, const TiffFacts& facts);

/// A warning if the positions of a picture of that size disagree by more than a tenth of a pixel
/// anywhere; the first position is used.
std::optional<std::string> PositionDoubt(const std::vector<GeoPosition>& positions, int width,
                                         int height);

/// Converts a column and row, which may be fractions, to a map point.
MapPoint ToMap(const Affine& affine, double column, double row);

/// Converts a map point to a column and row (as x and y); nothing if the six numbers cannot be
/// inverted.
std::optional<MapPoint> FromMap(const Affine& affine, MapPoint point);

/// Map position of the top left corner of the top left pixel, half a pixel from its center.
MapPoint UpperLeftCorner(const Affine& affine);

}  // namespace rasterkit::tool
