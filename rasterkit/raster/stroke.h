#pragma once

#include <span>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// How a painted pixel meets what is there.
enum class PaintMode { copy, exclusiveOr };

/// Paints the rectangle, clipped to the raster. Exclusive-or works on the bits of the channels (the
/// alpha stays) or of the index, so that painting twice restores the picture.
RASTERKIT_EXPORT void PaintRect(Raster& raster, const PixelRect& rect, TColor color,
                                PaintMode mode);

/// Draws the lines between neighboring points, both ends included, with a round pen of `width`
/// pixels (below 1 counts as 1). Every pixel is painted once, however often lines cross it. The
/// points may lie anywhere (coordinates beyond 2^28 count as 2^28); the time depends on the
/// raster's size and the pen's width alone. Fewer than two points draw nothing.
RASTERKIT_EXPORT void StrokePolyline(Raster& raster, std::span<const PixelPoint> points, int width,
                                     TColor color, PaintMode mode);

}  // namespace rasterkit
