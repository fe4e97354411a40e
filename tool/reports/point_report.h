#pragma once

#include <string>
#include <vector>

#include <rasterkit/placement/fit_points.h>

#include "tool/command/json.h"

namespace rasterkit::tool {

/// The points that place a picture, and what they gave.
struct PlacedByPoints {
  std::vector<ControlPoint> points;
  PointFit fit;
};

/// A line for each point with its residual, and one with the root mean square.
std::vector<std::string> PointNotes(const PlacedByPoints& placed);

/// Points that lie outside a picture of this size, and a picture that lies on the map as in a
/// mirror, are most often mistakes.
std::vector<std::string> PointWarnings(const PlacedByPoints& placed, int width, int height);

/// The object `fit` of JSON results: `points` (each with `pixel`, `map`, `residual`, `distance`,
/// `distance_pixels`), `rms` and `rms_pixels`.
Json FitJson(const PlacedByPoints& placed);

}  // namespace rasterkit::tool
