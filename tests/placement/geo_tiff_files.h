#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/metadata/tag_value.h>

/// TIFF files with tags of a position, and what another program reads from them.
namespace rasterkit::test {

/// A gray TIFF file of that size with these tags besides its own.
std::vector<uint8_t> TiffWithTags(int width, int height, std::vector<TagValue> tags);

/// The tags of the position in the first directory, read by libtiff.
std::vector<TagValue> PositionTagsIn(const std::string& file);

bool HasProgram(const std::string& name);

/// The stdout of a shell command.
std::string OutputOf(const std::string& command);

/// What gdalinfo says.
struct GdalPlace {
  bool isRead = false;
  /// x, x per column, x per row, y, y per column, y per row of the top left corner.
  std::optional<std::array<double, 6>> transform;
  /// Column, row, x, y of each control point.
  std::vector<std::array<double, 4>> points;
  /// EPSG code of the coordinate system itself.
  std::optional<int> epsg;
  int width = 0, height = 0;
  bool hasRationalModel = false;
  double lineOffset = 0, sampleOffset = 0;
};

/// `options` go before the file name. Writes no file beside the picture.
GdalPlace AskGdal(const std::string& file, const std::string& options = "");

}  // namespace rasterkit::test
