#include <algorithm>

#include <gtest/gtest.h>

#include <rasterkit/kernels/halftone/halftone_axis.h>

namespace rasterkit::kernels {
namespace {

/// Parts of the old positions, `length` of which make one, that a target position and a reduced
/// position have in common.
int64_t Overlap(const ReducedSide& side, int64_t length, int64_t target, int64_t position) {
  const int64_t rest = side.restIsFirst ? side.Length() * side.block - side.size : 0;
  const int64_t from =
      std::max({(position * side.block - rest) * length, target * side.size, int64_t{0}});
  const int64_t end = std::min({((position + 1) * side.block - rest) * length,
                                (target + 1) * side.size, side.size * length});
  return std::max(end - from, int64_t{0});
}

int64_t WeightOf(const HalftoneAxis& axis, const HalftoneTap& tap, int64_t position) {
  if (position < tap.first || position >= tap.first + tap.count) return 0;
  if (position == tap.first) return tap.firstWeight;
  return position == tap.first + tap.count - 1 ? tap.lastWeight : axis.innerWeight;
}

TEST(ReducedAxis, Weights_Should_BeTheCoveredParts) {
  int axes = 0;
  for (const bool restIsFirst : {false, true}) {
    for (const int64_t block : {1, 2, 4, 8}) {
      for (int64_t size = 3; size <= 70; ++size) {
        const ReducedSide side{size, block, restIsFirst};
        for (int64_t length = 1; length < side.Length(); ++length) {
          const HalftoneAxis axis = MakeReducedAxis(length, side);
          ++axes;
          ASSERT_EQ(axis.taps.size(), static_cast<size_t>(length));
          for (int64_t i = 0; i < length; ++i) {
            const HalftoneTap& tap = axis.taps[static_cast<size_t>(i)];
            ASSERT_GE(tap.first, 0);
            ASSERT_LE(tap.first + tap.count, side.Length());
            for (int64_t j = 0; j < side.Length(); ++j) {
              // Both are the same part of the whole.
              ASSERT_EQ(WeightOf(axis, tap, j) * size, Overlap(side, length, i, j) * axis.total)
                  << size << " by " << block << " to " << length << ": " << j << " in " << i;
            }
          }
        }
      }
    }
  }
  EXPECT_GT(axes, 4000);
}

TEST(ReducedAxis, Blocks_Should_MakeNoDifference_When_TheyAreWhole) {
  for (const int64_t length : {3, 7, 50}) {
    const HalftoneAxis whole = MakeHalftoneAxis(length, 100, 0, length, false, HalftoneRule::area);
    for (const bool restIsFirst : {false, true}) {
      const HalftoneAxis axis = MakeReducedAxis(length, {800, 8, restIsFirst});
      EXPECT_EQ(axis.total, whole.total);
      for (size_t i = 0; i < axis.taps.size(); ++i) {
        EXPECT_EQ(axis.taps[i].first, whole.taps[i].first);
        EXPECT_EQ(axis.taps[i].firstWeight, whole.taps[i].firstWeight);
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit::kernels
