#include <algorithm>
#include <cmath>
#include <numbers>

#include <rasterkit/drawing/context/arc_outline.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>

namespace rasterkit::detail {
namespace {

constexpr double kQuarter = std::numbers::pi / 2;

}  // namespace

PointD EllipseArc::PointAt(double angle) const {
  return {center.x + radiusX * std::cos(angle), center.y + radiusY * std::sin(angle)};
}

EllipseArc WholeEllipse(const RectD& box) {
  return {.center = {(box.left + box.right) / 2, (box.top + box.bottom) / 2},
          .radiusX = std::abs(box.Width()) / 2,
          .radiusY = std::abs(box.Height()) / 2,
          .sweep = 4 * kQuarter};
}

double AngleToward(const EllipseArc& ellipse, PointD point) {
  if (ellipse.radiusX == 0 || ellipse.radiusY == 0) return 0;
  const double x = (point.x - ellipse.center.x) / ellipse.radiusX;
  const double y = (point.y - ellipse.center.y) / ellipse.radiusY;
  return std::atan2(y, x);
}

void AddArc(DrawingPath& path, const EllipseArc& arc, const PlaneAffine& map) {
  // Angles toward non-finite points.
  if (std::isnan(arc.sweep)) return;
  const double turns = std::clamp(arc.sweep, -8 * kQuarter, 8 * kQuarter);
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(turns) / kQuarter - 1e-9)));
  const double step = turns / pieces;
  // A Bezier curve that touches the arc at both ends and meets it in the middle.
  const double reach = 4.0 / 3 * std::tan(step / 4);
  for (int i = 0; i < pieces; ++i) {
    const double a = arc.start + i * step, b = a + step;
    const PointD from = arc.PointAt(a), to = arc.PointAt(b);
    const PointD leaving{from.x - reach * arc.radiusX * std::sin(a),
                         from.y + reach * arc.radiusY * std::cos(a)};
    const PointD arriving{to.x + reach * arc.radiusX * std::sin(b),
                          to.y - reach * arc.radiusY * std::cos(b)};
    path.CurveTo(map(leaving), map(arriving), map(to));
  }
}

void AddEllipse(DrawingPath& path, const RectD& box, const PlaneAffine& map) {
  const EllipseArc ellipse = WholeEllipse(box);
  path.MoveTo(map(ellipse.Start()));
  AddArc(path, ellipse, map);
  path.Close();
}

void AddRoundRect(DrawingPath& path, const RectD& rect, PointD corner, const PlaneAffine& map) {
  const RectD box = Normalized(rect);
  const double rx = std::min(std::abs(corner.x), box.Width()) / 2;
  const double ry = std::min(std::abs(corner.y), box.Height()) / 2;
  if (rx == 0 || ry == 0) {
    path.MoveTo(map({box.left, box.top}));
    path.LineTo(map({box.right, box.top}));
    path.LineTo(map({box.right, box.bottom}));
    path.LineTo(map({box.left, box.bottom}));
    path.Close();
    return;
  }
  const PointD centers[] = {{box.right - rx, box.bottom - ry},
                            {box.left + rx, box.bottom - ry},
                            {box.left + rx, box.top + ry},
                            {box.right - rx, box.top + ry}};
  for (int i = 0; i < 4; ++i) {
    const EllipseArc arc{centers[i], rx, ry, i * kQuarter, kQuarter};
    if (i == 0) {
      path.MoveTo(map(arc.Start()));
    } else {
      path.LineTo(map(arc.Start()));
    }
    AddArc(path, arc, map);
  }
  path.Close();
}

}  // namespace rasterkit::detail
