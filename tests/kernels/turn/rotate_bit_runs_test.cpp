#include <algorithm>
#include <cmath>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/kernels/turn/rotate_bit_runs.h>
#include <rasterkit/kernels/turn/rotate_pixels.h>

#include "tests/reference/rotate_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_rows.h"

namespace rasterkit {
namespace {

using kernels::SineCosine;
using test::TestRows;

class RotateBitRunsTest : public testing::Test {
 protected:
  /// One picture, one turn: the reference once, then every SIMD target.
  void Compare(int width, int height, reference::Turn turn) {
    TestRows source(width, height, 1);
    source.FillRandomly(random_);
    const bool background = random_() % 2 == 0;
    const TestRows expected = reference::Rotate(source, turn, background);
    const kernels::RotationMapping mapping(SineCosine{turn.sine, turn.cosine}, width, height,
                                           expected.width, expected.height);
    ASSERT_TRUE(kernels::TakesLongRuns(mapping, expected.height)) << turn.sine;
    test::ForEachSimdTarget([&](int64_t simd) {
      TestRows target(expected.width, expected.height, 1);
      kernels::RotatePixels(mapping, source.Rows(), target.Rows(), 1, background, 0, target.height);
      ASSERT_TRUE(target.bytes == expected.bytes)
          << width << " x " << height << ", sine " << turn.sine << ", cosine " << turn.cosine
          << ", " << hwy::TargetName(simd);
    });
  }

  std::mt19937 random_{80};
};

TEST_F(RotateBitRunsTest, EqualsTheReferenceAtSmallAngles) {
  for (float degrees : {0.0f, 0.008f, 0.01f, 0.03f, 0.1f, 0.7f, 2.0f, 5.0f, 11.5f})
    for (float base : {0.0f, 180.0f, 360.0f})
      for (float sign : {1.0f, -1.0f})
        for (int i = 0; i < 2 && !HasFatalFailure(); ++i)
          Compare(1 + random_() % 1500, 1 + random_() % 150,
                  reference::ExactTurn(base + sign * degrees));
}

TEST_F(RotateBitRunsTest, EqualsTheReferenceForHighAndEmptyPictures) {
  for (float degrees : {0.01f, 0.5f, 2.0f, 9.0f, 178.0f, 191.0f, 351.0f})
    for (int width : {0, 1, 7, 8, 9, 55, 56, 57, 70})
      for (int height : {0, 1, 2, 900})
        if (!HasFatalFailure()) Compare(width, height, reference::ExactTurn(degrees));
}

// With such numbers places of breaks are whole numbers and sources exact halves, over and over: all
// of them are for the exact rule.
TEST_F(RotateBitRunsTest, EqualsTheReferenceWhereBreaksFallOnPixels) {
  for (double sine : {1.0 / 8, 3.0 / 16, 1.0 / 32, 5.0 / 256, 1.0 / 1024})
    for (double lag : {1.0 / 64, 1.0 / 256, 1.0 / 65536, 3.0 / 128})
      for (double sign : {1.0, -1.0})
        for (int i = 0; i < 3 && !HasFatalFailure(); ++i) {
          Compare(1 + random_() % 400, 1 + random_() % 60, {sign * sine, 1 - lag});
          Compare(1 + random_() % 400, 1 + random_() % 60, {sign * sine, lag - 1});
        }
}

// Places of breaks that the steps' own roundings move across a whole number.
TEST_F(RotateBitRunsTest, EqualsTheReferenceWhereBreaksFallBesidePixels) {
  for (double sine : {1.0 / 8, 1.0 / 128, 1.0 / 4096})
    for (double lag : {1.0 / 64, 1.0 / 1024})
      for (double off : {0x1p-36, -0x1p-36, 0x1p-33, -0x1p-33, 0x1p-50, -0x1p-50})
        for (int i = 0; i < 2 && !HasFatalFailure(); ++i) {
          Compare(300 + random_() % 400, 1 + random_() % 60, {sine + off, 1 - lag + off});
          Compare(300 + random_() % 400, 1 + random_() % 60, {-sine - off, lag - 1 + off});
        }
}

TEST_F(RotateBitRunsTest, EqualsTheReferenceForVeryWidePictures) {
  Compare((1 << 17) - 5, 2, reference::ExactTurn(0.009f));
  Compare((1 << 17), 1, reference::ExactTurn(180.02f));
  Compare(1, 1 << 17, reference::ExactTurn(359.985f));
}

TEST_F(RotateBitRunsTest, EqualsTheReferenceAtLargeSizesInTheFullRun) {
  if (!test::IsFullRun()) GTEST_SKIP() << "set RASTERKIT_FULL=1";
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << "\n";
  random_.seed(seed);
  for (int i = 0; i < 150 && !HasFatalFailure(); ++i) {
    const double degrees = std::exp2(std::uniform_real_distribution<double>(-6.8, 3.5)(random_));
    const float base = i % 2 == 0 ? 0.0f : 180.0f;
    Compare(1 + random_() % 4000, 1 + random_() % 2000,
            reference::ExactTurn(base + static_cast<float>(i % 4 < 2 ? degrees : -degrees)));
  }
}

TEST(TakesLongRunsTest, IsForTurnsNearToNoneOrHalfATurn) {
  const auto takes = [](float degrees, int width, int height) {
    const SineCosine turn = kernels::SineCosineOfDegrees(degrees);
    const kernels::Size size = kernels::RotatedSize(width, height, turn);
    return kernels::TakesLongRuns(
        {turn, width, height, static_cast<int>(size.width), static_cast<int>(size.height)},
        static_cast<int>(size.height));
  };
  for (float degrees : {0.01f, 11.5f, 348.5f, 168.5f, 180.0f, 191.5f})
    EXPECT_TRUE(takes(degrees, 100, 100)) << degrees;
  // Steeper ones; those so small that columns may jump; pictures beyond the fixed-point steps.
  for (float degrees : {11.6f, 30.0f, 90.0f, 89.0f, 168.4f, 270.0f, 0.0069f, 179.995f})
    EXPECT_FALSE(takes(degrees, 100, 100)) << degrees;
  EXPECT_FALSE(takes(2, (1 << 17) + 1, 100));
  EXPECT_FALSE(takes(2, 100, (1 << 17) + 1));
}

}  // namespace
}  // namespace rasterkit
