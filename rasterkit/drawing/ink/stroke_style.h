#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <cairo.h>

#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/plane_affine.h>

namespace rasterkit::detail {

/// How a pen draws on the target.
struct StrokeStyle {
  double width = 1;  ///< in pixels; with `nib`, in the units that it maps
  /// Maps the round nib to an ellipse if the axes differ in scale.
  std::optional<PlaneAffine> nib;
  cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT;
  cairo_line_join_t join = CAIRO_LINE_JOIN_MITER;
  double miterLimit = 10;
  std::vector<double> dashes;  ///< in the unit of `width`; empty: solid
  bool gapsAreFilled = false;  ///< gaps get the background color if the background is opaque
  PixelFit fit;
  /// How much of a pixel of the recording device the line covers across: 1, or less for thinner
  /// lines.
  double pixelPart = 1;
  /// Identifies the style, so that applying the current one again is a no-op; 0: never equal.
  uint64_t serial = 0;

  /// How far the line extends beyond its coordinates, in pixels: with a margin for soft edges, and
  /// without.
  double Reach() const;
  double Overhang() const;
};

/// The state that a pen's style depends on.
struct PenSurroundings {
  PlaneAffine toDevice;  ///< logical units to pixels of the recording device
  PlaneAffine deviceToTarget;
  double miterLimit = 10;
};

/// Returns the style of a pen that is not the null pen.
StrokeStyle StrokeStyleOf(const LogicalPen& pen, const PenSurroundings& around);

/// Returns the number of dashes along a line of `length` pixels; 0 without dashes, or if there are
/// too many to be visible: such a line is drawn solid.
double DashesAlong(const StrokeStyle& style, double length);

/// Sets width, caps, joins, dashes and the matrix of the nib.
void ApplyStroke(cairo_t* cairo, const StrokeStyle& style);

/// Strokes the path of a context that has no transform, with the style that is applied.
void StrokeApplied(cairo_t* cairo, const StrokeStyle& style);
/// Applies the style and strokes the path.
void StrokePathWith(cairo_t* cairo, const DrawingPath& path, const StrokeStyle& style);

}  // namespace rasterkit::detail
