#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>

#include "tool/pictures/picture_input.h"

namespace rasterkit::tool {

/// The map position of a picture, and the part of it that a TIFF file with the same rows can store.
struct MapPlacement {
  /// See MapSources.
  std::vector<std::string> sources;
  /// The position as tags; nothing if there is none or it turns the picture.
  std::optional<TiffGeoTags> tags;
  /// The sources that the tags replace.
  std::vector<std::string> kept;
  /// Warning that the positions disagree.
  std::optional<std::string> doubt;
};

/// Lists all map data in the file or beside it: "worldfile", "geotiff", "geotiff-transformation",
/// "tie-points" (without a pixel size), "coordinate-system", "nodata".
std::vector<std::string> MapSources(const std::string& input, const TiffFacts& facts);

/// Reads the map position of a picture with rows as stored. A world file may be beside the file
/// `input`.
MapPlacement PlacementOf(const std::string& input, const LoadedPicture& picture);

}  // namespace rasterkit::tool
