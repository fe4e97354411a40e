#include <cmath>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"

namespace rasterkit {
namespace {

Affine Turned(double degrees, double width, double height) {
  const double angle = degrees * std::acos(-1.0) / 180;
  return {width * std::cos(angle),
          width * std::sin(angle),
          height * std::sin(angle),
          -height * std::cos(angle),
          1000,
          2000};
}

TEST(NorthUpFrameTest, KeepsAPictureThatIsNorthUp) {
  const Affine toMap{0.5, 0, 0, -0.25, 100, 200};
  const NorthUpFrame frame = FrameOfNorthUp({30, 20}, toMap);
  EXPECT_EQ(frame.sides, (Sides{30, 20}));
  EXPECT_EQ(frame.toMap, toMap);
  EXPECT_EQ(frame.toOld, Affine{});
}

TEST(NorthUpFrameTest, TurnsAPictureThatLiesOnItsSide) {
  // Columns run north, rows run east.
  const Affine toMap{0, 2, 3, 0, 10, 20};
  const NorthUpFrame frame = FrameOfNorthUp({4, 5}, toMap);
  EXPECT_EQ(frame.sides, (Sides{5, 4}));
  EXPECT_EQ(frame.toMap, (Affine{3, 0, 0, -2, 10, 26}));
  std::mt19937 random(1);
  const Pixels source = test::RasterKinds()[5].make(4, 5, random);
  const Pixels made = test::MadeBy(*AffineStage({4, 5}, frame.toOld, frame.sides), source);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 5; ++x) {
      EXPECT_EQ(test::PixelAt(made, x, y), test::PixelAt(source, 3 - y, x));
    }
  }
}

TEST(NorthUpFrameTest, HoldsTheWholePictureAtItsPlace) {
  for (double degrees = -180; degrees < 180; degrees += 12.5) {
    const Sides sides{31, 17};
    const Affine toMap = Turned(degrees, 0.5, 0.75);
    const NorthUpFrame frame = FrameOfNorthUp(sides, toMap);
    EXPECT_TRUE(frame.toMap.IsStraight());
    EXPECT_GT(frame.toMap.xPerColumn, 0);
    EXPECT_LT(frame.toMap.yPerRow, 0);
    for (const double x : {-0.5, 30.5}) {
      for (const double y : {-0.5, 16.5}) {
        const MapPoint corner = toMap.At(x, y);
        const auto place = frame.toMap.Back(corner);
        ASSERT_TRUE(place);
        EXPECT_GE(place->x, -0.5 - 1e-5);
        EXPECT_GE(place->y, -0.5 - 1e-5);
        EXPECT_LE(place->x, frame.sides.width - 0.5 + 1e-5);
        EXPECT_LE(place->y, frame.sides.height - 0.5 + 1e-5);
        const MapPoint old = frame.toOld.At(place->x, place->y);
        EXPECT_NEAR(old.x, x, 1e-6);
        EXPECT_NEAR(old.y, y, 1e-6);
      }
    }
  }
}

TEST(NorthUpFrameTest, RefusesPositionsThatCannotBeInverted) {
  EXPECT_THROW(FrameOfNorthUp({3, 3}, Affine{0, 0, 0, 0, 1, 1}), RangeError);
  EXPECT_THROW(FrameOfNorthUp({3, 3}, Affine{1, 1, 1, 1, 0, 0}), RangeError);
  EXPECT_THROW(FrameOfNorthUp({3, 3}, Affine{std::nan(""), 0, 0, 1, 0, 0}), RangeError);
}

}  // namespace
}  // namespace rasterkit
