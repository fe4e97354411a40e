#include <rasterkit/placement/placement.h>
#include <rasterkit/placement/side_files.h>

// Stand-ins until positions are read.

namespace rasterkit {

bool CoordinateSystem::IsKnown() const { return !keys.empty() || !wkt.empty(); }
std::optional<int> CoordinateSystem::Epsg() const { return std::nullopt; }
std::string CoordinateSystem::Name() const { return {}; }
std::string CoordinateSystem::Description() const { return {}; }
Placement ReadPlacement(const std::string&, std::span<const TagValue>, int, int,
                        const PlacementReading&) {
  return {};
}
void FollowPixels(Placement& placement, const PixelMove& move, Changes&) {
  if (placement.affine) placement.affine = placement.affine->After(move.toOld);
}
std::vector<TagValue> TagsOf(const Placement&) { return {}; }

}  // namespace rasterkit
