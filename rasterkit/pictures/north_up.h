#pragma once

#include <optional>
#include <vector>

#include <rasterkit/bands/stages.h>
#include <rasterkit/pictures/steps.h>

namespace rasterkit::detail {

/// How a picture is brought into the map's frame: whole pixels move as far as that goes.
struct WayNorth {
  /// Turns and mirrors that move whole pixels; they come first.
  std::vector<Step> turns;
  /// What is left: from the pixels after the turns. Nothing if columns then run east and rows
  /// south.
  std::optional<NorthUpFrame> frame;
};

/// Throws RangeError as FrameOfNorthUp does.
WayNorth WayNorthOf(const Affine& position, Sides sides);

}  // namespace rasterkit::detail
