#pragma once

#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/stroke_style.h>

namespace rasterkit::detail {

/// Returns the path of a cairo context that has no transform.
DrawingPath PathOf(cairo_t* cairo);
/// Replaces curves by lines, within 0.1 pixels.
DrawingPath Flattened(const DrawingPath& path);
/// Closes every figure.
DrawingPath WithClosedFigures(const DrawingPath& path);
/// Returns the area that the pen covers along the path.
ClipArea::Pointer AreaOfStroke(const DrawingPath& path, const StrokeStyle& style,
                               const PixelRect& frame);

}  // namespace rasterkit::detail
