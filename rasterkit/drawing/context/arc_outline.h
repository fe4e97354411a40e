#pragma once

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/drawing/ink/drawing_path.h>

/// Ellipses and parts of them as curves, through a map to where they are drawn.
namespace rasterkit::detail {

/// A part of an ellipse. Angles are in radians of the circle that the ellipse is made of, growing
/// from the x axis toward the y axis of its own coordinates.
struct EllipseArc {
  PointD center;
  double radiusX = 0, radiusY = 0;
  double start = 0, sweep = 0;

  PointD PointAt(double angle) const;
  PointD Start() const { return PointAt(start); }
  PointD End() const { return PointAt(start + sweep); }
};

/// The ellipse inside a box, all of it.
EllipseArc WholeEllipse(const RectD& box);

/// The angle at which the ray from the centre through `point` meets the ellipse.
double AngleToward(const EllipseArc& ellipse, PointD point);

/// Goes on from the path's end, which must be the arc's start.
void AddArc(DrawingPath& path, const EllipseArc& arc, const Affine& map);
void AddEllipse(DrawingPath& path, const RectD& box, const Affine& map);
/// `corner` is width and height of the ellipse at each corner.
void AddRoundRect(DrawingPath& path, const RectD& box, PointD corner, const Affine& map);

}  // namespace rasterkit::detail
