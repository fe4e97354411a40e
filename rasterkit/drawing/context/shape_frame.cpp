#include <algorithm>
#include <numbers>

#include <rasterkit/drawing/context/shape_frame.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>

namespace rasterkit::detail {

ShapeFrame ShapeFrameOf(const DrawingState& state, const PlaneAffine& deviceToTarget,
                        const RectD& box, const StrokeStyle* pen) {
  const PlaneAffine toDevice = state.ToDevice();
  if (state.graphicsMode == GraphicsMode::advanced || !toDevice.KeepsAxes()) {
    const RectD logical = Normalized(box);
    return {PlaneAffine(), toDevice.Then(deviceToTarget), logical, logical};
  }
  const RectD whole = MappedBounds(box, toDevice);
  RectD line = whole;
  const double part = pen ? pen->pixelPart : 1;
  line.right = std::max(line.left, line.right - part);
  line.bottom = std::max(line.top, line.bottom - part);
  return {toDevice, deviceToTarget, whole, line};
}

void KeepInside(ShapeFrame& frame, const LogicalPen& pen) {
  if ((pen.style & pen_style::kLine) != pen_style::kInsideFrame) return;
  const double inset = std::abs(pen.width) * frame.fromLogical.MeanScale() / 2;
  RectD& box = frame.lineBox;
  const double across = std::min(inset, box.Width() / 2), down = std::min(inset, box.Height() / 2);
  box = {box.left + across, box.top + down, box.right - across, box.bottom - down};
}

EllipseArc ArcBetween(const ShapeFrame& frame, const RectD& box, const ArcEnds& ends,
                      ArcDirection direction) {
  constexpr double kTurn = 2 * std::numbers::pi;
  EllipseArc arc = WholeEllipse(box);
  arc.start = AngleToward(arc, frame.fromLogical(ends.start));
  double sweep = AngleToward(arc, frame.fromLogical(ends.end)) - arc.start;
  // With y downward, angles grow clockwise.
  if (direction == ArcDirection::clockwise) {
    if (sweep <= 0) sweep += kTurn;
  } else if (sweep >= 0) {
    sweep -= kTurn;
  }
  arc.sweep = sweep;
  return arc;
}

}  // namespace rasterkit::detail
