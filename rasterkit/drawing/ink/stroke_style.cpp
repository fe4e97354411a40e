#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>

#include <rasterkit/drawing/ink/cairo_handles.h>
#include <rasterkit/drawing/ink/stroke_style.h>

namespace rasterkit::detail {
namespace {

using namespace pen_style;

constexpr double kMaxPenWidth = 1 << 20;
constexpr double kThinMiterLimit = 1.5;

/// Returns the lengths of dashes and gaps: in pixels of the device for a cosmetic pen, in multiples
/// of the width for a geometric one.
std::span<const double> NamedDashes(uint32_t line, bool isGeometric) {
  static constexpr double kCosmeticDash[] = {18, 6}, kCosmeticDot[] = {3, 3},
                          kCosmeticDashDot[] = {9, 6, 3, 6},
                          kCosmeticDashDotDot[] = {9, 3, 3, 3, 3, 3}, kAlternating[] = {1, 1};
  static constexpr double kBroadDash[] = {3, 1}, kBroadDot[] = {1, 1},
                          kBroadDashDot[] = {3, 1, 1, 1}, kBroadDashDotDot[] = {3, 1, 1, 1, 1, 1};
  switch (line) {
    case kDash:
      return isGeometric ? std::span<const double>(kBroadDash) : kCosmeticDash;
    case kDot:
      return isGeometric ? std::span<const double>(kBroadDot) : kCosmeticDot;
    case kDashDot:
      return isGeometric ? std::span<const double>(kBroadDashDot) : kCosmeticDashDot;
    case kDashDotDot:
      return isGeometric ? std::span<const double>(kBroadDashDotDot) : kCosmeticDashDotDot;
    case pen_style::kAlternate:
      return isGeometric ? std::span<const double>() : kAlternating;
    default:
      return {};
  }
}

/// `unit` is the length of 1 in the unit of the style. cairo rejects negative lengths and patterns
/// of total length 0.
std::vector<double> Dashes(const LogicalPen& pen, bool isGeometric, double width, double unit) {
  const uint32_t line = pen.style & pen_style::kLine;
  std::vector<double> dashes;
  if (line == kUser) {
    const size_t count = std::min<size_t>(pen.dashes.size(), 16);
    for (size_t i = 0; i < count; ++i) {
      dashes.push_back(std::isfinite(pen.dashes[i]) ? std::abs(pen.dashes[i]) * unit : 0);
    }
  } else {
    for (const double length : NamedDashes(line, isGeometric)) {
      dashes.push_back(length * (isGeometric ? width : unit));
    }
  }
  const double sum = std::accumulate(dashes.begin(), dashes.end(), 0.0);
  if (!(sum > 1e-3) || !std::isfinite(sum)) dashes.clear();
  return dashes;
}

cairo_line_cap_t Cap(uint32_t style) {
  switch (style & kCap) {
    case kSquareCap:
      return CAIRO_LINE_CAP_SQUARE;
    case kFlatCap:
      return CAIRO_LINE_CAP_BUTT;
    default:
      return CAIRO_LINE_CAP_ROUND;
  }
}

cairo_line_join_t Join(uint32_t style) {
  switch (style & kJoin) {
    case kBevelJoin:
      return CAIRO_LINE_JOIN_BEVEL;
    case kMiterJoin:
      return CAIRO_LINE_JOIN_MITER;
    default:
      return CAIRO_LINE_JOIN_ROUND;
  }
}

/// Aligns a line of that width, in pixels of the target, to pixels.
void Fit(StrokeStyle& style, double width, const PlaneAffine& deviceToTarget) {
  // Lines run through the centers of the device's pixels. A line thinner than such a pixel is drawn
  // at the pixel's upper left, where areas end.
  const double pixel = deviceToTarget.MeanScale();
  style.pixelPart = pixel > 0 ? std::min(1.0, width / pixel) : 1;
  const double half = style.pixelPart / 2;
  const bool isOdd = std::fmod(std::floor(width + 0.5), 2) == 1;
  style.fit.grid = isOdd ? EdgeGrid::thin : EdgeGrid::broad;
  style.fit.toCenter = deviceToTarget.Direction({half, half});
}

/// Pens thinner than a device pixel were drawn one pixel wide on the recording device. On a finer
/// target they get their nominal width.
double ThinWidth(const LogicalPen& pen, const PenSurroundings& around) {
  const double width =
      std::abs(pen.width) * around.toDevice.Then(around.deviceToTarget).MeanScale();
  return std::isfinite(width) ? std::max(1.0, width) : 1;
}

StrokeStyle Cosmetic(const LogicalPen& pen, const PenSurroundings& around) {
  const double unit = std::max(1.0, around.deviceToTarget.MeanScale());
  StrokeStyle style;
  style.width = std::min(pen.width == 0 ? unit : ThinWidth(pen, around), kMaxPenWidth);
  // Corners are whole pixels, but sharp bends get no spikes.
  style.miterLimit = kThinMiterLimit;
  style.dashes = Dashes(pen, false, 1, unit);
  Fit(style, style.width, around.deviceToTarget);
  style.fit.keepsEnds = true;
  return style;
}

bool KeepsCircles(const PlaneAffine& map) {
  const double a = std::hypot(map.m11, map.m12), b = std::hypot(map.m21, map.m22);
  const double skew = map.m11 * map.m21 + map.m12 * map.m22;
  return std::abs(a - b) <= 0.01 * std::max(a, b) && std::abs(skew) <= 0.01 * a * b;
}

StrokeStyle Broad(const LogicalPen& pen, const PenSurroundings& around) {
  const PlaneAffine toTarget = around.toDevice.Then(around.deviceToTarget);
  const double width = std::abs(pen.width), scale = toTarget.MeanScale();
  const bool isGeometric = (pen.style & kGeometric) != 0;
  StrokeStyle style;
  style.width = std::clamp(width * scale, 1.0, kMaxPenWidth);
  double unit = scale;
  if (isGeometric && !KeepsCircles(toTarget) && width * scale > 1 && toTarget.Inverse()) {
    style.nib = toTarget;
    style.width = width;
    unit = 1;
  }
  style.cap = isGeometric ? Cap(pen.style) : CAIRO_LINE_CAP_ROUND;
  style.join = isGeometric ? Join(pen.style) : CAIRO_LINE_JOIN_ROUND;
  style.miterLimit = std::max(1.0, around.miterLimit);
  if (isGeometric) style.dashes = Dashes(pen, true, style.width, unit);
  Fit(style, width * scale, around.deviceToTarget);
  return style;
}

double Length(const DrawingPath& path) {
  double length = 0;
  const auto& points = path.Points();
  for (size_t i = 1; i < points.size(); ++i) {
    const PointD a = CairoPoint(points[i - 1]), b = CairoPoint(points[i]);
    length += std::hypot(b.x - a.x, b.y - a.y);
  }
  return length;
}

}  // namespace

double DashesAlong(const StrokeStyle& style, double length) {
  if (style.dashes.empty()) return 0;
  // Each dash takes time, even far outside the picture.
  constexpr double kMost = 200'000;
  const double scale = style.nib ? style.nib->MeanScale() : 1;
  const double period = std::accumulate(style.dashes.begin(), style.dashes.end(), 0.0) * scale;
  const double count = length / period * static_cast<double>(style.dashes.size());
  return count < kMost ? count : 0;
}

double StrokeStyle::Reach() const {
  const double scale = nib ? std::hypot(nib->m11, nib->m12) + std::hypot(nib->m21, nib->m22) : 1;
  const double join = this->join == CAIRO_LINE_JOIN_MITER ? miterLimit : 1.5;
  return width * scale * std::min(join, 1000.0) / 2 + 2;
}

double StrokeStyle::Overhang() const {
  // Corners of thin pens are single pixels, not spikes.
  const bool hasSpikes = join == CAIRO_LINE_JOIN_MITER && miterLimit > kThinMiterLimit;
  return hasSpikes || cap == CAIRO_LINE_CAP_SQUARE || nib ? Reach() - 2 : width / 2;
}

StrokeStyle StrokeStyleOf(const LogicalPen& pen, const PenSurroundings& around) {
  const double deviceWidth = std::abs(pen.width) * around.toDevice.MeanScale();
  const bool isGeometric = (pen.style & kGeometric) != 0;
  const bool isCosmetic = isGeometric ? pen.width == 0 : !(deviceWidth > 1.5);
  StrokeStyle style = isCosmetic ? Cosmetic(pen, around) : Broad(pen, around);
  style.gapsAreFilled = !isGeometric && !style.dashes.empty();
  return style;
}

void ApplyStroke(cairo_t* cairo, const StrokeStyle& style) {
  cairo_set_line_width(cairo, style.width);
  cairo_set_line_cap(cairo, style.cap);
  cairo_set_line_join(cairo, style.join);
  cairo_set_miter_limit(cairo, style.miterLimit);
  cairo_set_dash(cairo, style.dashes.data(), static_cast<int>(style.dashes.size()), 0);
}

void StrokeApplied(cairo_t* cairo, const StrokeStyle& style) {
  if (!style.nib) {
    cairo_stroke(cairo);
    return;
  }
  const cairo_matrix_t nib = LinearMatrix(*style.nib);
  cairo_set_matrix(cairo, &nib);
  cairo_stroke(cairo);
  cairo_identity_matrix(cairo);
}

void StrokePathWith(cairo_t* cairo, const DrawingPath& path, const StrokeStyle& style) {
  path.EmitTo(cairo, style.fit);
  ApplyStroke(cairo, style);
  if (DashesAlong(style, Length(path)) == 0) cairo_set_dash(cairo, nullptr, 0, 0);
  StrokeApplied(cairo, style);
}

}  // namespace rasterkit::detail
