#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/colors/gray_counts.h>
#include <rasterkit/dialogs/values/gray_counting.h>
#include <rasterkit/pictures/picture.h>

#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

constexpr unsigned kSeed = 99;

/// What the window finds is what the step without a threshold finds: the same black and white.
TEST(GrayCounts, TheirThreshold_Should_BeThatOfTheStep) {
  std::mt19937 random(kSeed);
  for (int i = 0; i < 20; ++i) {
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
      SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i << " format " << format);
      TBitmap picture = test::PaperBitmap(format, 1 + static_cast<int>(random() % 50),
                                          1 + static_cast<int>(random() % 50), random, 1);
      if (format == pf32bit && random() % 2 == 0) picture.SetAlphaFormat(afDefined);
      if (random() % 2 == 0) picture.SetTransparent(true);
      Picture automatic = Picture::Of(picture.Clone()), chosen = Picture::Of(picture.Clone());
      automatic.Change(MakeMono{std::nullopt});
      chosen.Change(MakeMono{detail::OtsuThreshold(CountGraysOf(picture))});
      EXPECT_TRUE(test::SamePixels(*automatic.Bitmap(), *chosen.Bitmap()));
    }
  }
}

TEST(GrayCounts, Rows_Should_AddUp) {
  std::mt19937 random(kSeed);
  const TBitmap picture = test::PaperBitmap(pf24bit, 33, 20, random);
  GrayCounts sum{};
  for (const auto& [first, last] : {std::pair(0, 7), std::pair(7, 8), std::pair(8, 20)}) {
    const GrayCounts part = CountGrays(picture.Content(), std::nullopt, first, last);
    for (size_t i = 0; i < sum.size(); ++i) sum[i] += part[i];
  }
  EXPECT_EQ(sum, CountGraysOf(picture));
  uint64_t all = 0;
  for (const uint64_t count : sum) all += count;
  EXPECT_EQ(all, 33u * 20u);
}

}  // namespace
}  // namespace rasterkit
