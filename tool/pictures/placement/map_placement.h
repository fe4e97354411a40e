#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>

#include "tool/pictures/picture_file.h"

namespace rasterkit::tool {

/// What places a picture on a map, and what of it a TIFF file of the same rows can say.
struct MapPlacement {
  /// See MapSources.
  std::vector<std::string> sources;
  /// The position that counts, as tags; nothing when there is none or it turns the picture.
  std::optional<TiffGeoTags> tags;
  /// The sources that the tags stand for.
  std::vector<std::string> kept;
  /// The positions disagree.
  std::optional<std::string> doubt;
};

/// Everything about the map that a picture has in its file or beside it: "worldfile", "geotiff",
/// "geotiff-transformation", "tie-points" (without a pixel size), "coordinate-system", "nodata".
std::vector<std::string> MapSources(const std::string& input, const TiffFacts& facts);

/// Of a picture in its stored rows; `input` is the file's name, beside which a world file may lie.
MapPlacement PlacementOf(const std::string& input, const LoadedPicture& picture);

}  // namespace rasterkit::tool
