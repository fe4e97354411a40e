#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/pictures/reading/grid.h>
#include <rasterkit/placement/placement.h>

namespace rasterkit::tool {

/// The first picture of a TIFF or JPEG 2000 file as a grid, with facts from its header.
struct GridFile {
  TiffFacts facts;
  /// Null if the file holds colors or numbers of another type.
  std::optional<Grid> grid;
  NoData noData;
  /// The position of a world file comes first, because people edit world files.
  std::vector<StatedPosition> positions;
  std::vector<std::string> warnings;
};

/// Reads a grid. Throws Failure(exitInputUnreadable) if the file is not a picture or cannot be
/// read.
GridFile LoadGridFile(const std::string& file);

/// Describes the samples of a file that holds no grid: "3 samples, 8 bits per pixel".
std::string SamplesText(const TiffFacts& facts);

}  // namespace rasterkit::tool
