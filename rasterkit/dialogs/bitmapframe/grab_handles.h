#pragma once

#include <vector>

#include <rasterkit/dialogs/bitmapframe/mark_rects.h>

namespace rasterkit {

/// Returns eight squares on the corners and the middles of the edges; `side` is in pixels. Edges
/// without room for their square have none.
std::vector<RMarkRect> MakeHandles(const TRect& rect, int side);

/// Returns the handle that a press takes: corners and whole edges are `side` pixels thick, half of
/// them inside the rectangle but no more than a quarter of its size, so that the middle of a small
/// one can be moved. doNone elsewhere.
EDragObjectType GrabAt(const TRect& rect, int side, int x, int y);

}  // namespace rasterkit
