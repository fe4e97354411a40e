#pragma once

#include <span>

#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/drawing/ink/stroke_style.h>

/// What operations cost, in the unit of DrawingWork: measured, and rounded up.
namespace rasterkit::detail {

/// A pixel that gets one colour; that is computed from brush, picture and coverage; that is looked
/// up in a bitmap or computed for a gradient; that a flood fill reaches.
inline constexpr double kPlainPixel = 0.5, kComposedPixel = 6, kSampledPixel = 20, kFloodPixel = 60;
/// A pixel of a bitmap that is read.
inline constexpr double kSourcePixel = 4;
/// A letter of a text, beside its pixels; as an outline.
inline constexpr double kLetter = 1500, kLetterOutline = 15'000;
/// A size, or a direction, that letters have not been drawn in before.
inline constexpr double kNewLetters = 50'000;
/// A shape that may cover nothing.
inline constexpr double kShape = 200;
/// A rectangle of a region, or a row of one.
inline constexpr double kRegionRect = 30;

/// Pixels of a box.
inline double PixelsOf(const PixelRect& box) {
  return IsEmpty(box) ? 0 : (double{1} * box.right - box.left) * (double{1} * box.bottom - box.top);
}

/// Of reading a bitmap.
inline double ReadingCost(const Raster& bitmap) {
  return PixelsOf({0, 0, bitmap.Width(), bitmap.Height()}) * kSourcePixel;
}

/// Of finding out what the path covers in the box.
double OutlineCost(const DrawingPath& path, const PixelRect& box);
/// The same for a line along the path. Throws LimitError for one that is made of more pieces than
/// memory is taken for.
double StrokeCost(const DrawingPath& path, const StrokeStyle& style, const PixelRect& box);
double StrokeCost(PointD from, PointD to, const StrokeStyle& style, const PixelRect& box);

/// Of combining two areas.
double CombinationCost(const ClipArea& a, const ClipArea& b, RegionMode mode);
/// Throws LimitError for rectangles that could cut each other into more than memory is taken for.
/// Those of a region that was stored as one lie side by side and never do.
void RequireRegion(std::span<const PixelRect> rects, const PixelRect& frame);

}  // namespace rasterkit::detail
