#include "tool/pictures/placement/map_placement.h"

#include "tool/pictures/placement/geo_position.h"
#include "tool/pictures/placement/world_file.h"

namespace rasterkit::tool {
namespace {

/// Pixel scale and tie point can only express columns that run east and rows that run south.
std::optional<TiffGeoTags> TagsOf(const Affine& affine) {
  const auto [perColumnX, perColumnY, perRowX, perRowY, x, y] = affine;
  if (perColumnY != 0 || perRowX != 0 || !(perColumnX > 0) || !(perRowY < 0)) return std::nullopt;
  const MapPoint corner = UpperLeftCorner(affine);
  return TiffGeoTags{{perColumnX, -perRowY, 0}, {0, 0, 0, corner.x, corner.y, 0}};
}

}  // namespace

std::vector<std::string> MapSources(const std::string& input, const TiffFacts& facts) {
  const std::vector<GeoPosition> inTags = PositionsInTiff(facts);
  std::vector<std::string> sources;
  // A world file that cannot be read is a loss as well.
  if (FindWorldFile(input)) sources.emplace_back(MetadataKindName(MetadataKind::worldFile));
  for (const GeoPosition& position : inTags) sources.push_back(position.source);
  if (inTags.empty() && !facts.tiePoints.empty()) {
    sources.emplace_back(MetadataKindName(MetadataKind::tiePoints));
  }
  if (facts.hasCoordinateSystem) {
    sources.emplace_back(MetadataKindName(MetadataKind::coordinateSystem));
  }
  if (!facts.noData.empty()) sources.emplace_back(MetadataKindName(MetadataKind::noData));
  return sources;
}

MapPlacement PlacementOf(const std::string& input, const LoadedPicture& picture) {
  const TiffFacts facts = picture.tiff.value_or(TiffFacts());
  const std::vector<GeoPosition> positions = PositionsOf(input, facts);
  MapPlacement placement;
  placement.sources = MapSources(input, facts);
  if (positions.empty()) return placement;
  placement.tags = TagsOf(positions.front().affine);
  for (const GeoPosition& position : positions) placement.kept.push_back(position.source);
  placement.doubt = PositionDoubt(positions, picture.bitmap->Width(), picture.bitmap->Height());
  return placement;
}

}  // namespace rasterkit::tool
