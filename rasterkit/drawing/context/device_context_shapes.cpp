#include <algorithm>

#include <rasterkit/drawing/context/arc_outline.h>
#include <rasterkit/drawing/context/device_context_parts.h>
#include <rasterkit/drawing/context/shape_frame.h>

/// Filled shapes of a drawing context.
namespace rasterkit {

using namespace detail;

namespace {

/// Returns the frame of a box, with the pen inside it for the inside-frame style.
ShapeFrame FrameOf(DeviceContext::Parts& parts, const RectD& box) {
  ShapeFrame frame = ShapeFrameOf(parts.state, parts.deviceToTarget, Finite(box), parts.PenStyle());
  if (parts.state.pen) KeepInside(frame, *parts.state.pen);
  return frame;
}

/// Returns the outline of a chord, or of a pie, which includes the center.
DrawingPath ArcShape(const ShapeFrame& frame, const RectD& box, const ArcEnds& ends,
                     ArcDirection direction, bool hasCenter) {
  const EllipseArc arc = ArcBetween(frame, box, ends, direction);
  DrawingPath outline;
  if (hasCenter) {
    outline.MoveTo(frame.toTarget(arc.center));
    outline.LineTo(frame.toTarget(arc.Start()));
  } else {
    outline.MoveTo(frame.toTarget(arc.Start()));
  }
  AddArc(outline, arc, frame.toTarget);
  outline.Close();
  return outline;
}

/// Fills one box and strokes another, or adds to the open path.
template <class MakeOutline>
void DrawBoxed(DeviceContext::Parts& parts, const ShapeFrame& frame, MakeOutline outline) {
  if (parts.isPathOpen) {
    parts.Shape(outline(frame.fillBox));
    return;
  }
  parts.Fill(outline(frame.fillBox));
  parts.Stroke(outline(frame.lineBox));
}

/// Does the same for round outlines: the filling ends at the center of the pen, as its soft edge
/// would be visible beside the pen's.
template <class MakeOutline>
void DrawRound(DeviceContext::Parts& parts, const ShapeFrame& frame, MakeOutline outline) {
  const StrokeStyle* pen = parts.isPathOpen ? nullptr : parts.PenStyle();
  if (pen == nullptr) {
    DrawBoxed(parts, frame, outline);
    return;
  }
  DrawingPath line = outline(frame.lineBox), area = line;
  area.Transform(PlaneAffine::Translation(pen->fit.toCenter.x, pen->fit.toCenter.y));
  parts.Fill(area);
  parts.Stroke(line);
}

}  // namespace

void DeviceContext::Polygon(std::span<const PointD> points) {
  const auto count = static_cast<uint32_t>(points.size());
  PolyPolygon(points, {&count, 1});
}

void DeviceContext::PolyPolygon(std::span<const PointD> points, std::span<const uint32_t> counts) {
  Parts::Path outline;
  for (const uint32_t wanted : counts) {
    const auto figure = points.first(std::min<size_t>(wanted, points.size()));
    points = points.subspan(figure.size());
    if (figure.size() < 2) continue;
    outline.MoveTo(parts_->Mapped(Finite(figure[0])));
    for (const PointD& p : figure.subspan(1)) outline.LineTo(parts_->Mapped(Finite(p)));
    outline.Close();
  }
  if (!outline.Empty()) parts_->Shape(outline);
}

void DeviceContext::Rectangle(const RectD& box) {
  const ShapeFrame frame = FrameOf(*parts_, box);
  DrawBoxed(*parts_, frame, [&](const RectD& rect) {
    Parts::Path outline;
    outline.AddRect(rect);
    outline.Transform(frame.toTarget);
    return outline;
  });
}

void DeviceContext::RoundRect(const RectD& box, PointD corner) {
  const ShapeFrame frame = FrameOf(*parts_, box);
  const PointD round = frame.fromLogical.Direction(Finite(corner));
  DrawRound(*parts_, frame, [&](const RectD& rect) {
    Parts::Path outline;
    AddRoundRect(outline, rect, round, frame.toTarget);
    return outline;
  });
}

void DeviceContext::Ellipse(const RectD& box) {
  const ShapeFrame frame = FrameOf(*parts_, box);
  DrawRound(*parts_, frame, [&](const RectD& rect) {
    Parts::Path outline;
    AddEllipse(outline, rect, frame.toTarget);
    return outline;
  });
}

void DeviceContext::Chord(const RectD& box, const ArcEnds& ends) {
  const ShapeFrame frame = FrameOf(*parts_, box);
  DrawRound(*parts_, frame, [&](const RectD& rect) {
    return ArcShape(frame, rect, ends, parts_->state.arcs, false);
  });
}

void DeviceContext::Pie(const RectD& box, const ArcEnds& ends) {
  const ShapeFrame frame = FrameOf(*parts_, box);
  DrawRound(*parts_, frame, [&](const RectD& rect) {
    return ArcShape(frame, rect, ends, parts_->state.arcs, true);
  });
}

}  // namespace rasterkit
