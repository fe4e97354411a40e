#pragma once

#include <vector>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// What the mouse grabs. The order is established.
enum EDragObjectType {
  doNone,
  doMove,
  doFrame,
  doLeft,
  doTop,
  doRight,
  doBottom,
  doLeftTop,
  doRightTop,
  doLeftBottom,
  doRightBottom
};

/// One handle of the cut rectangle, in paint-box pixels.
struct RMarkRect {
  EDragObjectType RectType = doNone;
  TRect RectData;
};

/// The twelve handles of a rectangle, in the order in which the mouse tries them:
///
///     +--+           +--+     a corner has two, along its edges, inside the rectangle: `side`
///     |     +---+       |     long and half as thick
///     +     |   |       +
///           +---+             an edge has one square, its centre on the middle of the edge
///
/// Edges left, top, right, bottom come first, then the corners left-top, right-top, left-bottom and
/// right-bottom. `side` is in pixels, at least 1.
std::vector<RMarkRect> MakeMarkRects(const TRect& rect, int side);

/// The type of the first handle that holds the point, its borders included; doNone when none does.
EDragObjectType MarkAt(const std::vector<RMarkRect>& marks, int x, int y);

}  // namespace rasterkit
