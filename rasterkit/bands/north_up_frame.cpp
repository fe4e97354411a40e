#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// A side whose end lies this near to a pixel's edge ends there: rounding errors make no pixel.
constexpr double kNearEdge = 1e-6;

struct Box {
  double minX = std::numeric_limits<double>::infinity(), minY = minX, maxX = -minX, maxY = -minX;

  void Add(MapPoint point) {
    minX = std::min(minX, point.x);
    minY = std::min(minY, point.y);
    maxX = std::max(maxX, point.x);
    maxY = std::max(maxY, point.y);
  }
};

/// The corners of the outermost pixels, not their centers.
Box BoxOf(Sides source, const Affine& toMap) {
  Box box;
  for (const double x : {-0.5, source.width - 0.5}) {
    for (const double y : {-0.5, source.height - 0.5}) box.Add(toMap.At(x, y));
  }
  return box;
}

int PixelsIn(double length, double pixel) {
  const double pixels = std::max(1.0, std::ceil(length / pixel - kNearEdge));
  if (!(pixels <= std::numeric_limits<int>::max())) {
    throw RangeError("the picture would have more than 2147483647 pixels per side");
  }
  return static_cast<int>(pixels);
}

}  // namespace

NorthUpFrame FrameOfNorthUp(Sides source, const Affine& toMap) {
  double width = std::hypot(toMap.xPerColumn, toMap.yPerColumn);
  double height = std::hypot(toMap.xPerRow, toMap.yPerRow);
  const auto toIndex = toMap.Inverse();
  if (!toMap.IsFinite() || !toIndex || !toIndex->IsFinite() || width == 0 || height == 0) {
    throw RangeError("the position of the picture cannot be inverted");
  }
  const bool isOnItsSide = std::fabs(toMap.yPerColumn) > std::fabs(toMap.xPerColumn);
  if (isOnItsSide) std::swap(width, height);
  const Box box = BoxOf(source, toMap);
  NorthUpFrame frame;
  frame.sides = {PixelsIn(box.maxX - box.minX, width), PixelsIn(box.maxY - box.minY, height)};
  frame.toMap = {width, 0, 0, -height, box.minX + width / 2, box.maxY - height / 2};
  frame.toOld = toIndex->After(frame.toMap);
  return frame;
}

}  // namespace rasterkit
