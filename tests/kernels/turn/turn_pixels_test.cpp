#include <random>

#include <gtest/gtest.h>

#include <rasterkit/kernels/turn/turn_pixels.h>

#include "tests/support/simd_targets.h"
#include "tests/support/test_rows.h"

namespace rasterkit {
namespace {

using kernels::AxisTurn;
using test::TestRows;

AxisTurn TurnNumber(int number) {
  return {(number & 1) != 0, (number & 2) != 0, (number & 4) != 0};
}

TestRows TargetOf(const TestRows& source, AxisTurn turn, int bits) {
  return turn.transpose ? TestRows(source.height, source.width, bits)
                        : TestRows(source.width, source.height, bits);
}

// The definition of a turn, a pixel at a time.
TestRows PlainTurn(const TestRows& source, AxisTurn turn, int bits) {
  TestRows target = TargetOf(source, turn, bits);
  target.FillWith(0);
  for (int y = 0; y < target.height; ++y)
    for (int x = 0; x < target.width; ++x) {
      const int u = turn.mirrorX ? target.width - 1 - x : x;
      const int v = turn.mirrorY ? target.height - 1 - y : y;
      target.SetPixel(x, y, turn.transpose ? source.Pixel(v, u) : source.Pixel(u, v));
    }
  return target;
}

class TurnPixelsTest : public testing::TestWithParam<int> {};

TEST_P(TurnPixelsTest, EqualsThePlainLoopInAllEightTurnsAndOddSizes) {
  const int bits = GetParam();
  std::mt19937 random(4711);
  for (int height : {0, 1, 2, 3, 5, 8, 13, 31, 33, 70})
    for (int width : {0, 1, 2, 3, 4, 5, 7, 15, 16, 17, 31, 32, 33, 47, 65, 70}) {
      TestRows source(width, height, bits);
      source.FillRandomly(random);
      for (int number = 0; number < 8; ++number) {
        const AxisTurn turn = TurnNumber(number);
        const TestRows expected = PlainTurn(source, turn, bits);
        test::ForEachSimdTarget([&](int64_t simd) {
          TestRows target = TargetOf(source, turn, bits);
          kernels::TurnPixels(source.Rows(), target.Rows(), bits, turn);
          ASSERT_EQ(target.bytes, expected.bytes)
              << width << " x " << height << ", turn " << number << ", " << hwy::TargetName(simd);
        });
      }
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, TurnPixelsTest, testing::Values(1, 4, 8, 16, 24, 32));

// Larger than a tile of bits in both directions, and than the blocks in it.
TEST(TurnBitsTest, EqualsThePlainLoopBeyondTiles) {
  std::mt19937 random(4713);
  for (int height : {63, 64, 129, 530})
    for (int width : {97, 127, 128, 129, 255, 512, 513, 1100}) {
      TestRows source(width, height, 1);
      source.FillRandomly(random);
      for (int number = 0; number < 8; ++number) {
        const AxisTurn turn = TurnNumber(number);
        const TestRows expected = PlainTurn(source, turn, 1);
        test::ForEachSimdTarget([&](int64_t simd) {
          TestRows target = TargetOf(source, turn, 1);
          kernels::TurnPixels(source.Rows(), target.Rows(), 1, turn);
          ASSERT_TRUE(target.bytes == expected.bytes)
              << width << " x " << height << ", turn " << number << ", " << hwy::TargetName(simd);
        });
      }
    }
}

TEST(TurnPixels32To24Test, DropsTheFourthByte) {
  std::mt19937 random(4712);
  for (int height : {1, 2, 9, 33, 50})
    for (int width : {1, 3, 8, 17, 34, 67}) {
      TestRows source(width, height, 32);
      source.FillRandomly(random);
      for (int number = 0; number < 8; ++number) {
        const AxisTurn turn = TurnNumber(number);
        const TestRows expected = PlainTurn(source, turn, 24);
        test::ForEachSimdTarget([&](int64_t simd) {
          TestRows target = TargetOf(source, turn, 24);
          kernels::TurnPixels32To24(source.Rows(), target.Rows(), turn);
          ASSERT_EQ(target.bytes, expected.bytes)
              << width << " x " << height << ", turn " << number << ", " << hwy::TargetName(simd);
        });
      }
    }
}

}  // namespace
}  // namespace rasterkit
