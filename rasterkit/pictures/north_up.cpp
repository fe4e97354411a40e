#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/pictures/north_up.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Corners that lie this little outside of the last pixel, in pixels, add none.
constexpr double kOverhang = 1e-6;

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

int Count(double extent, double pixel) {
  const double count = std::ceil(extent / pixel - kOverhang);
  if (!(count <= std::numeric_limits<int>::max())) {
    throw RangeError("the picture in the map's frame would be too large");
  }
  return std::max(static_cast<int>(count), 1);
}

/// The box around the corners of the picture, on the map.
struct Box {
  double left = 0, right = 0, bottom = 0, top = 0;

  Box(const Affine& position, Sides sides) {
    constexpr double kHalf = 0.5;
    left = bottom = std::numeric_limits<double>::infinity();
    right = top = -left;
    for (const double column : {-kHalf, sides.width - kHalf}) {
      for (const double row : {-kHalf, sides.height - kHalf}) {
        const MapPoint corner = position.At(column, row);
        left = std::min(left, corner.x);
        right = std::max(right, corner.x);
        bottom = std::min(bottom, corner.y);
        top = std::max(top, corner.y);
      }
    }
  }
};

}  // namespace

NorthUpFrame FrameOfNorthUp(const Affine& position, Sides sides) {
  if (!position.Inverse()) throw RangeError("the position on the map cannot be inverted");
  NorthUpFrame frame;
  Affine now = position;
  if (std::abs(now.xPerRow) > std::abs(now.xPerColumn)) {
    frame.turns.emplace_back(TurnStep{-1});
    now = now.After(Clockwise(sides));
    std::swap(sides.width, sides.height);
  }
  if (now.xPerColumn < 0) {
    frame.turns.emplace_back(MirrorStep{MirrorAxis::leftRight});
    now = now.After(Mirrored(MirrorAxis::leftRight, sides));
  }
  if (now.yPerRow > 0) {
    frame.turns.emplace_back(MirrorStep{MirrorAxis::topBottom});
    now = now.After(Mirrored(MirrorAxis::topBottom, sides));
  }
  frame.sides = sides;
  if (now.IsStraight()) return frame;

  const Box box(now, sides);
  const double width = std::hypot(now.xPerColumn, now.yPerColumn);
  const double height = std::hypot(now.xPerRow, now.yPerRow);
  constexpr double kHalf = 0.5;
  const Affine north{width, 0, 0, -height, box.left + kHalf * width, box.top - kHalf * height};
  frame.sides = {Count(box.right - box.left, width), Count(box.top - box.bottom, height)};
  const Affine back = *now.Inverse();
  Affine toOld = back.After(north);
  // From the difference of the origins, so that large map coordinates cost no digits.
  const MapPoint origin = *now.Back({north.x, north.y});
  toOld.x = origin.x;
  toOld.y = origin.y;
  frame.toOld = toOld;
  return frame;
}

}  // namespace rasterkit::detail
