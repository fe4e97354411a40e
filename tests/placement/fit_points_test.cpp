// Positions from points that are known in the picture and on the map.

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/fit_points.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using Points = std::vector<ControlPoint>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ControlPoint PointAt(double column, double row, double x, double y) {
  ControlPoint point;
  point.column = column;
  point.row = row;
  point.x = x;
  point.y = y;
  return point;
}

/// The point of the picture with its place by `affine`, which counts from pixel centers.
ControlPoint On(const Affine& affine, double column, double row) {
  const MapPoint place = affine.At(column - 0.5, row - 0.5);
  return PointAt(column, row, place.x, place.y);
}

std::string ErrorOf(const Points& points) {
  try {
    FitAffine(points);
  } catch (const RangeError& error) {
    return error.Reason();
  }
  return "";
}

/// Largest distance on the map between the two positions at the points.
double Difference(const Affine& a, const Affine& b, const Points& points) {
  double most = 0;
  for (const ControlPoint& point : points) {
    const MapPoint one = a.At(point.column - 0.5, point.row - 0.5);
    const MapPoint other = b.At(point.column - 0.5, point.row - 0.5);
    most = std::max(most, std::hypot(one.x - other.x, one.y - other.y));
  }
  return most;
}

double ExtentOf(const Points& points) {
  double most = 0;
  for (const ControlPoint& a : points) {
    for (const ControlPoint& b : points) most = std::max(most, std::hypot(a.x - b.x, a.y - b.y));
  }
  return most;
}

double LastPlace(const Points& points) {
  double most = 0;
  for (const ControlPoint& p : points) most = std::max({most, std::abs(p.x), std::abs(p.y)});
  return most * std::numeric_limits<double>::epsilon();
}

/// Least squares written out: normal equations in long doubles, by the rule of determinants.
Affine PlainLeastSquares(const Points& points) {
  using Real = long double;
  Real c = 0, r = 0, x = 0, y = 0;
  for (const ControlPoint& p : points) {
    c += p.column;
    r += p.row;
    x += p.x;
    y += p.y;
  }
  const Real n = static_cast<Real>(points.size());
  c /= n;
  r /= n;
  x /= n;
  y /= n;
  Real cc = 0, cr = 0, rr = 0, cx = 0, rx = 0, cy = 0, ry = 0;
  for (const ControlPoint& p : points) {
    const Real dc = p.column - c, dr = p.row - r, dx = p.x - x, dy = p.y - y;
    cc += dc * dc;
    cr += dc * dr;
    rr += dr * dr;
    cx += dc * dx;
    rx += dr * dx;
    cy += dc * dy;
    ry += dr * dy;
  }
  const Real all = cc * rr - cr * cr;
  const Real a = (cx * rr - rx * cr) / all, b = (rx * cc - cx * cr) / all;
  const Real d = (cy * rr - ry * cr) / all, e = (ry * cc - cy * cr) / all;
  const Real half = 0.5L;
  Affine affine;
  affine.xPerColumn = static_cast<double>(a);
  affine.xPerRow = static_cast<double>(b);
  affine.yPerColumn = static_cast<double>(d);
  affine.yPerRow = static_cast<double>(e);
  affine.x = static_cast<double>(x + a * (half - c) + b * (half - r));
  affine.y = static_cast<double>(y + d * (half - c) + e * (half - r));
  return affine;
}

TEST(FitPoints, TwoGiveASimilarity) {
  // Corner to corner: columns east, rows south, half a unit per pixel.
  const PointFit fit = FitAffine(Points{PointAt(0, 0, 1000, 5000), PointAt(200, 100, 1100, 4950)});
  EXPECT_EQ(fit.affine, (Affine{0.5, 0, 0, -0.5, 1000.25, 4999.75}));
  EXPECT_EQ(fit.affine.Corner().x, 1000);
  EXPECT_EQ(fit.affine.Corner().y, 5000);
  EXPECT_FALSE(fit.isMirrored);
  EXPECT_EQ(fit.rms, 0);
  ASSERT_EQ(fit.residuals.size(), 2U);
}

/// The picture is turned by a right angle, counter-clockwise on the map: columns run north, rows
/// east.
TEST(FitPoints, TwoTurnThePicture) {
  const PointFit fit = FitAffine(Points{PointAt(0, 0, 10, 20), PointAt(8, 0, 10, 36)});
  EXPECT_EQ(fit.affine, (Affine{0, 2, 2, 0, 11, 21}));
  EXPECT_FALSE(fit.isMirrored);
}

TEST(FitPoints, TwoNeverMirrorThePicture) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> place(-1000, 1000);
  for (int i = 0; i < 2000; ++i) {
    const Points points = {PointAt(place(random), place(random), place(random), place(random)),
                           PointAt(place(random), place(random), place(random), place(random))};
    const PointFit fit = FitAffine(points);
    const Affine& a = fit.affine;
    EXPECT_FALSE(fit.isMirrored);
    // One size of pixels and a right angle between rows and columns.
    EXPECT_EQ(a.xPerColumn, -a.yPerRow);
    EXPECT_EQ(a.yPerColumn, a.xPerRow);
    EXPECT_LE(fit.rms, 1e-11) << "seed 11, case " << i;
    const PointFit back = FitAffine(Points{points[1], points[0]});
    EXPECT_LE(Difference(a, back.affine, points), 1e-11);
  }
}

TEST(FitPoints, ThreeGiveTheAffineOfThePoints) {
  const Affine known{0.5, 0.125, 0.25, -0.75, 1000.5, 2000.25};
  const PointFit fit = FitAffine(Points{On(known, 0, 0), On(known, 100, 0), On(known, 0, 50)});
  EXPECT_LE(Difference(fit.affine, known, {On(known, 300, 300), On(known, 0, 0)}), 1e-11);
  EXPECT_LE(fit.rms, 1e-12);
  EXPECT_LE(fit.rmsPixels, 1e-12);
}

/// The sum of the squares is least: residuals are orthogonal to all that the position can change.
TEST(FitPoints, ManyGiveTheLeastSquares) {
  for (const uint32_t seed : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U}) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0, 4000), noise(-3, 3);
    const Affine known{0.05, 0.001, -0.002, -0.06, 4468000, 5334000};
    Points points;
    for (uint32_t i = 0; i < 3 + seed; ++i) {
      points.push_back(On(known, place(random), place(random)));
      points.back().x += noise(random);
      points.back().y += noise(random);
    }
    const PointFit fit = FitAffine(points);
    EXPECT_LE(Difference(fit.affine, PlainLeastSquares(points), points), 1e-8) << "seed " << seed;
    double sum = 0, ofColumns = 0, ofRows = 0, squares = 0, pixels = 0;
    ASSERT_EQ(fit.residuals.size(), points.size());
    for (size_t i = 0; i < points.size(); ++i) {
      const PointFit::Residual& residual = fit.residuals[i];
      const MapPoint found = fit.affine.At(points[i].column - 0.5, points[i].row - 0.5);
      EXPECT_EQ(residual.x, found.x - points[i].x);
      EXPECT_EQ(residual.y, found.y - points[i].y);
      EXPECT_DOUBLE_EQ(residual.distance, std::hypot(residual.x, residual.y));
      const MapPoint pixel = fit.affine.Back({points[i].x, points[i].y}).value();
      EXPECT_NEAR(residual.pixels,
                  std::hypot(pixel.x + 0.5 - points[i].column, pixel.y + 0.5 - points[i].row),
                  1e-5);
      sum += residual.x;
      ofColumns += residual.x * points[i].column;
      ofRows += residual.x * points[i].row;
      squares += residual.distance * residual.distance;
      pixels += residual.pixels * residual.pixels;
    }
    EXPECT_NEAR(sum, 0, 1e-7);
    EXPECT_NEAR(ofColumns, 0, 1e-4);
    EXPECT_NEAR(ofRows, 0, 1e-4);
    const auto count = static_cast<double>(points.size());
    EXPECT_DOUBLE_EQ(fit.rms, std::sqrt(squares / count));
    EXPECT_DOUBLE_EQ(fit.rmsPixels, std::sqrt(pixels / count));
    if (points.size() > 4) {
      EXPECT_GT(fit.rms, 0.1);
    }
  }
}

/// Known positions with exact numbers are found to the stated accuracy.
TEST(FitPoints, AreAsAccurateAsStated) {
  constexpr uint32_t kSeed = 20;
  std::mt19937 random(kSeed);
  double worst = 0, worstThin = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto any = [&](double least, double most) {
      return std::uniform_real_distribution<double>(least, most)(random);
    };
    const double size = std::exp2(any(-20, 20)), angle = any(0, 7), skew = any(-0.5, 0.5);
    const double base = std::exp2(any(0, 25)) * (i % 2 == 0 ? 1 : 0);
    const Affine known{size * std::cos(angle),        size * std::sin(angle),
                       size * std::sin(angle + skew), -size * std::cos(angle + skew),
                       base + any(-size, size),       base + any(-size, size)};
    const bool isThin = i % 4 == 3;
    Points points;
    const size_t count = 3 + random() % 8;
    const double direction = any(0, 7);
    while (points.size() < count) {
      const double along = any(-10000, 10000), across = any(-1, 1) * (isThin ? 30 : 10000);
      points.push_back(On(known, along * std::cos(direction) - across * std::sin(direction),
                          along * std::sin(direction) + across * std::cos(direction)));
    }
    PointFit fit;
    try {
      fit = FitAffine(points);
    } catch (const RangeError&) {
      continue;
    }
    const double allowed = 1e-12 * ExtentOf(points) + 2 * LastPlace(points);
    const double difference = Difference(fit.affine, known, points);
    (isThin ? worstThin : worst) = std::max(isThin ? worstThin : worst, difference / allowed);
    ASSERT_LE(difference, allowed) << "seed " << kSeed << ", case " << i;
  }
  std::cout << "seed " << kSeed << ": at worst " << worst << " of the allowed difference, "
            << worstThin << " for thin figures\n";
}

TEST(FitPoints, StraightPositionHasNoTurnOfRounding) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> place(0, 9999);
  const Affine known{0.1, 0, 0, -0.3, 4468000.7, 5334000.1};
  for (int i = 0; i < 500; ++i) {
    const Points points = {On(known, place(random), place(random)),
                           On(known, place(random), place(random)),
                           On(known, place(random), place(random))};
    if (!ErrorOf(points).empty()) continue;
    const PointFit fit = FitAffine(points);
    // The places of the points are rounded to a unit in their last place, 1e-9.
    EXPECT_NEAR(fit.affine.xPerRow, 0, 1e-9);
    EXPECT_NEAR(fit.affine.xPerColumn, 0.1, 1e-9);
  }
  const Points exact = {PointAt(0, 0, 7, 9), PointAt(300, 0, 37, 9), PointAt(0, 300, 7, -81),
                        PointAt(100, 200, 17, -51)};
  EXPECT_TRUE(FitAffine(exact).affine.IsStraight());
}

TEST(FitPoints, OnOneLineAreRefused) {
  const Affine known{0.5, 0.125, 0.25, -0.75, 1000.5, 2000.25};
  const auto line = [&](double offset) {
    // The root mean squares across and along the line have the ratio `offset`.
    Points points;
    for (const double along : {-1.0, 0.0, 1.0}) {
      const double across = (along == 0 ? -2 : 1) * offset / std::sqrt(3);
      points.push_back(PointAt(1000 * along + 500, 1000 * across + 300, along, along == 0 ? 1 : 0));
    }
    return points;
  };
  for (const double offset : {0.0, 1e-12, 1e-6, 0.99e-3}) {
    EXPECT_THAT(ErrorOf(line(offset)), HasSubstr("one line in the picture")) << offset;
  }
  EXPECT_EQ(ErrorOf(line(1.01e-3)), "");
  // Well apart in the picture, on a line on the map.
  Points points = {PointAt(0, 0, 0, 0), PointAt(100, 0, 1, 1), PointAt(0, 100, 2, 2)};
  EXPECT_THAT(ErrorOf(points), HasSubstr("one line on the map"));
  for (ControlPoint& point : points) point.x = point.y = 5;
  EXPECT_THAT(ErrorOf(points), HasSubstr("one line on the map"));
  // Three times the same place.
  EXPECT_THAT(ErrorOf({On(known, 1, 2), On(known, 1, 2), On(known, 1, 2)}),
              HasSubstr("one line in the picture"));
}

/// The bound itself: a figure whose spreads have exactly this ratio, turned by any angle.
TEST(FitPoints, BoundOfLinesIsAThousandth) {
  for (int degrees = 0; degrees < 360; degrees += 7) {
    const double angle = degrees * 0.0174532925;
    const auto cross = [&](double ratio) {
      Points points;
      for (const auto& [along, across] : {std::pair(1.0, 0.0), std::pair(-1.0, 0.0),
                                          std::pair(0.0, ratio), std::pair(0.0, -ratio)}) {
        points.push_back(PointAt(1e4 * (along * std::cos(angle) - across * std::sin(angle)),
                                 1e4 * (along * std::sin(angle) + across * std::cos(angle)), along,
                                 across * 500));
      }
      return points;
    };
    EXPECT_NE(ErrorOf(cross(0.999e-3)), "") << degrees;
    EXPECT_EQ(ErrorOf(cross(1.001e-3)), "") << degrees;
  }
}

TEST(FitPoints, WrongPointsAreRefused) {
  EXPECT_THAT(ErrorOf({}), HasSubstr("not enough"));
  EXPECT_THAT(ErrorOf({PointAt(1, 2, 3, 4)}), HasSubstr("the size of a pixel"));
  EXPECT_THAT(ErrorOf({PointAt(1, 2, 3, 4), PointAt(1, 2.0009, 5, 6)}),
              HasSubstr("one place of the picture"));
  EXPECT_EQ(ErrorOf({PointAt(1, 2, 3, 4), PointAt(1, 2.0011, 5, 6)}), "");
  EXPECT_THAT(ErrorOf({PointAt(1, 2, 3, 4), PointAt(10, 2, 3, 4)}),
              HasSubstr("one place of the map"));
  for (const double wrong : {kNaN, 1.1e15, -1e300, std::numeric_limits<double>::infinity()}) {
    for (int number = 0; number < 4; ++number) {
      Points points = {PointAt(0, 0, 0, 0), PointAt(100, 0, 100, 0), PointAt(0, 100, 0, -100)};
      double* const places[] = {&points[1].column, &points[1].row, &points[1].x, &points[1].y};
      *places[number] = wrong;
      EXPECT_THAT(ErrorOf(points), HasSubstr("too large")) << wrong;
    }
  }
  // Numbers whose squares do not fit.
  const Points tiny = {PointAt(0, 0, 0, 0), PointAt(1, 0, 1e-200, 0), PointAt(0, 1, 0, 1e-200)};
  EXPECT_NE(ErrorOf(tiny), "");
}

TEST(FitPoints, MirroredPictureIsNoted) {
  const PointFit fit =
      FitAffine(Points{PointAt(0, 0, 0, 0), PointAt(10, 0, 10, 0), PointAt(0, 10, 0, 10)});
  EXPECT_TRUE(fit.isMirrored);
  const PointFit usual =
      FitAffine(Points{PointAt(0, 0, 0, 0), PointAt(10, 0, 10, 0), PointAt(0, 10, 0, -10)});
  EXPECT_FALSE(usual.isMirrored);
}

TEST(FitPoints, OneWithAPixelSizeGivesAStraightPosition) {
  EXPECT_EQ(PlaceByPoint(PointAt(10, 20, 1000, 2000), {0.5, 0.25}),
            (Affine{0.5, 0, 0, -0.25, 995.25, 2004.875}));
  EXPECT_EQ(PlaceByPoint(PointAt(0, 0, 7, 9), {2, 2}).Corner().x, 7);
  for (const MapPoint size : {MapPoint{0, 1}, MapPoint{1, -1}, MapPoint{kNaN, 1}}) {
    EXPECT_THROW(PlaceByPoint(PointAt(0, 0, 0, 0), size), RangeError);
  }
  EXPECT_THROW(PlaceByPoint(PointAt(kNaN, 0, 0, 0), {1, 1}), RangeError);
}

}  // namespace
}  // namespace rasterkit::test
