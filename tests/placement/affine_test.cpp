#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/placement/affine.h>

namespace rasterkit::test {
namespace {

class RandomAffines : public testing::Test {
 protected:
  RandomAffines() : seed_(std::random_device()()), random_(seed_) {}

  double Number(double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random_);
  }
  /// A turned, scaled and shifted position whose axes are never nearly parallel.
  Affine Turned() {
    const double angle = Number(0, 6.3), skew = Number(-0.5, 0.5);
    const double width = Number(0.01, 100), height = Number(0.01, 100);
    return {
        width * std::cos(angle),         width * std::sin(angle), -height * std::sin(angle + skew),
        height * std::cos(angle + skew), Number(-1e6, 1e6),       Number(-1e7, 1e7)};
  }

  unsigned seed_;
  std::mt19937_64 random_;
};

TEST_F(RandomAffines, BackLeadsToThePixel) {
  for (int i = 0; i < 1000; ++i) {
    const Affine affine = Turned();
    const double column = Number(-1000, 9000), row = Number(-1000, 9000);
    const auto back = affine.Back(affine.At(column, row));
    ASSERT_TRUE(back);
    // Map coordinates of 10^7 are exact to 10^-9, and a pixel measures at least 0.01.
    ASSERT_NEAR(back->x, column, 1e-5) << "seed " << seed_;
    ASSERT_NEAR(back->y, row, 1e-5) << "seed " << seed_;
  }
}

TEST_F(RandomAffines, AfterIsOneAfterTheOther) {
  for (int i = 0; i < 1000; ++i) {
    const Affine outer = Turned();
    Affine inner = Turned();
    inner.x /= 1000;
    inner.y /= 1000;
    const double column = Number(0, 5000), row = Number(0, 5000);
    const MapPoint between = inner.At(column, row);
    const MapPoint expected = outer.At(between.x, between.y);
    const MapPoint found = outer.After(inner).At(column, row);
    const double scale = 1e-12 * (1e7 + std::hypot(between.x, between.y) * 200);
    ASSERT_NEAR(found.x, expected.x, scale) << "seed " << seed_;
    ASSERT_NEAR(found.y, expected.y, scale) << "seed " << seed_;
  }
}

TEST_F(RandomAffines, AfterATurnBackIsStraight) {
  for (int i = 0; i < 1000; ++i) {
    const Affine turned = Turned();
    const Affine straight{Number(0.01, 100), 0, 0, -Number(0.01, 100), turned.x, turned.y};
    const auto toOld = turned.Inverse();
    ASSERT_TRUE(toOld);
    EXPECT_TRUE(turned.After(toOld->After(straight)).IsStraight()) << "seed " << seed_;
  }
}

TEST(Affine, AfterKeepsASmallTurn) {
  const Affine turned{1, 1e-12, -1e-12, 1, 0, 0};
  EXPECT_EQ(turned.After({2, 0, 0, 2, 0, 0}).yPerColumn, 2e-12);
  EXPECT_EQ(turned.After({1, 1e-12, 0, 1, 0, 0}).yPerColumn, 2e-12);
}

TEST_F(RandomAffines, AfterTheInverseIsNoMove) {
  for (int i = 0; i < 1000; ++i) {
    const Affine affine = Turned();
    const auto inverse = affine.Inverse();
    ASSERT_TRUE(inverse);
    const MapPoint place = inverse->After(affine).At(3, 5);
    ASSERT_NEAR(place.x, 3, 1e-4) << "seed " << seed_;
    ASSERT_NEAR(place.y, 5, 1e-4) << "seed " << seed_;
  }
}

TEST(Affine, WithoutAreaHasNoInverse) {
  EXPECT_FALSE((Affine{1, 2, 2, 4, 0, 0}.Inverse()));
  EXPECT_FALSE((Affine{0, 0, 0, 0, 0, 0}.Back({1, 1})));
  EXPECT_FALSE((Affine{NAN, 0, 0, 1, 0, 0}.Inverse()));
}

TEST(Affine, CornerIsHalfAPixelFromTheCenter) {
  const Affine affine{2, 0, 0, -2, 101, 199};
  EXPECT_EQ(affine.Corner().x, 100);
  EXPECT_EQ(affine.Corner().y, 200);
}

}  // namespace
}  // namespace rasterkit::test
