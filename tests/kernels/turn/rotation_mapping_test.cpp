#include <bit>
#include <cmath>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/kernels/rows/extended_sum.h>
#include <rasterkit/kernels/turn/degrees.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>

#include "tests/reference/rotate_reference.h"
#include "tests/support/full_run.h"

namespace rasterkit::kernels {
namespace {

using reference::Extended;
using reference::RoundEven;

TEST(DegreesTest, SineAndCosineAreTheNearestDoubles) {
  std::mt19937 random(11);
  std::uniform_real_distribution<float> anyAngle(-800, 800);
  for (int i = 0; i < 20000; ++i) {
    const float degrees = i < 1441 ? static_cast<float>(i - 720) / 2 : anyAngle(random);
    const SineCosine fast = SineCosineOfDegrees(degrees);
    const reference::Turn exact = reference::ExactTurn(degrees);
    ASSERT_EQ(fast.sine, exact.sine) << degrees;
    ASSERT_EQ(fast.cosine, exact.cosine) << degrees;
  }
}

TEST(DegreesTest, AnglesWithShortValuesHaveThemExactly) {
  EXPECT_EQ(SineCosineOfDegrees(30).sine, 0.5);
  EXPECT_EQ(SineCosineOfDegrees(60).cosine, 0.5);
  EXPECT_EQ(SineCosineOfDegrees(150).sine, 0.5);
  EXPECT_EQ(SineCosineOfDegrees(240).cosine, -0.5);
  EXPECT_EQ(SineCosineOfDegrees(90).cosine, 0.0);
  EXPECT_EQ(SineCosineOfDegrees(180).sine, 0.0);
  EXPECT_EQ(SineCosineOfDegrees(270).sine, -1.0);
  EXPECT_EQ(SineCosineOfDegrees(-90).sine, -1.0);
  EXPECT_EQ(SineCosineOfDegrees(45).sine, SineCosineOfDegrees(45).cosine);
}

// The proof that the series' error never decides: every angle of 0 to 45 degrees that a float
// between 2^-17 degrees (the distance of the nearest floats from a quarter turn) and 45 can be
// reduced to.
TEST(DegreesTest, NoReducedAngleLiesNearTheMiddleBetweenTwoDoubles) {
  constexpr double kSeriesError = 0x1p-95;
  const uint32_t step = test::IsFullRun() ? 1 : 4099;
  double smallest = 1;
  int64_t walked = 0;
  const auto first = std::bit_cast<uint32_t>(0x1p-17f), last = std::bit_cast<uint32_t>(45.0f);
  for (uint32_t bits = first; bits <= last; bits += step, ++walked)
    smallest = std::min(smallest, MarginOfReducedDegrees(std::bit_cast<float>(bits)).relative);
  std::cout << walked << " angles, smallest margin 2^" << std::log2(smallest) << "\n";
  EXPECT_GT(smallest, kSeriesError);
}

TEST(ExtendedSumTest, EqualsTheExtendedArithmetic) {
  std::mt19937_64 random(12);
  std::uniform_real_distribution<double> factor(-1, 1);
  for (int i = 0; i < 2000000; ++i) {
    const int bits = static_cast<int>(random() % 34);
    const auto draw = [&] {
      const auto value = static_cast<int64_t>(random() & ((uint64_t{1} << bits) - 1));
      return random() & 1 ? value : -value;
    };
    const int64_t a = draw(), b = draw(), offset = std::llabs(draw());
    const double special[] = {0, 0.5, -0.5, 1, -1, 0.25, 0x1.5555555555555p-2, 0x1p-30, -0x1p-52};
    const double s = random() % 4 == 0
                         ? special[random() % 9]
                         : std::ldexp(factor(random), -static_cast<int>(random() % 24));
    const double c = random() % 4 == 0   ? special[random() % 9]
                     : random() % 8 == 0 ? s
                                         : factor(random);
    const Extended sum = Extended(a) / 2 * s - Extended(b) / 2 * c + Extended(offset) / 2;
    ASSERT_EQ(RoundExtendedSum(a, s, b, c, offset), RoundEven(sum))
        << a << " * " << s << " - " << b << " * " << c << " + " << offset;
  }
}

// Sums that lie at a half or a hair beside it, where each of the four roundings matters.
TEST(ExtendedSumTest, EqualsTheExtendedArithmeticBesideHalves) {
  std::mt19937_64 random(13);
  for (int i = 0; i < 1000000; ++i) {
    const int64_t a = static_cast<int64_t>(random() % 20001) - 10000;
    const int64_t b = static_cast<int64_t>(random() % 20001) - 10000;
    if (b == 0) continue;
    const double s = std::generate_canonical<double, 53>(random);
    // c so that a s - b c is nearly a half of an integer
    const double half = static_cast<double>(static_cast<int64_t>(random() % 2000) * 2 + 1) / 4;
    const double c = (0.5 * static_cast<double>(a) * s - half) / (0.5 * static_cast<double>(b));
    if (!(std::fabs(c) <= 1) || (c != 0 && std::fabs(c) < 0x1p-50)) continue;
    const Extended sum = Extended(a) / 2 * s - Extended(b) / 2 * c + 3.5;
    ASSERT_EQ(RoundExtendedSum(a, s, b, c, 7), RoundEven(sum)) << a << " " << b << " " << i;
  }
}

TEST(RotationMappingTest, TheInsideRunHoldsExactlyThePixelsWithASource) {
  std::mt19937 random(14);
  for (int i = 0; i < 300; ++i) {
    const int width = static_cast<int>(random() % 50), height = static_cast<int>(random() % 50);
    const float degrees =
        i < 24 ? static_cast<float>(i * 15) : static_cast<float>(random() % 36000) / 100;
    const SineCosine turn = SineCosineOfDegrees(degrees);
    const Size size = RotatedSize(width, height, turn);
    const RotationMapping mapping(turn, width, height, static_cast<int>(size.width),
                                  static_cast<int>(size.height));
    for (int y = 0; y < size.height; ++y) {
      const RotationMapping::Run run = mapping.InsideRun(y);
      for (int x = 0; x < size.width; ++x) {
        const int64_t column = mapping.SourceColumn(x, y), row = mapping.SourceRow(x, y);
        const bool isInside = column >= 0 && column < width && row >= 0 && row < height;
        ASSERT_EQ(isInside, x >= run.first && x < run.last) << degrees << ": " << x << ", " << y;
      }
    }
  }
}

TEST(RotatedSizeTest, FortyFiveDegreesGiveTheSameOnBothSides) {
  const Size size = RotatedSize(100, 41, SineCosineOfDegrees(45));
  EXPECT_EQ(size.width, 29 + 71);
  EXPECT_EQ(size.height, 71 + 29);
}

TEST(RotatedSizeTest, ThirtyDegreesHaveASineOfExactlyAHalf) {
  // 5 * 0.5 = 2.5 and 7 * 0.5 = 3.5 round to the even neighbor
  EXPECT_EQ(RotatedSize(5, 7, SineCosineOfDegrees(30)).width, 4 + 4);
  EXPECT_EQ(RotatedSize(5, 7, SineCosineOfDegrees(30)).height, 2 + 6);
}

}  // namespace
}  // namespace rasterkit::kernels
