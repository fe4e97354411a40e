#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Where a position comes from.
enum class PositionSource { worldFile, geoTiff, geoTiffTransformation, auxXml, given };

/// "worldfile", "geotiff" (pixel scale and tie point), "geotiff-transformation", "aux-xml",
/// "given".
RASTERKIT_EXPORT const char* PositionSourceName(PositionSource source);

/// One position that a file, or a file beside it, states.
struct StatedPosition {
  PositionSource source = PositionSource::worldFile;
  /// The world file or .aux.xml; empty for tags of the picture's own file.
  std::string file;
  Affine affine;
  /// Distance from the position that counts, in its pixels, at the worst corner of the picture.
  double difference = 0;
};

/// Ties a place of the picture (columns and rows from the top left corner of the picture, not from
/// a pixel's center) to a map point.
struct ControlPoint {
  double column = 0, row = 0, level = 0;
  double x = 0, y = 0, z = 0;
};

/// A coordinate system as its file states it; the bytes are never interpreted to write them.
struct RASTERKIT_EXPORT CoordinateSystem {
  /// Tags 34735, 34736, 34737.
  std::vector<uint16_t> keys;
  std::vector<double> doubles;
  std::string ascii;
  /// The text of .aux.xml or .prj; used where there are no keys.
  std::string wkt;

  bool IsKnown() const;
  /// EPSG code of the projected or geographic system; nothing if the keys name none.
  std::optional<int> Epsg() const;
  /// Citation of the keys or name in the text: "WGS 84 / UTM zone 33N"; empty if there is none.
  std::string Name() const;
  /// "EPSG:25832 (ETRS89 / UTM zone 32N)" for messages.
  std::string Description() const;
};

/// Rational polynomial coefficients (tag 50844): 92 numbers.
using RationalModel = std::vector<double>;

/// Where a picture lies on a map.
struct RASTERKIT_EXPORT Placement {
  /// The position that counts: pixel centers. Nothing if none is known.
  std::optional<Affine> affine;
  /// All positions that were found, the one that counts first.
  std::vector<StatedPosition> stated;
  std::vector<ControlPoint> controlPoints;
  CoordinateSystem system;
  /// GTRasterType: false for pixel is area.
  bool pixelIsPoint = false;
  /// Tag 42113, or .aux.xml, as text; empty without one.
  std::string noData;
  RationalModel rationalModel;
  /// World files, .aux.xml and .prj that were read or that belong to the picture.
  std::vector<std::string> sideFiles;
  /// Commas in a world file, missing numbers, positions that disagree.
  std::vector<std::string> warnings;

  bool IsKnown() const { return affine || !controlPoints.empty(); }
};

/// Which source counts. `automatic`: a world file, then tags, then .aux.xml.
enum class PositionFrom { automatic, worldFile, tags, auxXml, none };

struct PlacementReading {
  PositionFrom from = PositionFrom::automatic;
  /// Name of a world file; empty: the one beside the picture.
  std::string worldFile;
};

/// Reads the position of a picture. `file` is its name; empty for a picture without one, which has
/// no files beside it. Damaged side files give a warning with line and reason. Never throws for
/// damaged files, but FileError if `reading.worldFile` cannot be read.
RASTERKIT_EXPORT Placement ReadPlacement(const std::string& file, std::span<const TagValue> tags,
                                         int width, int height,
                                         const PlacementReading& reading = {});

/// How the pixels of a picture moved: `toOld` leads from pixel indexes of the new picture to those
/// of the old one (centers at whole numbers).
struct PixelMove {
  Affine toOld;
  int oldWidth = 0, oldHeight = 0, width = 0, height = 0;
};

/// Brings a position in line with moved pixels: the affine and the control points exactly, also the
/// rational model for crops, resizing, mirrors and turns by quarters. What cannot follow (a
/// rational model under a turn by another angle) is removed and added to `changes`.
RASTERKIT_EXPORT void FollowPixels(Placement& placement, const PixelMove& move, Changes& changes);

/// The tags of a TIFF file for the position: pixel scale and tie point where the position is
/// straight with rows running south, else the transformation (34264); control points; keys as
/// bytes, or the EPSG code of a system that is known as text alone; "no data"; rational model.
RASTERKIT_EXPORT std::vector<TagValue> TagsOf(const Placement& placement);

}  // namespace rasterkit
