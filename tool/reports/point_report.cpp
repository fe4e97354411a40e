#include "tool/reports/point_report.h"

#include <array>

#include <fmt/format.h>

namespace rasterkit::tool {

std::vector<std::string> PointNotes(const PlacedByPoints& placed) {
  std::vector<std::string> notes;
  for (size_t i = 0; i < placed.points.size(); ++i) {
    const ControlPoint& point = placed.points[i];
    const PointFit::Residual& residual = placed.fit.residuals[i];
    notes.push_back(fmt::format(
        "point {},{}={},{}: off by {:.4g} in x and {:.4g} in y, {:.4g} pixels", point.column,
        point.row, point.x, point.y, residual.x, residual.y, residual.pixels));
  }
  notes.push_back(fmt::format("root mean square: {:.4g} map units, {:.4g} pixels", placed.fit.rms,
                              placed.fit.rmsPixels));
  return notes;
}

std::vector<std::string> PointWarnings(const PlacedByPoints& placed, int width, int height) {
  std::vector<std::string> warnings;
  for (const ControlPoint& point : placed.points) {
    const bool isInside =
        point.column >= 0 && point.row >= 0 && point.column <= width && point.row <= height;
    if (isInside) continue;
    warnings.push_back(fmt::format("point {},{} lies outside the picture of {} x {} pixels",
                                   point.column, point.row, width, height));
  }
  if (placed.fit.isMirrored) {
    warnings.emplace_back(
        "the points show the map as in a mirror; COLUMN and ROW or X and Y may be exchanged");
  }
  return warnings;
}

Json FitJson(const PlacedByPoints& placed) {
  JsonList points;
  for (size_t i = 0; i < placed.points.size(); ++i) {
    const ControlPoint& point = placed.points[i];
    const PointFit::Residual& residual = placed.fit.residuals[i];
    points.Add(JsonObject()
                   .Add("pixel", std::array{point.column, point.row})
                   .Add("map", std::array{point.x, point.y})
                   .Add("residual", std::array{residual.x, residual.y})
                   .Add("distance", residual.distance)
                   .Add("distance_pixels", residual.pixels));
  }
  return JsonObject()
      .Add("points", points)
      .Add("rms", placed.fit.rms)
      .Add("rms_pixels", placed.fit.rmsPixels);
}

}  // namespace rasterkit::tool
