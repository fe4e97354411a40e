#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <cairo.h>

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/ink/drawing_path.h>

namespace rasterkit::detail {

/// How a pen draws on the target.
struct StrokeStyle {
  double width = 1;  ///< pixels; with `nib` the units it is made of
  /// What makes the pen's round nib an ellipse, where the axes differ in scale.
  std::optional<Affine> nib;
  cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT;
  cairo_line_join_t join = CAIRO_LINE_JOIN_MITER;
  double miterLimit = 10;
  std::vector<double> dashes;  ///< in the unit of `width`; empty: none
  bool gapsAreFilled = false;  ///< with the background colour, where that is opaque
  PixelFit fit;
  /// How much of a pixel of the recording device a line covers across: 1, or less for thinner ones.
  double pixelPart = 1;
  /// Different for styles that differ, so that one that is set already is known; 0: never known.
  uint64_t serial = 0;

  /// How far the line reaches beyond its coordinates, in pixels: with room for soft edges, and
  /// without.
  double Reach() const;
  double Overhang() const;
};

/// What a pen's style depends on beside the pen.
struct PenSurroundings {
  Affine toDevice;  ///< logical units to pixels of the recording device
  Affine deviceToTarget;
  double miterLimit = 10;
};

/// The style of a pen that draws anything.
StrokeStyle StrokeStyleOf(const LogicalPen& pen, const PenSurroundings& around);

/// Dashes along a line of so many pixels; 0 without any, and where there are more than anybody
/// sees: such a line is drawn without gaps.
double DashesAlong(const StrokeStyle& style, double length);

/// Sets width, caps, joins, dashes and the nib's matrix.
void ApplyStroke(cairo_t* cairo, const StrokeStyle& style);

/// Strokes the path of the context, which has no transform, with the style that is applied.
void StrokeApplied(cairo_t* cairo, const StrokeStyle& style);
/// Applies the style and strokes the path with it.
void StrokePathWith(cairo_t* cairo, const DrawingPath& path, const StrokeStyle& style);

}  // namespace rasterkit::detail
