#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/placement.h>

namespace rasterkit::test {
namespace {

using testing::IsEmpty;

constexpr int kWidth = 40, kHeight = 30;

/// Moves of all kinds, by their name.
struct NamedMove {
  const char* name;
  PixelMove move;
  bool isAlongAxes;
};

PixelMove Move(const Affine& toOld, int width, int height) {
  return {toOld, kWidth, kHeight, width, height};
}

/// With d = half the difference of the sizes, a kernel that turns about the middle.
Affine TurnedBy(double degrees) {
  const double a = degrees / 180 * 3.14159265358979323846;
  return {std::cos(a), -std::sin(a), std::sin(a), std::cos(a), -7.25, 4.5};
}

std::vector<NamedMove> Moves() {
  return {{"quarter", Move({0, 1, -1, 0, kWidth - 1, 0}, kHeight, kWidth), true},
          {"half", Move({-1, 0, 0, -1, kWidth - 1, kHeight - 1}, kWidth, kHeight), true},
          {"three quarters", Move({0, -1, 1, 0, 0, kHeight - 1}, kHeight, kWidth), true},
          {"mirror", Move({-1, 0, 0, 1, kWidth - 1, 0}, kWidth, kHeight), true},
          {"transpose", Move({0, 1, 1, 0, 0, 0}, kHeight, kWidth), true},
          {"crop", Move({1, 0, 0, 1, 7, 11}, 20, 10), true},
          {"resize", Move({0.5, 0, 0, 3, -0.25, 1}, 80, 10), true},
          {"any angle", Move(TurnedBy(17.3), 55, 50), false}};
}

/// x and y of a model whose fractions are polynomials of the three normalized coordinates.
MapPoint Project(const RationalModel& m, double latitude, double longitude, double height) {
  const double p = (latitude - m[4]) / m[9], l = (longitude - m[5]) / m[10],
               h = (height - m[6]) / m[11];
  const double terms[] = {1,         l,         p,         h,         l * p,
                          l * h,     p * h,     l * l,     p * p,     h * h,
                          p * l * h, l * l * l, l * p * p, l * h * h, l * l * p,
                          p * p * p, p * h * h, l * l * h, p * p * h, h * h * h};
  double sums[4] = {};
  for (int list = 0; list < 4; ++list) {
    for (int i = 0; i < 20; ++i) sums[list] += terms[i] * m[12 + 20 * list + i];
  }
  return {m[3] + m[8] * sums[2] / sums[3], m[2] + m[7] * sums[0] / sums[1]};
}

TEST(MovedPlacement, EveryPixelKeepsItsPlace) {
  const Affine before{0.7, 0.2, -0.1, -0.9, 440720, 3751320};
  for (const NamedMove& named : Moves()) {
    Placement placement;
    placement.affine = before;
    placement.stated = {
        {PositionSource::worldFile, "a.tfw", before, 0},
        {PositionSource::geoTiff, "", {0.7, 0.2, -0.1, -0.9, 440720.5, 3751320}, 0}};
    Changes changes;
    FollowPixels(placement, named.move, changes);
    for (const double column : {0, 3, 19}) {
      for (const double row : {0, 8, 9}) {
        const MapPoint old = named.move.toOld.At(column, row);
        const MapPoint expected = before.At(old.x, old.y);
        const MapPoint found = placement.affine->At(column, row);
        EXPECT_NEAR(found.x, expected.x, 1e-8) << named.name;
        EXPECT_NEAR(found.y, expected.y, 1e-8) << named.name;
      }
    }
    EXPECT_EQ(placement.stated[0].affine, *placement.affine) << named.name;
    EXPECT_EQ(placement.stated[0].difference, 0) << named.name;
    EXPECT_GT(placement.stated[1].difference, 0.1) << named.name;
    EXPECT_THAT(changes.losses, IsEmpty()) << named.name;
  }
}

TEST(MovedPlacement, QuarterTurnsOfAStraightPositionAreExact) {
  Placement placement;
  placement.affine = Affine{0.1, 0, 0, -0.1, 440720.3, 3751320.7};
  const Affine before = *placement.affine;
  Changes changes;
  const PixelMove move = Move({0, 1, -1, 0, kWidth - 1, 0}, kHeight, kWidth);
  for (int i = 0; i < 4; ++i) {
    PixelMove next = move;
    if (i % 2 == 1) next = {{0, 1, -1, 0, kHeight - 1, 0}, kHeight, kWidth, kWidth, kHeight};
    FollowPixels(placement, next, changes);
    EXPECT_EQ(placement.affine->IsStraight(), i % 2 == 1);
  }
  EXPECT_EQ(placement.affine->xPerColumn, before.xPerColumn);
  EXPECT_EQ(placement.affine->yPerRow, before.yPerRow);
  EXPECT_NEAR(placement.affine->x, before.x, 1e-9);
  EXPECT_NEAR(placement.affine->y, before.y, 1e-9);
}

TEST(MovedPlacement, ControlPointsFollow) {
  for (const NamedMove& named : Moves()) {
    Placement placement;
    // Corners of the old picture's pixel (4, 6), counted from the picture's corner.
    placement.controlPoints = {{4, 6, 0, 1, 2, 3}, {5, 7, 0, 4, 5, 6}};
    const auto before = placement.controlPoints;
    Changes changes;
    FollowPixels(placement, named.move, changes);
    ASSERT_EQ(placement.controlPoints.size(), 2u) << named.name;
    for (size_t i = 0; i < 2; ++i) {
      const ControlPoint& point = placement.controlPoints[i];
      const MapPoint old = named.move.toOld.At(point.column - 0.5, point.row - 0.5);
      EXPECT_NEAR(old.x + 0.5, before[i].column, 1e-9) << named.name;
      EXPECT_NEAR(old.y + 0.5, before[i].row, 1e-9) << named.name;
      EXPECT_EQ(point.x, before[i].x);
      EXPECT_EQ(point.z, before[i].z);
    }
  }
}

TEST(MovedPlacement, CropShiftsControlPointsByWholePixels) {
  Placement placement;
  placement.controlPoints = {{10, 20, 0, 1, 2, 3}};
  Changes changes;
  FollowPixels(placement, Move({1, 0, 0, 1, 7, 11}, 20, 10), changes);
  EXPECT_EQ(placement.controlPoints[0].column, 3);
  EXPECT_EQ(placement.controlPoints[0].row, 9);
}

TEST(MovedPlacement, RationalModelFollowsMovesAlongTheAxes) {
  const auto seed = std::random_device()();
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> small(-0.05, 0.05);
  for (const NamedMove& named : Moves()) {
    RationalModel model(92);
    for (double& number : model) number = small(random);
    // Errors, offsets and scales; the divisors lie near 1.
    const double head[] = {-1, -1, 15, 20, 48, 11, 500, 15, 20, 0.1, 0.1, 500};
    std::copy(std::begin(head), std::end(head), model.begin());
    model[32] = model[72] = 1;
    model[14] = model[53] = 1;
    Placement placement;
    placement.rationalModel = model;
    Changes changes;
    FollowPixels(placement, named.move, changes);
    if (!named.isAlongAxes) {
      EXPECT_THAT(placement.rationalModel, IsEmpty());
      ASSERT_EQ(changes.losses.size(), 1u);
      EXPECT_EQ(changes.losses[0].kind, LossKind::position);
      continue;
    }
    EXPECT_THAT(changes.losses, IsEmpty()) << named.name;
    ASSERT_EQ(placement.rationalModel.size(), 92u);
    EXPECT_GT(placement.rationalModel[7], 0) << named.name;
    EXPECT_GT(placement.rationalModel[8], 0) << named.name;
    for (int i = 0; i < 50; ++i) {
      const double latitude = 48 + small(random), longitude = 11 + small(random);
      const double height = 500 + 5000 * small(random);
      const MapPoint old = Project(model, latitude, longitude, height);
      const MapPoint found = Project(placement.rationalModel, latitude, longitude, height);
      const MapPoint back = named.move.toOld.At(found.x, found.y);
      ASSERT_NEAR(back.x, old.x, 1e-9) << named.name << " seed " << seed;
      ASSERT_NEAR(back.y, old.y, 1e-9) << named.name << " seed " << seed;
    }
  }
}

TEST(MovedPlacement, PixelsThatStayChangeNothing) {
  Placement placement;
  placement.affine = Affine{0.1, 0.3, 0.7, -0.1, 1e7 + 0.1, -0.3};
  placement.rationalModel.assign(92, 2);
  const Affine before = *placement.affine;
  Changes changes;
  FollowPixels(placement, Move({}, kWidth, kHeight), changes);
  EXPECT_EQ(*placement.affine, before);
  EXPECT_EQ(placement.rationalModel, RationalModel(92, 2));
}

TEST(MovedPlacement, WithoutInverseLosesControlPoints) {
  Placement placement;
  placement.controlPoints = {{1, 1, 0, 1, 2, 3}};
  Changes changes;
  FollowPixels(placement, Move({0, 0, 0, 0, 0, 0}, 1, 1), changes);
  EXPECT_THAT(placement.controlPoints, IsEmpty());
  ASSERT_EQ(changes.losses.size(), 1u);
  EXPECT_EQ(changes.losses[0].kind, LossKind::controlPoints);
}

}  // namespace
}  // namespace rasterkit::test
