#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/kernels/mix/swap_alpha.h>

#include "tests/reference/composition_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::SamePixels;

/// Random colors; about a third of the pixels has alpha 0, a third 255.
TBitmap AlphaBitmap(int width, int height, std::mt19937& random) {
  TBitmap bitmap = test::RandomBitmap(pf32bit, width, height, random);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t& alpha = bitmap.ScanLine(y)[4 * x + 3];
      const auto kind = random() % 3;
      if (kind < 2) alpha = kind == 0 ? 0 : 255;
    }
  }
  return bitmap;
}

TEST(SwapAlphaTest, EveryWidthAndTarget_EqualTheReference) {
  constexpr unsigned kSeed = 1024;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    std::mt19937 random(kSeed);
    for (int width = 0; width <= 70; ++width) {
      TBitmap bitmap = AlphaBitmap(width, 3, random);
      const std::unique_ptr<TBitmap> expected = bitmap.Clone();
      reference::SwapAlpha(*expected);
      SwapAlpha(&bitmap);
      ASSERT_TRUE(SamePixels(*expected, bitmap)) << width << " pixels";
    }
  });
}

TEST(SwapAlphaTest, Kernel_Should_TouchNothingBeyondItsPixels) {
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    for (size_t count = 0; count <= 70; ++count) {
      std::vector<uint8_t> row(4 * count + 8, 0x55);
      kernels::SwapAlpha32(row.data() + 3, count);
      for (size_t i = 0; i < row.size(); ++i) {
        const bool isAlpha = i >= 3 && i < 4 * count + 3 && (i - 3) % 4 == 3;
        ASSERT_EQ(row[i], isAlpha ? 0 : 0x55) << count << " pixels, byte " << i;
      }
    }
  });
}

TEST(SwapAlphaTest, EveryAlpha_Should_BecomeZeroAndZeroBecome255) {
  TBitmap bitmap = test::GradientBitmap(pf32bit, 256, 1);
  for (int x = 0; x < 256; ++x) bitmap.ScanLine(0)[4 * x + 3] = static_cast<uint8_t>(x);
  bitmap.SetModified(false);
  SwapAlpha(&bitmap);
  for (int x = 0; x < 256; ++x) ASSERT_EQ(bitmap.ScanLine(0)[4 * x + 3], x == 0 ? 255 : 0);
  EXPECT_TRUE(bitmap.Modified());
}

TEST(SwapAlphaTest, Twice_Should_RestoreOnlyAlphasOf0And255) {
  TBitmap bitmap = test::GradientBitmap(pf32bit, 3, 1);
  const uint8_t alphas[3] = {0, 255, 7};
  for (int x = 0; x < 3; ++x) bitmap.ScanLine(0)[4 * x + 3] = alphas[x];
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  SwapAlpha(&bitmap);
  SwapAlpha(&bitmap);
  EXPECT_EQ(std::memcmp(bitmap.ScanLine(0), before->ScanLine(0), 8), 0);
  EXPECT_EQ(bitmap.ScanLine(0)[11], 255) << "alpha 7 became 0 and then 255";
}

TEST(SwapAlphaTest, OtherFormatsAndNull_Should_StayAsTheyAre) {
  SwapAlpha(nullptr);
  std::mt19937 random(5);
  for (const TPixelFormat format :
       {pfDevice, pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pfCustom}) {
    const bool hasName = format != pfDevice && format != pfCustom;
    TBitmap bitmap = test::RandomBitmap(hasName ? format : pf32bit, 13, 7, random);
    bitmap.SetPixelFormat(format);
    const std::unique_ptr<TBitmap> before = bitmap.Clone();
    SwapAlpha(&bitmap);
    EXPECT_TRUE(SamePixels(*before, bitmap)) << "format " << format;
  }
}

}  // namespace
}  // namespace rasterkit
