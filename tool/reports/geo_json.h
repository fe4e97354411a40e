#pragma once

#include <optional>
#include <vector>

#include <rasterkit/pictures/reading/photo_facts.h>
#include <rasterkit/placement/placement.h>

#include "tool/command/json.h"

namespace rasterkit::tool {

/// The list `geo` of JSON results: `source`, `file` for files beside the picture, the six numbers,
/// and the difference from the first position in pixels.
Json GeoJson(const std::vector<StatedPosition>& positions);

/// The object `gps` of JSON results, null without a position.
Json GpsJson(const std::optional<GpsPosition>& gps);

}  // namespace rasterkit::tool
