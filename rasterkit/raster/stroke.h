#pragma once

#include <span>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// How painting changes a pixel.
enum class PaintMode { copy, exclusiveOr };

/// Paints a rectangle, clipped to the raster. Exclusive-or changes the bits of the channels (alpha
/// stays) or of the index, so painting twice restores the picture.
RASTERKIT_EXPORT void PaintRect(Raster& raster, const PixelRect& rect, TColor color,
                                PaintMode mode);

/// Draws the lines between neighboring points, both ends included, with a round pen of `width`
/// pixels (below 1 counts as 1). Every pixel is painted once, however often lines cross it. The
/// points may lie anywhere (coordinates beyond 2^28 count as 2^28); the time depends only on the
/// size of the raster and the width of the pen. No-op for fewer than two points.
RASTERKIT_EXPORT void StrokePolyline(Raster& raster, std::span<const PixelPoint> points, int width,
                                     TColor color, PaintMode mode);

}  // namespace rasterkit
