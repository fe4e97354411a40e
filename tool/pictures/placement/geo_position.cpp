#include "tool/pictures/placement/geo_position.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <fmt/core.h>

#include "tool/pictures/placement/world_file.h"

namespace rasterkit::tool {
namespace {

constexpr int kPixelIsPoint = 2;

/// Raster coordinates of the center of the first pixel.
double FirstCenter(const TiffFacts& facts) {
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
  const double columns = FirstCenter(facts) - tie[0], rows = FirstCenter(facts) - tie[1];
  return {x, 0, 0, -y, tie[3] + columns * x, tie[4] - rows * y};
}

Affine FromTransformation(const TiffFacts& facts) {
  const auto& m = facts.transformation;
  const double c = FirstCenter(facts);
  return {m[0], m[4], m[1], m[5], m[3] + c * m[0] + c * m[1], m[7] + c * m[4] + c * m[5]};
}

/// Distance between the places of a corner pixel in two positions, in pixels of the first one.
double GreatestDistance(const Affine& a, const Affine& b, int width, int height) {
  double greatest = 0;
  for (const int column : {0, width - 1}) {
    for (const int row : {0, height - 1}) {
      const auto there = FromMap(a, ToMap(b, column, row));
      if (!there) return std::numeric_limits<double>::infinity();
      greatest = std::max(greatest, std::hypot(there->x - column, there->y - row));
    }
  }
  return greatest;
}

}  // namespace

std::vector<GeoPosition> PositionsInTiff(const TiffFacts& facts) {
  std::vector<GeoPosition> positions;
  if (facts.pixelScale.size() >= 2 && facts.tiePoints.size() >= 6) {
    positions.push_back({MetadataKindName(MetadataKind::geoTiff), "", FromScale(facts)});
  }
  if (facts.transformation.size() >= 16) {
    positions.push_back(
        {MetadataKindName(MetadataKind::geoTiffTransformation), "", FromTransformation(facts)});
  }
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
  return GeoPosition{MetadataKindName(MetadataKind::worldFile), worldFile->file, worldFile->affine};
}

std::vector<GeoPosition> PositionsOf(const std::string& picture, const TiffFacts& facts) {
  std::vector<GeoPosition> positions = PositionsInTiff(facts);
  if (const auto beside = PositionBeside(picture)) positions.insert(positions.begin(), *beside);
  return positions;
}

std::optional<std::string> PositionDoubt(const std::vector<GeoPosition>& positions, int width,
                                         int height) {
  constexpr double kAgreement = 0.1;
  for (size_t i = 1; i < positions.size(); ++i) {
    const double distance =
        GreatestDistance(positions[0].affine, positions[i].affine, width, height);
    if (!(distance <= kAgreement)) {
      return fmt::format("{} and {} disagree by up to {:.3g} pixels; {} is used",
                         positions[0].source, positions[i].source, distance, positions[0].source);
    }
  }
  return std::nullopt;
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
