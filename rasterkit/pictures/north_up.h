#pragma once

#include <optional>
#include <vector>

#include <rasterkit/bands/sides.h>
#include <rasterkit/pictures/steps.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// How a picture is brought into the map's frame.
struct NorthUpFrame {
  /// Turns and mirrors that move whole pixels; they come first.
  std::vector<Step> turns;
  /// What is left: from pixel indexes of the result to those after the turns, and the sides of the
  /// result. Nothing if columns run east and rows south after the turns.
  std::optional<Affine> toOld;
  Sides sides;
};

/// The pixels of the result are as large as those of the picture along the axis nearest to each.
/// Throws RangeError for a position whose numbers cannot be inverted.
RASTERKIT_EXPORT NorthUpFrame FrameOfNorthUp(const Affine& position, Sides sides);

}  // namespace rasterkit::detail
