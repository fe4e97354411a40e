#include <algorithm>
#include <cmath>
#include <numbers>

#include <rasterkit/drawing/context/arc_outline.h>
#include <rasterkit/drawing/context/device_context_parts.h>
#include <rasterkit/drawing/context/shape_frame.h>

/// Lines and curves of a drawing context.
namespace rasterkit {

using namespace detail;

void DeviceContext::MoveTo(PointD to) {
  parts_->state.position = Finite(to);
  parts_->startsFigure = true;
}

void DeviceContext::LineTo(PointD target) {
  Parts& parts = *parts_;
  const PointD to = Finite(target);
  const StrokeStyle* style = parts.isPathOpen ? nullptr : parts.PenStyle();
  const bool fillsGaps =
      style && style->gapsAreFilled && parts.state.backMode == BackgroundMode::opaque;
  if (style && !fillsGaps) {
    // Fast path without a DrawingPath, for drawings of a hundred thousand lines.
    const PointD a = parts.Mapped(parts.state.position), b = parts.Mapped(to);
    parts.AddStrokeBounds({a.x, a.y, b.x, b.y}, *style);
    parts.painter.StrokeLine(a, b, *style, parts.PenInk(), parts.Code());
  } else if (style || parts.isPathOpen) {
    Parts::Path line = parts.StartedPath();
    line.LineTo(parts.Mapped(to));
    parts.Line(line);
  }
  parts.state.position = to;
}

void DeviceContext::Polyline(std::span<const PointD> points) {
  if (points.empty()) return;
  Parts::Path line;
  line.MoveTo(parts_->Mapped(Finite(points[0])));
  for (const PointD& p : points.subspan(1)) line.LineTo(parts_->Mapped(Finite(p)));
  parts_->Line(line);
  parts_->startsFigure = true;
}

void DeviceContext::PolylineTo(std::span<const PointD> points) {
  if (points.empty()) return;
  Parts::Path line = parts_->StartedPath();
  for (const PointD& p : points) line.LineTo(parts_->Mapped(Finite(p)));
  parts_->Line(line);
  parts_->state.position = Finite(points.back());
}

namespace {

template <class Map>
void AddCurves(DrawingPath& path, std::span<const PointD> points, Map map) {
  for (; points.size() >= 3; points = points.subspan(3)) {
    path.CurveTo(map(points[0]), map(points[1]), map(points[2]));
  }
}

}  // namespace

void DeviceContext::PolyBezier(std::span<const PointD> points) {
  if (points.size() < 4) return;
  const auto map = [&](PointD p) { return parts_->Mapped(Finite(p)); };
  Parts::Path line;
  line.MoveTo(map(points[0]));
  AddCurves(line, points.subspan(1), map);
  parts_->Line(line);
  parts_->startsFigure = true;
}

void DeviceContext::PolyBezierTo(std::span<const PointD> points) {
  if (points.size() < 3) return;
  Parts::Path line = parts_->StartedPath();
  AddCurves(line, points, [&](PointD p) { return parts_->Mapped(Finite(p)); });
  parts_->Line(line);
  parts_->state.position = Finite(points[points.size() / 3 * 3 - 1]);
}

void DeviceContext::PolyDraw(std::span<const PointD> points, std::span<const uint8_t> types) {
  constexpr uint8_t kCloses = 1, kLineTo = 2, kCurveTo = 4, kMoveTo = 6;
  Parts& parts = *parts_;
  const size_t count = std::min(points.size(), types.size());
  const auto map = [&](size_t i) { return parts.Mapped(Finite(points[i])); };
  Parts::Path line;
  PointD figureStart = parts.state.position;
  const auto begin = [&] {
    if (!line.Empty() && !parts.startsFigure) return;
    if (!parts.isPathOpen || parts.startsFigure) line.MoveTo(parts.Mapped(parts.state.position));
    if (parts.startsFigure) figureStart = parts.state.position;
    parts.startsFigure = false;
  };
  for (size_t i = 0; i < count; ++i) {
    const uint8_t kind = types[i] & ~kCloses;
    if (kind == kMoveTo) {
      parts.state.position = figureStart = Finite(points[i]);
      parts.startsFigure = true;
      continue;
    }
    if (kind == kCurveTo) {
      if (i + 2 >= count) break;
      begin();
      line.CurveTo(map(i), map(i + 1), map(i + 2));
      i += 2;
    } else if (kind == kLineTo) {
      begin();
      line.LineTo(map(i));
    } else {
      break;
    }
    parts.state.position = Finite(points[i]);
    if (types[i] & kCloses) {
      line.Close();
      parts.state.position = figureStart;
      parts.startsFigure = true;
    }
  }
  if (!line.Empty()) parts.Line(line);
}

void DeviceContext::PolyPolyline(std::span<const PointD> points, std::span<const uint32_t> counts) {
  for (const uint32_t wanted : counts) {
    const size_t count = std::min<size_t>(wanted, points.size());
    Polyline(points.first(count));
    points = points.subspan(count);
  }
}

void DeviceContext::Arc(const RectD& box, const ArcEnds& ends) {
  const ShapeFrame frame =
      ShapeFrameOf(parts_->state, parts_->deviceToTarget, Finite(box), parts_->PenStyle());
  const EllipseArc arc = ArcBetween(frame, frame.lineBox, ends, parts_->state.arcs);
  Parts::Path line;
  line.MoveTo(frame.toTarget(arc.Start()));
  AddArc(line, arc, frame.toTarget);
  parts_->Line(line);
  parts_->startsFigure = true;
}

void DeviceContext::ArcTo(const RectD& box, const ArcEnds& ends) {
  const ShapeFrame frame =
      ShapeFrameOf(parts_->state, parts_->deviceToTarget, Finite(box), parts_->PenStyle());
  const EllipseArc arc = ArcBetween(frame, frame.lineBox, ends, parts_->state.arcs);
  Parts::Path line = parts_->StartedPath();
  line.LineTo(frame.toTarget(arc.Start()));
  AddArc(line, arc, frame.toTarget);
  parts_->Line(line);
  if (const auto back = frame.fromLogical.Inverse()) parts_->state.position = (*back)(arc.End());
}

void DeviceContext::AngleArc(PointD center, double radius, double startAngle, double sweepAngle) {
  // Counter-clockwise on the page with y downward: larger angles have a smaller y.
  constexpr double kRadians = std::numbers::pi / 180;
  const EllipseArc arc{Finite(center), Finite(radius), Finite(radius),
                       -Finite(startAngle) * kRadians,
                       -std::clamp(Finite(sweepAngle), -720.0, 720.0) * kRadians};
  Parts::Path line = parts_->StartedPath();
  line.LineTo(parts_->Mapped(arc.Start()));
  AddArc(line, arc, parts_->ToTarget());
  parts_->Line(line);
  parts_->state.position = arc.End();
}

}  // namespace rasterkit
