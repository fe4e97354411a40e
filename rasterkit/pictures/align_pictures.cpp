#include <algorithm>
#include <array>

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

/// True if a line along a side of the first picture parts it from the second.
bool IsParted(Sides sides, Sides other, const Affine& fromOther) {
  constexpr double kHalf = 0.5;
  const double right = other.width - kHalf, bottom = other.height - kHalf;
  const std::array corners{fromOther.At(-kHalf, -kHalf), fromOther.At(right, -kHalf),
                           fromOther.At(-kHalf, bottom), fromOther.At(right, bottom)};
  const auto all = [&](auto isBeyond) {
    return std::all_of(corners.begin(), corners.end(), isBeyond);
  };
  return all([&](const MapPoint& point) { return point.x <= -kHalf; }) ||
         all([&](const MapPoint& point) { return point.y <= -kHalf; }) ||
         all([&](const MapPoint& point) { return point.x >= sides.width - kHalf; }) ||
         all([&](const MapPoint& point) { return point.y >= sides.height - kHalf; });
}

}  // namespace

bool Overlap(Sides picture, Sides over, const Affine& toOver) {
  const std::optional<Affine> back = toOver.Inverse();
  return !IsParted(over, picture, toOver) && !(back && IsParted(picture, over, *back));
}

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
