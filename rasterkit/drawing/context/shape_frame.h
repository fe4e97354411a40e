#pragma once

#include <rasterkit/drawing/context/arc_outline.h>
#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/ink/stroke_style.h>

namespace rasterkit::detail {

/// The coordinates in which a boxed shape is built. In compatible mode these are pixels of the
/// device, and the right and bottom edges of a box lie one pixel (or less for a thinner pen) before
/// its corner. In advanced mode these are logical units.
struct ShapeFrame {
  PlaneAffine fromLogical, toTarget;
  RectD fillBox;  ///< the box to fill
  RectD lineBox;  ///< the box that the pen follows
};

/// `pen` is null if the outline is not drawn.
ShapeFrame ShapeFrameOf(const DrawingState& state, const PlaneAffine& deviceToTarget,
                        const RectD& box, const StrokeStyle* pen);

/// Moves the outline inward by half of the pen's width, for the inside-frame style.
void KeepInside(ShapeFrame& frame, const LogicalPen& pen);

/// Returns the arc of the ellipse in `box` between two rays, in units of the frame. Equal rays give
/// the full ellipse.
EllipseArc ArcBetween(const ShapeFrame& frame, const RectD& box, const ArcEnds& ends,
                      ArcDirection direction);

}  // namespace rasterkit::detail
