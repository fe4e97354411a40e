#pragma once

#include <optional>
#include <vector>

#include <rasterkit/pictures/reading/photo_facts.h>

#include "tool/command/json.h"
#include "tool/pictures/placement/geo_position.h"

namespace rasterkit::tool {

/// The list `geo` of JSON results: `source`, `file` for world files, and the six numbers.
Json GeoJson(const std::vector<GeoPosition>& positions);

/// The object `gps` of JSON results, null without a position.
Json GpsJson(const std::optional<GpsPosition>& gps);

}  // namespace rasterkit::tool
