#pragma once

#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/stroke_style.h>

namespace rasterkit::detail {

/// The path of a cairo context without a transform.
DrawingPath PathOf(cairo_t* cairo);
/// Lines in place of curves, to a tenth of a pixel.
DrawingPath Flattened(const DrawingPath& path);
/// Every figure gets its last line.
DrawingPath WithClosedFigures(const DrawingPath& path);
/// What the pen covers along the path.
ClipArea::Pointer AreaOfStroke(const DrawingPath& path, const StrokeStyle& style,
                               const PixelRect& frame);

}  // namespace rasterkit::detail
