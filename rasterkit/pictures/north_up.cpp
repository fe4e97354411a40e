#include <cmath>
#include <utility>

#include <rasterkit/pictures/north_up.h>

namespace rasterkit::detail {
namespace {

/// From pixel indexes after a quarter turn clockwise, or a mirror, to those before.
Affine Clockwise(Sides before) {
  Affine toOld;
  toOld.xPerColumn = 0;
  toOld.xPerRow = 1;
  toOld.yPerColumn = -1;
  toOld.yPerRow = 0;
  toOld.y = before.height - 1;
  return toOld;
}

Affine Mirrored(MirrorAxis axis, Sides sides) {
  Affine toOld;
  if (axis == MirrorAxis::leftRight) {
    toOld.xPerColumn = -1;
    toOld.x = sides.width - 1;
  } else {
    toOld.yPerRow = -1;
    toOld.y = sides.height - 1;
  }
  return toOld;
}

}  // namespace

WayNorth WayNorthOf(const Affine& position, Sides sides) {
  WayNorth way;
  Affine now = position;
  if (std::abs(now.xPerRow) > std::abs(now.xPerColumn)) {
    way.turns.emplace_back(TurnStep{-1});
    now = now.After(Clockwise(sides));
    std::swap(sides.width, sides.height);
  }
  if (now.xPerColumn < 0) {
    way.turns.emplace_back(MirrorStep{MirrorAxis::leftRight});
    now = now.After(Mirrored(MirrorAxis::leftRight, sides));
  }
  if (now.yPerRow > 0) {
    way.turns.emplace_back(MirrorStep{MirrorAxis::topBottom});
    now = now.After(Mirrored(MirrorAxis::topBottom, sides));
  }
  if (now.IsStraight()) return way;

  way.frame = FrameOfNorthUp(sides, now);
  // From the difference of the origins, so that large map coordinates cost no digits.
  const MapPoint origin = *now.Back({way.frame->toMap.x, way.frame->toMap.y});
  way.frame->toOld.x = origin.x;
  way.frame->toOld.y = origin.y;
  return way;
}

}  // namespace rasterkit::detail
