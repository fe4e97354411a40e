#pragma once

#include <vector>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// Returns the outline of `rect` with lines of `width` pixels through its corners, as rectangles
/// that do not overlap, so that exclusive or inverts each pixel once. Clipped to `client`; empty
/// rectangles are omitted.
std::vector<TRect> OutlineStrips(const TRect& rect, int width, const TRect& client);

}  // namespace rasterkit
