#include <algorithm>
#include <cmath>
#include <span>

#include <rasterkit/drawing/ink/drawing_path.h>

/// Aligns outlines to pixels: lines along an axis get sharp edges; all others keep their place and
/// soft edges.
namespace rasterkit::detail {
namespace {

using Verb = DrawingPath::Verb;

/// Flags of a point where lines meet.
enum : uint8_t {
  kAcross = 1,  ///< a line along the x axis ends here
  kDown = 2,    ///< a line along the y axis ends here
  kEnd = 4,     ///< the first or last point of an open figure
};

/// A line whose extent across its direction is smaller counts as parallel to an axis.
constexpr double kStraight = 1.0 / 64;

uint8_t DirectionOf(PointD from, PointD to) {
  const double width = std::abs(to.x - from.x), height = std::abs(to.y - from.y);
  if (height < kStraight && width > kStraight) return kAcross;
  if (width < kStraight && height > kStraight) return kDown;
  return 0;
}

/// Aligns a coordinate across a line to the grid. `size` is the picture's size in this direction.
double OnGrid(double value, EdgeGrid grid, double size) {
  switch (grid) {
    case EdgeGrid::fill:
      return std::floor(value + 0.5);
    case EdgeGrid::thin: {
      const double center = std::floor(value + 1e-6) + 0.5;
      if (center > size && center < size + 1) return center - 1;
      return center < 0 && center > -1 ? center + 1 : center;
    }
    case EdgeGrid::broad:
      return std::floor(value + 1e-6);
    default:
      return value;
  }
}

PointD Fitted(PointD p, uint8_t flags, const PixelFit& fit) {
  const bool isEnd = fit.keepsEnds && (flags & kEnd) != 0;
  const bool keepsX = isEnd && (flags & (kAcross | kDown)) == kAcross;
  const bool keepsY = isEnd && (flags & (kAcross | kDown)) == kDown;
  if (!keepsX) p.x += fit.toCenter.x;
  if (!keepsY) p.y += fit.toCenter.y;
  if (flags & kDown) p.x = OnGrid(p.x, fit.grid, fit.width);
  if (flags & kAcross) p.y = OnGrid(p.y, fit.grid, fit.height);
  // Ends along a line lie between pixels, too.
  if (keepsX) p.x = OnGrid(p.x, EdgeGrid::fill, 0);
  if (keepsY) p.y = OnGrid(p.y, EdgeGrid::fill, 0);
  return p;
}

/// One figure: verbs[first, last), with its points from `point` on.
struct Figure {
  size_t first, last, point;
  bool isClosed;
};

/// Records for each point of a figure which lines end there; `flags` is parallel to the points.
void NoteDirections(std::span<const Verb> verbs, const PointD* points, const Figure& figure,
                    uint8_t* flags) {
  size_t at = figure.point, start = figure.point;
  bool hasPoint = false;
  const auto join = [&](size_t from, size_t to) {
    const uint8_t direction = DirectionOf(points[from], points[to]);
    flags[from] |= direction;
    flags[to] |= direction;
  };
  for (size_t i = figure.first; i < figure.last; ++i) {
    switch (verbs[i]) {
      case Verb::move:
        hasPoint = true;
        break;
      case Verb::line:
        if (hasPoint) join(at, at + 1);
        at += hasPoint ? 1 : 0;
        hasPoint = true;
        break;
      case Verb::curve:
        at += hasPoint ? 3 : 2;
        hasPoint = true;
        break;
      case Verb::close:
        if (at != start) join(at, start);
        break;
    }
  }
  if (!figure.isClosed) {
    // A figure that returns to its first point without being closed has no free ends.
    if (points[start] == points[at]) {
      flags[start] = flags[at] = static_cast<uint8_t>(flags[start] | flags[at]);
    } else {
      flags[start] |= kEnd;
      flags[at] |= kEnd;
    }
  }
}

/// A thinner filled figure keeps its edges in place: aligned, both edges could land on the same
/// line and the figure would vanish.
constexpr double kThinnest = 2;

void LeaveThinAlone(std::span<const PointD> points, uint8_t* flags) {
  const auto [left, right] = std::minmax_element(
      points.begin(), points.end(), [](const PointD& a, const PointD& b) { return a.x < b.x; });
  const auto [top, bottom] = std::minmax_element(
      points.begin(), points.end(), [](const PointD& a, const PointD& b) { return a.y < b.y; });
  const bool isNarrow = right->x - left->x < kThinnest, isFlat = bottom->y - top->y < kThinnest;
  if (!isNarrow && !isFlat) return;
  const auto kept = static_cast<uint8_t>(~((isNarrow ? kDown : 0) | (isFlat ? kAcross : 0)));
  for (size_t i = 0; i < points.size(); ++i) flags[i] &= kept;
}

std::vector<uint8_t> PointFlags(const DrawingPath& path, EdgeGrid grid) {
  const auto& verbs = path.Verbs();
  std::vector<uint8_t> flags(path.Points().size(), 0);
  size_t point = 0;
  for (size_t first = 0; first < verbs.size();) {
    size_t last = first, points = 0;
    do {
      points += verbs[last] == Verb::curve ? 3 : verbs[last] == Verb::close ? 0 : 1;
      ++last;
    } while (last < verbs.size() && verbs[last] != Verb::move && verbs[last - 1] != Verb::close);
    if (points > 0) {
      NoteDirections(verbs, path.Points().data(),
                     {first, last, point, verbs[last - 1] == Verb::close}, flags.data());
      if (grid == EdgeGrid::fill) {
        LeaveThinAlone(std::span(path.Points()).subspan(point, points), flags.data() + point);
      }
    }
    point += points;
    first = last;
  }
  return flags;
}

}  // namespace

void FitLine(PointD& from, PointD& to, const PixelFit& fit) {
  const auto flags = static_cast<uint8_t>(DirectionOf(from, to) | kEnd);
  from = Fitted(from, flags, fit);
  to = Fitted(to, flags, fit);
}

void DrawingPath::EmitTo(cairo_t* cairo, const PixelFit& fit) const {
  const bool fits = fit.grid != EdgeGrid::none;
  const std::vector<uint8_t> flags = fits ? PointFlags(*this, fit.grid) : std::vector<uint8_t>();
  size_t at = 0;
  const auto next = [&] {
    const PointD p = fits ? Fitted(points_[at], flags[at], fit) : points_[at];
    ++at;
    return CairoPoint(p);
  };
  for (const Verb verb : verbs_) {
    switch (verb) {
      case Verb::move: {
        const PointD p = next();
        cairo_move_to(cairo, p.x, p.y);
        break;
      }
      case Verb::line: {
        const PointD p = next();
        cairo_line_to(cairo, p.x, p.y);
        break;
      }
      case Verb::curve: {
        const PointD a = next(), b = next(), c = next();
        cairo_curve_to(cairo, a.x, a.y, b.x, b.y, c.x, c.y);
        break;
      }
      case Verb::close:
        cairo_close_path(cairo);
        break;
    }
  }
}

}  // namespace rasterkit::detail
