#pragma once

#include <optional>
#include <string>

#include "tool/command/batch.h"

namespace rasterkit::tool {

/// Map position of the top left corner of the top left pixel, and the size of a pixel, in map
/// units; rows run south.
struct Placement {
  double x = 0, y = 0;
  double width = 1, height = 1;
};

struct PlacementOptions {
  /// The position from the command line; nothing if a world file is used.
  std::optional<Placement> given;
  /// Name of a world file; empty for the one beside each picture.
  std::string worldFile;
};

/// Writes the job's input upright as a TIFF file with its position. Throws Failure, also if the
/// tags for pixel scale and tie point cannot express the position.
JobResult WriteGeoTiff(const Job& job, const PlacementOptions& options);

}  // namespace rasterkit::tool
