#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <cairo.h>

#include <rasterkit/drawing/ink/plane_affine.h>

namespace rasterkit::detail {

/// How outlines are aligned to pixels.
enum class EdgeGrid {
  none,   ///< not aligned
  fill,   ///< edges along the axes lie between pixels
  thin,   ///< lines of odd width: run through pixel centers along the axes
  broad,  ///< lines of even width: run between pixels along the axes
};

/// How an outline is aligned to pixels: the grid, and the offset of lines. A coordinate names the
/// upper left corner of a pixel of the recording device, but a line runs through the pixel's
/// center.
struct PixelFit {
  EdgeGrid grid = EdgeGrid::none;
  PointD toCenter = {};
  /// Keeps the ends of open lines along an axis in place: a line covers its pixels from the first
  /// to the one before the last.
  bool keepsEnds = false;
  /// The size of the picture. Lines just outside it are moved inside, as pictures have frames on
  /// their edge.
  double width = 0, height = 0;
};

/// Clamps to the range of cairo's fixed-point numbers; non-finite numbers become 0.
double CairoNumber(double value);
inline PointD CairoPoint(PointD p) {
  return {CairoNumber(p.x), CairoNumber(p.y)};
}

/// Figures made of lines and curves, in pixels of the target.
class DrawingPath {
 public:
  enum class Verb : uint8_t { move, line, curve, close };

  void MoveTo(PointD to);
  void LineTo(PointD to);
  void CurveTo(PointD c1, PointD c2, PointD to);
  /// Closes the figure. A line or curve without a preceding move starts at the first point of the
  /// last figure.
  void Close();
  void AddRect(const RectD& rect);
  void Append(const DrawingPath& other);
  void Clear();
  void Transform(const PlaneAffine& map);

  bool Empty() const { return verbs_.empty(); }
  const std::vector<Verb>& Verbs() const { return verbs_; }
  /// Returns the points: one for a move or a line, three for a curve, none for a close.
  const std::vector<PointD>& Points() const { return points_; }
  /// Returns the bounding box of all points, including control points; nothing for an empty path.
  std::optional<RectD> Bounds() const;
  /// Returns the rectangle if the path is a single rectangle along the axes.
  std::optional<RectD> AsRect() const;

  /// Adds the path to the path of a cairo context that has no transform.
  void EmitTo(cairo_t* cairo, const PixelFit& fit = {}) const;

 private:
  std::vector<Verb> verbs_;
  std::vector<PointD> points_;
};

/// Aligns a single line, for callers that draw many lines without a path.
void FitLine(PointD& from, PointD& to, const PixelFit& fit);

}  // namespace rasterkit::detail
