#pragma once

#include <span>

#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/drawing/ink/stroke_style.h>

/// Costs of operations in the unit of DrawingWork: measured and rounded up.
namespace rasterkit::detail {

/// Costs per pixel: filled with one color; composed of brush, picture and coverage; sampled from a
/// bitmap or computed for a gradient; reached by a flood fill.
inline constexpr double kPlainPixel = 0.5, kComposedPixel = 6, kSampledPixel = 20, kFloodPixel = 60;
/// Cost per pixel of decoding a bitmap.
inline constexpr double kSourcePixel = 4;
/// Costs per letter, without its pixels: drawn by the font engine; drawn as an outline.
inline constexpr double kLetter = 1500, kLetterOutline = 15'000;
/// Cost of drawing letters in a size or direction for the first time.
inline constexpr double kNewLetters = 50'000;
/// Cost of a shape, even if it covers nothing.
inline constexpr double kShape = 200;
/// Cost per rectangle of a region, or per row of a rectangle.
inline constexpr double kRegionRect = 30;

/// Returns the number of pixels of a box.
inline double PixelsOf(const PixelRect& box) {
  return IsEmpty(box) ? 0 : (double{1} * box.right - box.left) * (double{1} * box.bottom - box.top);
}

/// Returns the cost of decoding a bitmap.
inline double ReadingCost(const Raster& bitmap) {
  return PixelsOf({0, 0, bitmap.Width(), bitmap.Height()}) * kSourcePixel;
}

/// Returns the cost of computing the coverage of a path inside the box.
double OutlineCost(const DrawingPath& path, const PixelRect& box);
/// Returns the cost of stroking a path. Throws LimitError if the stroke has more pieces than may be
/// held in memory.
double StrokeCost(const DrawingPath& path, const StrokeStyle& style, const PixelRect& box);
double StrokeCost(PointD from, PointD to, const StrokeStyle& style, const PixelRect& box);

/// Returns the cost of combining two areas.
double CombinationCost(const ClipArea& a, const ClipArea& b, RegionMode mode);
/// Throws LimitError if the rectangles could cut each other into more pieces than may be held in
/// memory. Rectangles that a file stores as one region do not overlap and always pass.
void RequireRegion(std::span<const PixelRect> rects, const PixelRect& frame);

}  // namespace rasterkit::detail
