#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/kernels/turn/turn_pixels.h>

#include "tests/support/simd_targets.h"
#include "tests/support/test_rows.h"

// Turns of packed pixels that begin inside of a byte: those of the same pixels from a byte on.
namespace rasterkit {
namespace {

using kernels::AxisTurn;
using test::TestRows;

class TurnPackedPartsTest : public testing::TestWithParam<int> {};

TEST_P(TurnPackedPartsTest, AreThoseOfWholeBytes) {
  const int bits = GetParam();
  std::mt19937 random(12);
  for (int skipped = 0; skipped < 8 / bits; ++skipped) {
    for (const int height : {1, 7, 16, 33, 70}) {
      for (const int width : {1, 2, 7, 8, 9, 31, 64, 65, 127, 128, 129, 150}) {
        TestRows wide(skipped + width, height, bits), source(width, height, bits);
        wide.FillRandomly(random);
        for (int y = 0; y < height; ++y) {
          for (int x = 0; x < width; ++x) source.SetPixel(x, y, wide.Pixel(skipped + x, y));
        }
        for (int number = 0; number < 8; ++number) {
          const AxisTurn turn{(number & 1) != 0, (number & 2) != 0, (number & 4) != 0};
          const int across = turn.transpose ? height : width,
                    down = turn.transpose ? width : height;
          TestRows expected(across, down, bits);
          kernels::TurnPixels(source.Rows(), expected.Rows(), bits, turn);
          const kernels::ConstPixelRows all = wide.Rows();
          test::ForEachSimdTarget([&](int64_t simd) {
            TestRows target(across, down, bits);
            target.FillRandomly(random);
            kernels::TurnPixels({all.data, all.stride, width, height}, target.Rows(), bits, turn,
                                skipped);
            ASSERT_EQ(target.bytes, expected.bytes)
                << skipped << " before " << width << " x " << height << ", turn " << number << ", "
                << hwy::TargetName(simd);
          });
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, TurnPackedPartsTest, testing::Values(1, 4));

}  // namespace
}  // namespace rasterkit
