#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <utility>

#include <rasterkit/placement/fit_points.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr double kLargest = 1e15;
/// Points on a line: across it they spread less than this part of how they spread along it.
constexpr double kThinnest = 1e-3;
/// Pixels.
constexpr double kNearest = 1e-3;
/// Turns that rounding alone can give.
constexpr double kNoTurn = 1e-12;
constexpr double kHalf = 0.5;

using Numbers = std::vector<double>;

bool IsUsable(double number) {
  return std::abs(number) <= kLargest;
}

double Dot(const Numbers& a, const Numbers& b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

/// Subtracts `factor` times `other`.
void Reduce(Numbers& numbers, double factor, const Numbers& other) {
  for (size_t i = 0; i < numbers.size(); ++i) numbers[i] -= factor * other[i];
}

/// Numbers around their mean. The first number is taken off before, so that large ones with small
/// differences lose nothing.
struct Centered {
  double mean = 0;
  Numbers around;

  template <typename Get>
  Centered(std::span<const ControlPoint> points, Get get) {
    const double first = get(points.front());
    double sum = 0;
    for (const ControlPoint& point : points) {
      around.push_back(get(point) - first);
      sum += around.back();
    }
    const double shift = sum / static_cast<double>(points.size());
    for (double& number : around) number -= shift;
    mean = first + shift;
    // What rounding left of the mean.
    double rest = 0;
    for (const double number : around) rest += number;
    rest /= static_cast<double>(points.size());
    for (double& number : around) number -= rest;
  }
};

/// Points of the picture and of the map around their centers.
struct CenteredPoints {
  explicit CenteredPoints(std::span<const ControlPoint> points)
      : columns(points, [](const ControlPoint& point) { return point.column; }),
        rows(points, [](const ControlPoint& point) { return point.row; }),
        x(points, [](const ControlPoint& point) { return point.x; }),
        y(points, [](const ControlPoint& point) { return point.y; }) {}

  Centered columns, rows, x, y;
};

/// How much points spread across the line that suits them best, as a part of how they spread along
/// it; 0 for points on one place. Both are the singular values of the points.
double Thinness(const Numbers& a, const Numbers& b) {
  double scale = 0;
  for (const Numbers* numbers : {&a, &b}) {
    for (const double number : *numbers) scale = std::max(scale, std::abs(number));
  }
  if (scale == 0) return 0;
  Numbers u = a, v = b;
  for (Numbers* numbers : {&u, &v}) {
    for (double& number : *numbers) number /= scale;
  }
  // Turned so that one of the two is the direction of the line.
  const double angle = kHalf * std::atan2(2 * Dot(u, v), Dot(u, u) - Dot(v, v));
  const double cosine = std::cos(angle), sine = std::sin(angle);
  double along = 0, across = 0;
  for (size_t i = 0; i < u.size(); ++i) {
    const double first = cosine * u[i] + sine * v[i], second = cosine * v[i] - sine * u[i];
    along += first * first;
    across += second * second;
  }
  return std::sqrt(std::min(along, across) / std::max(along, across));
}

/// The factors of least squares in `target` = a * first + b * second. An orthogonal basis keeps
/// the digits that the sums of squares would lose.
class TwoFactors {
 public:
  TwoFactors(const Numbers& first, const Numbers& second) : isExchanged_(false) {
    const Numbers* longer = &first;
    const Numbers* shorter = &second;
    if (Dot(second, second) > Dot(first, first)) {
      std::swap(longer, shorter);
      isExchanged_ = true;
    }
    length_ = std::sqrt(Dot(*longer, *longer));
    along_ = *longer;
    for (double& number : along_) number /= length_;
    across_ = *shorter;
    // Twice: the first time leaves the rounding errors of a much longer vector.
    for (int i = 0; i < 2; ++i) {
      const double part = Dot(along_, across_);
      Reduce(across_, part, along_);
      shared_ += part;
    }
    width_ = std::sqrt(Dot(across_, across_));
    for (double& number : across_) number /= width_;
  }

  /// The factors of the first and of the second.
  std::pair<double, double> Of(const Numbers& target) const {
    const double along = Dot(along_, target);
    Numbers rest = target;
    Reduce(rest, along, along_);
    const double ofShorter = Dot(across_, rest) / width_;
    const double ofLonger = (along - shared_ * ofShorter) / length_;
    return isExchanged_ ? std::pair(ofShorter, ofLonger) : std::pair(ofLonger, ofShorter);
  }

 private:
  bool isExchanged_;
  Numbers along_, across_;
  double length_ = 0, shared_ = 0, width_ = 0;
};

/// With rows counted upwards a similarity is one factor for complex numbers.
Affine Similarity(const CenteredPoints& points) {
  const double columns = points.columns.around[1] - points.columns.around[0];
  const double rows = points.rows.around[0] - points.rows.around[1];
  const double x = points.x.around[1] - points.x.around[0];
  const double y = points.y.around[1] - points.y.around[0];
  const double distance = std::hypot(columns, rows);
  if (!(distance >= kNearest)) {
    throw RangeError("the two points lie on one place of the picture");
  }
  if (x == 0 && y == 0) throw RangeError("the two points lie on one place of the map");
  const double c = columns / distance, r = rows / distance;
  const double size = (x * c + y * r) / distance, turn = (y * c - x * r) / distance;
  Affine affine;
  affine.xPerColumn = size;
  affine.xPerRow = turn;
  affine.yPerColumn = turn;
  affine.yPerRow = -size;
  return affine;
}

Affine LeastSquares(const CenteredPoints& points) {
  if (!(Thinness(points.columns.around, points.rows.around) >= kThinnest)) {
    throw RangeError("the points lie on one line in the picture, or nearly so");
  }
  if (!(Thinness(points.x.around, points.y.around) >= kThinnest)) {
    throw RangeError("the points lie on one line on the map, or nearly so");
  }
  const TwoFactors factors(points.columns.around, points.rows.around);
  Affine affine;
  std::tie(affine.xPerColumn, affine.xPerRow) = factors.Of(points.x.around);
  std::tie(affine.yPerColumn, affine.yPerRow) = factors.Of(points.y.around);
  return affine;
}

/// A turn that rounding made would keep the position from being written in the usual way.
void DropTurnOfRounding(Affine& affine) {
  const double size = std::max(std::abs(affine.xPerColumn), std::abs(affine.yPerRow));
  const double turn = std::max(std::abs(affine.yPerColumn), std::abs(affine.xPerRow));
  if (turn <= kNoTurn * size) affine.yPerColumn = affine.xPerRow = 0;
  if (size <= kNoTurn * turn) affine.xPerColumn = affine.yPerRow = 0;
}

/// The shift that leads the center of the one points to that of the others. Indexes count from the
/// center of the first pixel, places of points from its corner.
void AddShift(Affine& affine, const CenteredPoints& points) {
  const double column = kHalf - points.columns.mean, row = kHalf - points.rows.mean;
  affine.x = points.x.mean + (affine.xPerColumn * column + affine.xPerRow * row);
  affine.y = points.y.mean + (affine.yPerColumn * column + affine.yPerRow * row);
}

double Determinant(const Affine& affine) {
  return affine.xPerColumn * affine.yPerRow - affine.xPerRow * affine.yPerColumn;
}

void AddResiduals(PointFit& fit, std::span<const ControlPoint> points) {
  const Affine& affine = fit.affine;
  const double determinant = Determinant(affine);
  double sum = 0, sumOfPixels = 0;
  for (const ControlPoint& point : points) {
    const MapPoint found = affine.At(point.column - kHalf, point.row - kHalf);
    PointFit::Residual residual;
    residual.x = found.x - point.x;
    residual.y = found.y - point.y;
    residual.distance = std::hypot(residual.x, residual.y);
    residual.pixels = std::hypot(affine.yPerRow * residual.x - affine.xPerRow * residual.y,
                                 affine.xPerColumn * residual.y - affine.yPerColumn * residual.x) /
                      std::abs(determinant);
    sum += residual.distance * residual.distance;
    sumOfPixels += residual.pixels * residual.pixels;
    fit.residuals.push_back(residual);
  }
  const auto count = static_cast<double>(points.size());
  fit.rms = std::sqrt(sum / count);
  fit.rmsPixels = std::sqrt(sumOfPixels / count);
}

void RequireUsable(std::span<const ControlPoint> points) {
  for (const ControlPoint& point : points) {
    const bool isUsable =
        IsUsable(point.column) && IsUsable(point.row) && IsUsable(point.x) && IsUsable(point.y);
    if (!isUsable) throw RangeError("a point has a number that is too large or none at all");
  }
}

}  // namespace

PointFit FitAffine(std::span<const ControlPoint> points) {
  if (points.size() < 2) {
    throw RangeError("one point is not enough: two are required, or one and the size of a pixel");
  }
  RequireUsable(points);
  const CenteredPoints centered(points);
  PointFit fit;
  fit.affine = points.size() == 2 ? Similarity(centered) : LeastSquares(centered);
  DropTurnOfRounding(fit.affine);
  AddShift(fit.affine, centered);
  const double determinant = Determinant(fit.affine);
  if (!fit.affine.IsFinite() || determinant == 0 || !std::isfinite(determinant)) {
    throw RangeError("the points give no position");
  }
  fit.isMirrored = determinant > 0;
  AddResiduals(fit, points);
  return fit;
}

Affine PlaceByPoint(const ControlPoint& point, MapPoint pixelSize) {
  RequireUsable({&point, 1});
  if (!(pixelSize.x > 0 && pixelSize.y > 0)) throw RangeError("a pixel has no size");
  Affine affine;
  affine.xPerColumn = pixelSize.x;
  affine.yPerRow = -pixelSize.y;
  affine.x = point.x + pixelSize.x * (kHalf - point.column);
  affine.y = point.y - pixelSize.y * (kHalf - point.row);
  if (!affine.IsFinite()) throw RangeError("the point gives no position");
  return affine;
}

}  // namespace rasterkit
