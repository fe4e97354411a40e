#include "apps/rasterkit/geo_position.h"

#include <algorithm>
#include <cmath>

#include "apps/rasterkit/world_file.h"

namespace rasterkit::tool {
namespace {

constexpr int kPixelIsPoint = 2;

/// Raster coordinates of the first pixel's centre.
double FirstCentre(const TiffFacts& facts) {
  return facts.rasterType == kPixelIsPoint ? 0.0 : 0.5;
}

bool PlacesSomething(const Affine& affine) {
  const auto [perColumnX, perColumnY, perRowX, perRowY, x, y] = affine;
  return std::all_of(affine.begin(), affine.end(), [](double n) { return std::isfinite(n); }) &&
         (perColumnX != 0 || perColumnY != 0) && (perRowX != 0 || perRowY != 0);
}

Affine FromScale(const TiffFacts& facts) {
  const double x = facts.pixelScale[0], y = facts.pixelScale[1];
  const auto& tie = facts.tiePoints;
  const double columns = FirstCentre(facts) - tie[0], rows = FirstCentre(facts) - tie[1];
  return {x, 0, 0, -y, tie[3] + columns * x, tie[4] - rows * y};
}

Affine FromTransformation(const TiffFacts& facts) {
  const auto& m = facts.transformation;
  const double c = FirstCentre(facts);
  return {m[0], m[4], m[1], m[5], m[3] + c * m[0] + c * m[1], m[7] + c * m[4] + c * m[5]};
}

}  // namespace

std::vector<GeoPosition> PositionsInTiff(const TiffFacts& facts) {
  std::vector<GeoPosition> positions;
  if (facts.pixelScale.size() >= 2 && facts.tiePoints.size() >= 6)
    positions.push_back({"geotiff", "", FromScale(facts)});
  if (facts.transformation.size() >= 16)
    positions.push_back({"geotiff-transformation", "", FromTransformation(facts)});
  positions.erase(std::remove_if(positions.begin(), positions.end(),
                                 [](const auto& p) { return !PlacesSomething(p.affine); }),
                  positions.end());
  return positions;
}

std::optional<GeoPosition> PositionBeside(const std::string& picture) {
  const auto name = FindWorldFile(picture);
  if (!name) return std::nullopt;
  const auto worldFile = ReadWorldFile(*name);
  if (!worldFile) return std::nullopt;
  return GeoPosition{"worldfile", worldFile->file, worldFile->affine};
}

MapPoint ToMap(const Affine& affine, double column, double row) {
  return {affine[0] * column + affine[2] * row + affine[4],
          affine[1] * column + affine[3] * row + affine[5]};
}

std::optional<MapPoint> FromMap(const Affine& affine, MapPoint point) {
  const double determinant = affine[0] * affine[3] - affine[1] * affine[2];
  const double x = point.x - affine[4], y = point.y - affine[5];
  const MapPoint result = {(affine[3] * x - affine[2] * y) / determinant,
                           (affine[0] * y - affine[1] * x) / determinant};
  if (!std::isfinite(result.x) || !std::isfinite(result.y)) return std::nullopt;
  return result;
}

MapPoint UpperLeftCorner(const Affine& affine) {
  return {affine[4] - 0.5 * affine[0] - 0.5 * affine[2],
          affine[5] - 0.5 * affine[1] - 0.5 * affine[3]};
}

}  // namespace rasterkit::tool
