#pragma once

#include <memory>
#include <optional>
#include <string>

#include <rasterkit/placement/affine.h>

#include "tool/command/batch.h"

namespace rasterkit::tool {

struct PlacementOptions {
  /// The position of the upright picture from the command line; nothing if its own counts.
  std::optional<Affine> given;
  /// The points that gave it, if any did.
  std::optional<PlacedByPoints> placedBy = std::nullopt;
  /// Name of a world file; empty for the one beside each picture.
  std::string worldFile;
  /// What the output shall not have.
  MetadataEdit edit = {};
  /// Takes the steps, for --record; may be null.
  std::shared_ptr<Recorder> recorder = nullptr;
};

/// Writes the job's input upright with its position: in the tags of a TIFF file, else in a world
/// file beside the output. Throws Failure, also if it has
/// none.
JobResult WriteGeoTiff(const Job& job, const PlacementOptions& options);

}  // namespace rasterkit::tool
