#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <cairo.h>

#include <rasterkit/drawing/ink/affine.h>

namespace rasterkit::detail {

/// How outlines are put onto pixels.
enum class EdgeGrid {
  none,   ///< as they are
  fill,   ///< edges along the axes lie between pixels
  thin,   ///< for lines of an odd number of pixels: along the axes they run through pixel centres
  broad,  ///< for lines of an even number of pixels: along the axes they run between pixels
};

/// What puts an outline onto pixels: the grid, and how far a line lies from its coordinates, which
/// name the upper left corner of a pixel of the recording device and mean its centre.
struct PixelFit {
  EdgeGrid grid = EdgeGrid::none;
  PointD toCenter = {};
  /// Ends of open lines along an axis stay where they are: pixels of a line are counted from its
  /// first to before its last.
  bool keepsEnds = false;
  /// A line just outside this size is pulled inside: pictures are framed by lines on their edge.
  double width = 0, height = 0;
};

/// Cuts to what cairo's fixed-point numbers hold; numbers that are not finite become 0.
double CairoNumber(double value);
inline PointD CairoPoint(PointD p) {
  return {CairoNumber(p.x), CairoNumber(p.y)};
}

/// Figures of lines and curves, in pixels of the target.
class DrawingPath {
 public:
  enum class Verb : uint8_t { move, line, curve, close };

  void MoveTo(PointD to);
  void LineTo(PointD to);
  void CurveTo(PointD c1, PointD c2, PointD to);
  /// Lines and curves without a beginning start at the last figure's first point.
  void Close();
  void AddRect(const RectD& rect);
  void Append(const DrawingPath& other);
  void Clear();
  void Transform(const Affine& map);

  bool Empty() const { return verbs_.empty(); }
  const std::vector<Verb>& Verbs() const { return verbs_; }
  /// One for a move or a line, three for a curve, none for a close.
  const std::vector<PointD>& Points() const { return points_; }
  /// Of all points, control points included; nothing for an empty path.
  std::optional<RectD> Bounds() const;
  /// The rectangle, when the path is no more than one along the axes.
  std::optional<RectD> AsRect() const;

  /// Adds the path to the one of a cairo context without a transform.
  void EmitTo(cairo_t* cairo, const PixelFit& fit = {}) const;

 private:
  std::vector<Verb> verbs_;
  std::vector<PointD> points_;
};

/// The fit of a lone line, for those who draw many without a path.
void FitLine(PointD& from, PointD& to, const PixelFit& fit);

}  // namespace rasterkit::detail
