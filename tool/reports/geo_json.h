#pragma once

#include <optional>
#include <vector>

#include "tool/pictures/placement/geo_position.h"
#include "tool/reports/photo_facts.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {

/// The list `geo` of JSON results: `source`, `file` for world files, and the six numbers.
nlohmann::ordered_json GeoJson(const std::vector<GeoPosition>& positions);

/// The object `gps` of JSON results, null without a position.
nlohmann::ordered_json GpsJson(const std::optional<GpsPosition>& gps);

}  // namespace rasterkit::tool
