#pragma once

#include <vector>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The object that the mouse grabs. The numeric order is part of the interface.
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

/// Returns the twelve handles of a rectangle in the order in which the mouse checks them:
///
///     +--+           +--+     a corner has two, along its edges, inside the rectangle: `side`
///     |     +---+       |     long and half as thick
///     +     |   |       +
///           +---+             an edge has one square, centered on the middle of the edge
///
/// The edges left, top, right, bottom come first, then the corners left-top, right-top, left-bottom
/// and right-bottom. `side` is in pixels, at least 1.
std::vector<RMarkRect> MakeMarkRects(const TRect& rect, int side);

/// Returns the type of the first handle that contains the point, borders included; doNone if there
/// is none.
EDragObjectType MarkAt(const std::vector<RMarkRect>& marks, int x, int y);

}  // namespace rasterkit
