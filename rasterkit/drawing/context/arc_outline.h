#pragma once

#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/plane_affine.h>

/// Ellipses and elliptical arcs as curves, mapped to the target.
namespace rasterkit::detail {

/// An elliptical arc. Angles are in radians on the unit circle that is mapped to the ellipse, from
/// the x axis toward the y axis of the ellipse's coordinates.
struct EllipseArc {
  PointD center;
  double radiusX = 0, radiusY = 0;
  double start = 0, sweep = 0;

  PointD PointAt(double angle) const;
  PointD Start() const { return PointAt(start); }
  PointD End() const { return PointAt(start + sweep); }
};

/// Returns the full ellipse inside a box.
EllipseArc WholeEllipse(const RectD& box);

/// Returns the angle at which the ray from the center through `point` meets the ellipse.
double AngleToward(const EllipseArc& ellipse, PointD point);

/// Continues the path with an arc; the path must end at the start of the arc.
void AddArc(DrawingPath& path, const EllipseArc& arc, const PlaneAffine& map);
void AddEllipse(DrawingPath& path, const RectD& box, const PlaneAffine& map);
/// `corner` is the width and height of the ellipse at each corner.
void AddRoundRect(DrawingPath& path, const RectD& box, PointD corner, const PlaneAffine& map);

}  // namespace rasterkit::detail
