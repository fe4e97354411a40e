#include <fmt/format.h>

#include <rasterkit/pictures/align_pictures.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

bool IsSame(const CoordinateSystem& a, const CoordinateSystem& b) {
  const std::optional<int> codeOfA = a.Epsg(), codeOfB = b.Epsg();
  if (codeOfA && codeOfB) return *codeOfA == *codeOfB;
  if (!a.keys.empty() && !b.keys.empty()) {
    return a.keys == b.keys && a.doubles == b.doubles && a.ascii == b.ascii;
  }
  if (!a.wkt.empty() && !b.wkt.empty()) return a.wkt == b.wkt;
  return a.Name() == b.Name();
}

}  // namespace

std::optional<Affine> Alignment(const Placement& picture, const Placement& over, CombineAlign align,
                                Changes& changes) {
  if (align == CombineAlign::none) return std::nullopt;
  if (!picture.affine || !over.affine) {
    if (align == CombineAlign::automatic) return std::nullopt;
    throw RangeError("both pictures need a position on a map to be aligned by it");
  }
  const bool areKnown = picture.system.IsKnown() && over.system.IsKnown();
  if (areKnown && !IsSame(picture.system, over.system)) {
    throw UnsupportedError(fmt::format("the pictures have different coordinate systems, {} and {}",
                                       picture.system.Description(), over.system.Description()));
  }
  const std::optional<Affine> back = over.affine->Inverse();
  if (!back) throw RangeError("the position of the second picture cannot be inverted");
  Affine toOver = back->After(*picture.affine);
  // From the difference of the origins, so that large map coordinates cost no digits.
  const MapPoint origin = *over.affine->Back({picture.affine->x, picture.affine->y});
  toOver.x = origin.x;
  toOver.y = origin.y;
  changes.Note("the pictures were aligned by their positions on the map");
  return toOver;
}

}  // namespace rasterkit::detail
