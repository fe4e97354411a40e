#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/dialogs/bitmapframe/rd_rect.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

/// Returns `shift` limited so that [start, end] stays inside [low, high].
double ShiftInside(double start, double end, double shift, double low, double high) {
  const double inside = std::min(shift, high - end);
  return std::max(inside, low - start);
}

int ToPixel(double coordinate) {
  constexpr double kLimit = 1 << 30;
  // NaN must not reach the cast.
  if (!(coordinate > -kLimit)) return -(1 << 30);
  return static_cast<int>(Round(std::min(coordinate, kLimit)));
}

/// A side of length 0 gives no limit.
double Ratio(double size, double length) {
  return length > 0 ? size / length : std::numeric_limits<double>::infinity();
}

}  // namespace

void RDRect::Move(double dx, double dy) {
  Left += dx;
  Right += dx;
  Top += dy;
  Bottom += dy;
}

void RDRect::MoveInRect(double dx, double dy, const RDRect& bounds) {
  Move(ShiftInside(Left, Right, dx, bounds.Left, bounds.Right),
       ShiftInside(Top, Bottom, dy, bounds.Top, bounds.Bottom));
}

void RDRect::Stretch(double step, double x, double y) {
  const double factor = 1 + step;
  Left = x + (Left - x) * factor;
  Right = x + (Right - x) * factor;
  Top = y + (Top - y) * factor;
  Bottom = y + (Bottom - y) * factor;
}

void RDRect::Scale(double factor) {
  Left *= factor;
  Top *= factor;
  Right *= factor;
  Bottom *= factor;
}

void RDRect::Intersect(const RDRect& bounds) {
  const auto into = [](double value, double low, double high) {
    return std::max(low, std::min(value, high));
  };
  Left = into(Left, bounds.Left, bounds.Right);
  Right = into(Right, bounds.Left, bounds.Right);
  Top = into(Top, bounds.Top, bounds.Bottom);
  Bottom = into(Bottom, bounds.Top, bounds.Bottom);
}

bool RDRect::Contains(double x, double y) const {
  return x >= Left && x <= Right && y >= Top && y <= Bottom;
}

double RDRect::FitInRect(const RDRect& bounds) {
  double factor = std::min(Ratio(bounds.Width(), Width()), Ratio(bounds.Height(), Height()));
  if (std::isinf(factor)) factor = 1;
  const double width = Width() * factor, height = Height() * factor;
  Left = bounds.Left + (bounds.Width() - width) / 2;
  Top = bounds.Top + (bounds.Height() - height) / 2;
  Right = Left + width;
  Bottom = Top + height;
  return factor;
}

TRect RDRect::ToRect() const {
  return {ToPixel(Left), ToPixel(Top), ToPixel(Right), ToPixel(Bottom)};
}

bool AlmostEqual(const RDRect& a, const RDRect& b, double tolerance) {
  return std::max({std::abs(a.Left - b.Left), std::abs(a.Top - b.Top), std::abs(a.Right - b.Right),
                   std::abs(a.Bottom - b.Bottom)}) <= tolerance;
}

}  // namespace rasterkit
