#pragma once

#include <vector>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The line of `width` pixels through the corners of `rect` and back to the first, as rectangles
/// that do not overlap, so that exclusive or meets each pixel once; clipped to `client`. Empty
/// rectangles are left out.
std::vector<TRect> OutlineStrips(const TRect& rect, int width, const TRect& client);

}  // namespace rasterkit
