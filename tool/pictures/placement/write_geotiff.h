#pragma once

#include <optional>
#include <string>

#include <rasterkit/placement/affine.h>

#include "tool/command/batch.h"

namespace rasterkit::tool {

struct PlacementOptions {
  /// The position of the upright picture from the command line; nothing if its own counts.
  std::optional<Affine> given;
  /// Name of a world file; empty for the one beside each picture.
  std::string worldFile;
};

/// Writes the job's input upright as a TIFF file with its position. Throws Failure, also if it has
/// none.
JobResult WriteGeoTiff(const Job& job, const PlacementOptions& options);

}  // namespace rasterkit::tool
