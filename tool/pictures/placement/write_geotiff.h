#pragma once

#include <optional>
#include <string>

#include "tool/command/batch.h"

namespace rasterkit::tool {

/// Where the upper left corner of the upper left pixel lies, and how large a pixel is, both in map
/// units; rows run south.
struct Placement {
  double x = 0, y = 0;
  double width = 1, height = 1;
};

struct PlacementOptions {
  /// From the command line; nothing when a world file counts.
  std::optional<Placement> given;
  /// A world file by name; empty for the one beside each picture.
  std::string worldFile;
};

/// Writes the job's input, upright, as a TIFF file with its position. Throws Failure: also for a
/// position that the tags pixel scale and tie point cannot state.
JobResult WriteGeoTiff(const Job& job, const PlacementOptions& options);

}  // namespace rasterkit::tool
