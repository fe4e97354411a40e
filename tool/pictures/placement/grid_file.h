#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>

#include "tool/pictures/placement/geo_position.h"
#include "tool/pictures/placement/grid.h"

namespace rasterkit::tool {

/// A TIFF file's first picture as a grid, with what its tags say about it.
struct GridFile {
  TiffFacts facts;
  /// Absent when the file holds colours or numbers of another type.
  std::optional<Grid> grid;
  NoData noData;
  /// That of a world file first: it is what people change.
  std::vector<GeoPosition> positions;
  std::vector<std::string> warnings;
};

/// Throws Failure(exitInputUnreadable) for a file that is no picture or cannot be read.
GridFile LoadGridFile(const std::string& file);

/// What the file holds where it holds no grid: "3 samples of 8 bits a pixel".
std::string SamplesText(const TiffFacts& facts);

}  // namespace rasterkit::tool
