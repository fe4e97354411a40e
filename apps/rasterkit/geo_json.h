#pragma once

#include <vector>

#include "apps/rasterkit/geo_position.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {

/// The list `geo` of JSON results: `source`, `file` for world files, and the six numbers.
nlohmann::ordered_json GeoJson(const std::vector<GeoPosition>& positions);

}  // namespace rasterkit::tool
