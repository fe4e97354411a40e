#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Verb = DrawingPath::Verb;

/// Costs per pixel row that an edge crosses, and per piece of an outline.
constexpr double kEdgeRow = 100, kPiece = 40;
/// cairo needs about 100 bytes per piece.
constexpr double kMostPieces = 1 << 24;
constexpr size_t kMostRects = size_t{1} << 24;

/// The visible pixels, extended by the reach of the pen.
class View {
 public:
  View(const PixelRect& pixels, double reach) : pixels_(pixels), reach_(reach) {}

  /// Returns whether a segment between these points may touch the view.
  bool Meets(PointD a, PointD b) const {
    return std::max(a.x, b.x) >= pixels_.left - reach_ &&
           std::min(a.x, b.x) <= pixels_.right + reach_ &&
           std::max(a.y, b.y) >= pixels_.top - reach_ &&
           std::min(a.y, b.y) <= pixels_.bottom + reach_;
  }
  /// Returns the number of rows that a line crosses.
  double Rows(PointD a, PointD b) const {
    const double top = std::max<double>(pixels_.top, std::min(a.y, b.y) - reach_);
    const double bottom = std::min<double>(pixels_.bottom, std::max(a.y, b.y) + reach_);
    return std::max(0.0, bottom - top);
  }
  /// Returns an upper bound of the length of a line inside the view.
  double Longest() const {
    return double{1} * pixels_.right - pixels_.left + pixels_.bottom - pixels_.top;
  }

 private:
  const PixelRect pixels_;
  const double reach_;
};

/// Sums of an outline; a curve counts as the lines between its points.
class Extent {
 public:
  Extent(const PixelRect& box, double reach) : view_(box, reach) {}

  double pieces = 0, length = 0, rows = 0;
  /// Sums of the parts near the picture, as cairo skips the rest: corners that the nib turns
  /// around, and the length.
  double seenCorners = 0, seenLength = 0;

  void AddPiece() { ++pieces; }
  void AddLine(PointD from, PointD to) {
    ++pieces;
    if (AddPart(CairoPoint(from), CairoPoint(to))) ++seenCorners;
  }
  /// `from` is the point before `points`.
  void AddCurve(PointD from, const PointD* points) {
    const double before = length;
    PointD last = CairoPoint(from), least = last, most = last;
    for (int i = 0; i < 3; ++i) {
      const PointD next = CairoPoint(points[i]);
      AddPart(last, next);
      least = {std::min(least.x, next.x), std::min(least.y, next.y)};
      most = {std::max(most.x, next.x), std::max(most.y, next.y)};
      last = next;
    }
    const bool isSeen = view_.Meets(least, most);
    // The nib turns in small steps along a curve, at most once around.
    pieces += isSeen ? 2 + 9 * std::sqrt(length - before) : 2;
    if (isSeen) seenCorners += 2;
  }

 private:
  bool AddPart(PointD a, PointD b) {
    const double distance = std::hypot(b.x - a.x, b.y - a.y);
    length += distance;
    rows += view_.Rows(a, b);
    if (!view_.Meets(a, b)) return false;
    seenLength += std::min(distance, view_.Longest());
    return true;
  }

  const View view_;
};

Extent ExtentOf(const DrawingPath& path, const PixelRect& box, double reach) {
  Extent extent(box, reach);
  const auto& points = path.Points();
  size_t at = 0;
  for (const Verb verb : path.Verbs()) {
    const PointD last = at > 0 ? points[at - 1] : PointD();
    switch (verb) {
      case Verb::move:
        extent.AddPiece();
        ++at;
        break;
      case Verb::line:
        extent.AddLine(last, points[at]);
        ++at;
        break;
      case Verb::curve:
        extent.AddCurve(last, points.data() + at);
        at += 3;
        break;
      case Verb::close:
        extent.AddPiece();
        break;
    }
  }
  return extent;
}

double WidthOf(const StrokeStyle& style) {
  return style.width * (style.nib ? style.nib->MeanScale() : 1);
}

/// Returns the number of nib points at a join or a cap.
double NibPoints(const StrokeStyle& style) {
  const bool isRound = style.cap == CAIRO_LINE_CAP_ROUND || style.join == CAIRO_LINE_JOIN_ROUND;
  return isRound ? 3 + 2 * std::sqrt(WidthOf(style)) : 3;
}

double CostOf(const Extent& extent, const StrokeStyle& style, double area) {
  const double dashes = DashesAlong(style, extent.length);
  const double seenDashes = dashes * std::min(1.0, extent.seenLength / (extent.length + 1));
  const double pieces =
      extent.pieces + 2 * dashes + (extent.seenCorners + seenDashes) * NibPoints(style);
  if (!(pieces <= kMostPieces)) {
    throw LimitError("metafile: a line has too many pieces");
  }
  const double covered = std::min(extent.seenLength * WidthOf(style), extent.pieces * area);
  return pieces * kPiece + 2 * extent.rows * kEdgeRow + covered * kPlainPixel;
}

bool MixesMasks(const ClipArea& a, const ClipArea& b, RegionMode mode) {
  if (mode == RegionMode::intersection) return a.HasMask() && b.HasMask();
  return b.HasMask() || (a.HasMask() && mode != RegionMode::difference);
}

}  // namespace

double OutlineCost(const DrawingPath& path, const PixelRect& box) {
  const Extent extent = ExtentOf(path, box, 0);
  if (!(extent.pieces <= kMostPieces)) {
    throw LimitError("metafile: an outline has too many pieces");
  }
  return extent.pieces * kPiece + extent.rows * kEdgeRow;
}

double StrokeCost(const DrawingPath& path, const StrokeStyle& style, const PixelRect& box) {
  return CostOf(ExtentOf(path, box, WidthOf(style) / 2), style, PixelsOf(box));
}

double StrokeCost(PointD from, PointD to, const StrokeStyle& style, const PixelRect& box) {
  Extent extent(box, WidthOf(style) / 2);
  extent.AddLine(from, to);
  return CostOf(extent, style, PixelsOf(box));
}

double CombinationCost(const ClipArea& a, const ClipArea& b, RegionMode mode) {
  if (mode == RegionMode::copy) return 0;
  const double rects = static_cast<double>(a.Rects().size() + b.Rects().size()) * kRegionRect;
  if (!MixesMasks(a, b, mode)) return rects;
  return rects + (PixelsOf(a.Bounds()) + PixelsOf(b.Bounds())) * kComposedPixel;
}

void RequireRegion(std::span<const PixelRect> rects, const PixelRect& frame) {
  bool isBanded = true;
  for (size_t i = 1; i < rects.size(); ++i) {
    const PixelRect &last = rects[i - 1], &next = rects[i];
    const bool isBeside =
        next.top == last.top && next.bottom == last.bottom && next.left >= last.right;
    isBanded = isBanded && (isBeside || next.top >= last.bottom);
  }
  if (isBanded) return;
  const auto height = static_cast<size_t>(std::max(0, frame.bottom - frame.top));
  const auto width = static_cast<size_t>(std::max(0, frame.right - frame.left));
  const size_t bands = std::min(2 * rects.size(), height);
  const size_t longest = std::min(rects.size(), width / 2 + 1);
  if (bands > kMostRects / longest) {
    throw LimitError("metafile: a region has too many rectangles");
  }
}

}  // namespace rasterkit::detail
