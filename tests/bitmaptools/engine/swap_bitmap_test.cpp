#include <algorithm>
#include <array>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>

#include "tests/reference/composition_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

/// A bitmap with random padding, which must not change.
TBitmap DirtyBitmap(TPixelFormat format, int width, int height, std::mt19937& random) {
  TBitmap bitmap = test::RandomBitmap(format, width, height, random);
  for (int y = 0; y < height; ++y) {
    for (size_t i = 0; i < bitmap.Stride(); ++i)
      bitmap.ScanLine(y)[i] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

std::unique_ptr<TBitmap> CloneWithPadding(const TBitmap& bitmap) {
  std::unique_ptr<TBitmap> copy = bitmap.Clone();
  for (int y = 0; y < bitmap.Height(); ++y)
    std::copy_n(bitmap.ScanLine(y), bitmap.Stride(), copy->ScanLine(y));
  return copy;
}

void ExpectSameRows(const TBitmap& expected, const TBitmap& actual) {
  for (int y = 0; y < expected.Height(); ++y)
    ASSERT_TRUE(std::equal(expected.ScanLine(y), expected.ScanLine(y) + expected.Stride(),
                           actual.ScanLine(y)))
        << "row " << y;
}

void ExpectMirroredLikeReference(TPixelFormat format, int width, int height, std::mt19937& random) {
  for (const bool horizontal : {false, true}) {
    TBitmap bitmap = DirtyBitmap(format, width, height, random);
    const std::unique_ptr<TBitmap> expected = CloneWithPadding(bitmap);
    reference::SwapBitmap(horizontal, *expected);
    SwapBitmap(horizontal, &bitmap);
    SCOPED_TRACE(testing::Message() << "format " << format << ", " << width << " x " << height
                                    << (horizontal ? ", left-right" : ", top-bottom"));
    ASSERT_NO_FATAL_FAILURE(ExpectSameRows(*expected, bitmap));
  }
}

TEST(SwapBitmapTest, EveryFormatWidthAndTarget_EqualTheReferenceToThePaddingBit) {
  constexpr unsigned kSeed = 88;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    std::mt19937 random(kSeed);
    for (const TPixelFormat format : test::kEveryFormat)
      for (int width = 0; width <= 70; ++width)
        for (const int height : {4, 5})
          ASSERT_NO_FATAL_FAILURE(ExpectMirroredLikeReference(format, width, height, random));
  });
}

TEST(SwapBitmapTest, LargeSizes_EqualTheReference) {
  std::mt19937 random(3);
  const int limit = test::IsFullRun() ? 5003 : 1003;
  for (const TPixelFormat format : test::kEveryFormat)
    for (int width = 601; width <= limit; width += 201)
      ASSERT_NO_FATAL_FAILURE(ExpectMirroredLikeReference(format, width, 7, random));
}

TEST(SwapBitmapTest, SmallSizes_EqualTheReference) {
  std::mt19937 random(9);
  for (const TPixelFormat format : test::kEveryFormat)
    for (int width = 0; width <= 4; ++width)
      for (int height = 0; height <= 4; ++height)
        ASSERT_NO_FATAL_FAILURE(ExpectMirroredLikeReference(format, width, height, random));
}

TEST(SwapBitmapTest, LeftRight_Should_LeaveLastColumnAndLastRow) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 5, 3);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  SwapBitmap(true, &bitmap);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(bitmap.PixelColor(x, y), before->PixelColor(3 - x, y)) << x << ", " << y;
    EXPECT_EQ(bitmap.PixelColor(4, y), before->PixelColor(4, y)) << "last column, row " << y;
  }
  for (int x = 0; x < 5; ++x) EXPECT_EQ(bitmap.PixelColor(x, 2), before->PixelColor(x, 2));
}

TEST(SwapBitmapTest, TopBottom_Should_LeaveLastColumnAndLastRow) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 3, 5);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  SwapBitmap(false, &bitmap);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 2; ++x)
      EXPECT_EQ(bitmap.PixelColor(x, y), before->PixelColor(x, 3 - y)) << x << ", " << y;
    EXPECT_EQ(bitmap.PixelColor(2, y), before->PixelColor(2, y)) << "last column, row " << y;
  }
  for (int x = 0; x < 3; ++x) EXPECT_EQ(bitmap.PixelColor(x, 4), before->PixelColor(x, 4));
}

TEST(SwapBitmapTest, EveryFormat_Should_EqualTheParallelogramCopy) {
  std::mt19937 random(31);
  for (const TPixelFormat format : test::kEveryFormat) {
    const int w = 23, h = 11;
    const std::array<TPoint, 3> corners[2] = {{{{0, h - 1}, {w - 1, h - 1}, {0, 0}}},
                                              {{{w - 1, 0}, {0, 0}, {w - 1, h - 1}}}};
    for (const bool horizontal : {false, true}) {
      TBitmap bitmap = test::WithoutUnusedBits(test::RandomBitmap(format, w, h, random));
      const std::unique_ptr<TBitmap> copy = bitmap.Clone(), drawn = bitmap.Clone();
      drawn->Canvas().PlgBlt(corners[horizontal ? 1 : 0], *copy, {0, 0, w - 1, h - 1});
      SwapBitmap(horizontal, &bitmap);
      EXPECT_TRUE(test::SamePixels(*drawn, bitmap)) << "format " << format;
    }
  }
}

TEST(SwapBitmapTest, Properties_Should_Stay) {
  SwapBitmap(true, nullptr);
  TBitmap bitmap = test::GradientBitmap(pf32bit, 6, 6);
  bitmap.SetAlphaFormat(afDefined);
  bitmap.SetDpi({96, 48});
  bitmap.SetTransparentColor(RGB(1, 2, 3));
  bitmap.SetModified(false);
  SwapBitmap(true, &bitmap);
  EXPECT_TRUE(bitmap.Modified());
  EXPECT_EQ(bitmap.AlphaFormat(), afDefined);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{96, 48}));
  EXPECT_EQ(bitmap.TransparentColor(), RGB(1, 2, 3));
}

}  // namespace
}  // namespace rasterkit
