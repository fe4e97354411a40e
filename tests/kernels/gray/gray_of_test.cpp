#include <gtest/gtest.h>

#include <rasterkit/kernels/gray/gray.h>

#include "tests/reference/gray.h"

namespace rasterkit::kernels {
namespace {

using reference::GrayInExtended;
using reference::GrayInWholeNumbers;

/// Calls `check(r, g, b)` for all 16,777,216 colors until it answers false.
template <class Check>
void ForEveryColor(Check check) {
  for (int r = 0; r < 256; ++r) {
    for (int g = 0; g < 256; ++g) {
      for (int b = 0; b < 256; ++b) {
        if (!check(static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)))
          return;
      }
    }
  }
}

TEST(GrayOf, Should_EqualTheExtendedSum_For_EveryColor) {
  ForEveryColor([](uint8_t r, uint8_t g, uint8_t b) {
    EXPECT_EQ(GrayOf(r, g, b), GrayInExtended(r, g, b)) << +r << "," << +g << "," << +b;
    return !testing::Test::HasFailure();
  });
}

TEST(GrayOf, Should_EqualTheExtendedSumInWholeNumbers_For_EveryColor) {
  ForEveryColor([](uint8_t r, uint8_t g, uint8_t b) {
    EXPECT_EQ(GrayOf(r, g, b), GrayInWholeNumbers(r, g, b)) << +r << "," << +g << "," << +b;
    return !testing::Test::HasFailure();
  });
}

TEST(GrayExceptions, Should_NeedNoBlue_Because_AtMostOneBlueMakesTheSumWhole) {
  for (int rg = 0; rg < 65536; ++rg) {
    int wholeSums = 0;
    for (int b = 0; b < 256; ++b)
      wholeSums += (297 * (rg / 256) + 589 * (rg % 256) + 114 * b) % 1000 == 0;
    ASSERT_LE(wholeSums, 1) << "red " << rg / 256 << ", green " << rg % 256;
  }
}

TEST(GrayExceptions, Should_ChangeExactly461Colors) {
  int changed = 0;
  ForEveryColor([&changed](uint8_t r, uint8_t g, uint8_t b) {
    changed += GrayOf(r, g, b) != (297 * r + 589 * g + 114 * b) / 1000;
    return true;
  });
  EXPECT_EQ(changed, 461);
}

}  // namespace
}  // namespace rasterkit::kernels
