#include <algorithm>
#include <cmath>
#include <iostream>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/turn/rotate_pixels.h>

#include "tests/reference/rotate_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_rows.h"

namespace rasterkit {
namespace {

using kernels::SineCosine;
using test::TestRows;

constexpr int kFormats[] = {1, 4, 8, 16, 24, 32};

int casesDone = 0;

/// One picture, one angle: the reference once, then every SIMD target, the rows in bands of several
/// heights.
void CompareRotation(int width, int height, int bits, float degrees, std::mt19937& random) {
  TestRows source(width, height, bits);
  source.FillRandomly(random);
  const uint32_t background = bits == 32 ? random() : random() & ((1u << bits) - 1);
  const reference::Turn turn = reference::ExactTurn(degrees);
  const TestRows expected = reference::Rotate(source, turn, background);

  const SineCosine fast = kernels::SineCosineOfDegrees(degrees);
  ASSERT_EQ(fast.sine, turn.sine) << degrees;
  ASSERT_EQ(fast.cosine, turn.cosine) << degrees;
  const kernels::Size size = kernels::RotatedSize(width, height, fast);
  ASSERT_EQ(size.width, expected.width) << degrees;
  ASSERT_EQ(size.height, expected.height) << degrees;

  const kernels::RotationMapping mapping(fast, width, height, expected.width, expected.height);
  const int band = 1 + static_cast<int>(random() % 90);
  test::ForEachSimdTarget([&](int64_t simd) {
    TestRows target(expected.width, expected.height, bits);
    for (int y = 0; y < target.height; y += band)
      kernels::RotatePixels(mapping, source.Rows(), target.Rows(), bits, background, y,
                            std::min(y + band, target.height));
    ASSERT_TRUE(target.bytes == expected.bytes)
        << width << " x " << height << ", " << bits << " bits, " << degrees << " degrees, bands of "
        << band << ", " << hwy::TargetName(simd);
    ++casesDone;
  });
}

std::vector<float> Angles() {
  std::vector<float> angles;
  for (int degrees = 0; degrees < 360; ++degrees) angles.push_back(static_cast<float>(degrees));
  for (float quarter : {0.0f, 90.0f, 180.0f, 270.0f, 360.0f})
    for (float off : {0.01f, 0.1f, 0.4f, 0.49f, 0.5f, 0.51f, 0.6f}) {
      angles.push_back(quarter + off);
      angles.push_back(quarter - off);
    }
  for (float base : {30.0f, 45.0f, 60.0f, 90.0f, 135.0f, 180.0f, 270.0f}) {
    angles.push_back(std::nextafter(base, 0.0f));
    angles.push_back(std::nextafter(base, 400.0f));
  }
  return angles;
}

class RotatePixelsTest : public testing::TestWithParam<int> {};

TEST_P(RotatePixelsTest, EqualsTheReferenceAtSmallSizesAndEveryWholeDegree) {
  std::mt19937 random(20 + GetParam());
  for (float degrees : Angles())
    for (int i = 0; i < 4 && !HasFatalFailure(); ++i)
      CompareRotation(1 + random() % 70, 1 + random() % 70, GetParam(), degrees, random);
  std::cout << casesDone << " pictures compared\n";
}

TEST_P(RotatePixelsTest, EqualsTheReferenceForEmptyAndThinPictures) {
  std::mt19937 random(30 + GetParam());
  for (float degrees :
       {0.5f, 30.0f, 45.0f, 60.0f, 89.0f, 90.0f, 91.0f, 135.0f, 180.0f, 222.2f, 270.0f, 359.5f})
    for (int width : {0, 1, 2, 3, 4, 5, 64, 300})
      for (int height : {0, 1, 2, 3, 4, 5, 64, 300})
        if (!HasFatalFailure()) CompareRotation(width, height, GetParam(), degrees, random);
}

TEST_P(RotatePixelsTest, EqualsTheReferenceWithinATilesBorders) {
  std::mt19937 random(40 + GetParam());
  for (float degrees : {0.02f, 5.0f, 30.0f, 45.0f, 60.0f, 90.001f, 123.4f, 200.0f, 315.0f})
    for (int i = 0; i < 3 && !HasFatalFailure(); ++i)
      CompareRotation(120 + random() % 200, 120 + random() % 200, GetParam(), degrees, random);
}

// Beyond the fixed-point steps' range every pixel goes by the exact rule.
TEST_P(RotatePixelsTest, EqualsTheReferenceForVeryWidePictures) {
  std::mt19937 random(60 + GetParam());
  CompareRotation(140001, 1, GetParam(), 180.0005f, random);
  CompareRotation(2, 140000, GetParam(), 0.0002f, random);
}

// Centers of more than 24 bits are cut by their single precision.
TEST_P(RotatePixelsTest, EqualsTheReferenceWhereTheCenterIsCutInTheFullRun) {
  if (!test::IsFullRun()) GTEST_SKIP() << "set RASTERKIT_FULL=1";
  std::mt19937 random(70 + GetParam());
  CompareRotation((1 << 25) + 7, 1, GetParam(), 180.0f, random);
}

TEST_P(RotatePixelsTest, EqualsTheReferenceAtLargeSizesInTheFullRun) {
  if (!test::IsFullRun()) GTEST_SKIP() << "set RASTERKIT_FULL=1";
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << "\n";
  std::mt19937 random(seed);
  const std::vector<float> angles = Angles();
  for (int i = 0; i < 150 && !HasFatalFailure(); ++i) {
    const float degrees = i % 2 == 0 ? angles[random() % angles.size()]
                                     : std::uniform_real_distribution<float>(0, 360)(random);
    CompareRotation(random() % 3001, random() % 3001, GetParam(), degrees, random);
  }
  std::cout << casesDone << " pictures compared\n";
}

INSTANTIATE_TEST_SUITE_P(Formats, RotatePixelsTest, testing::ValuesIn(kFormats));

}  // namespace
}  // namespace rasterkit
