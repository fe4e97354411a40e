#pragma once

#include <rasterkit/metadata/loss.h>
#include <rasterkit/placement/side_files.h>

namespace rasterkit::detail {

/// What of a position the target or a file beside it states.
struct Carried {
  bool position = false, system = false;
  /// A `.prj` of the system lies beside the target.
  bool projection = false;
};

/// Adds to `changes` the files beside the source whose contents the target does not get, with the
/// reason. None for a picture that is saved over itself with the same pixels.
void AddLostSideFiles(const SideFileWish& wish, const Placement& placement, const Carried& carried,
                      Changes& changes);

}  // namespace rasterkit::detail
