#pragma once

#include <rasterkit/drawing/context/arc_outline.h>
#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/ink/stroke_style.h>

namespace rasterkit::detail {

/// The coordinates in which a boxed shape is made. In compatible mode they are the device's pixels,
/// where the right and lower edge of a box are drawn one pixel before its corner (or as much of one
/// as the pen is wide); else the logical units.
struct ShapeFrame {
  Affine fromLogical, toTarget;
  RectD fillBox;  ///< what is filled
  RectD lineBox;  ///< what the pen goes along
};

/// `pen` may be null: nothing is drawn along the line then.
ShapeFrame ShapeFrameOf(const DrawingState& state, const Affine& deviceToTarget, const RectD& box,
                        const StrokeStyle* pen);

/// Moves the pen's line inward by half of its width, for a pen that stays inside its frame.
void KeepInside(ShapeFrame& frame, const LogicalPen& pen);

/// The arc of the ellipse in `box` between two rays, in frame units. Rays that are the same give
/// all of it.
EllipseArc ArcBetween(const ShapeFrame& frame, const RectD& box, const ArcEnds& ends,
                      ArcDirection direction);

}  // namespace rasterkit::detail
