#include "tests/reference/transparency.h"

#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;
using test::SamePixels;

/// Random 32-bit pixels of which one in `rarity` has alpha 0.
TBitmap HoledBitmap(int width, int height, unsigned rarity, std::mt19937& random) {
  TBitmap bitmap = test::RandomBitmap(pf32bit, width, height, random);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t& alpha = bitmap.ScanLine(y)[4 * x + 3];
      if (alpha == 0) alpha = 1;
      if (random() % rarity == 0) alpha = 0;
    }
  }
  return bitmap;
}

TEST(ResetTransparentTest, EverySizeAndTarget_EqualTheReference) {
  constexpr unsigned kSeed = 20260;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    std::mt19937 random(kSeed);
    for (int width = 0; width <= 70; ++width) {
      for (const unsigned rarity : {1u, 2u, 9u, 100u}) {
        TBitmap bitmap = HoledBitmap(width, 3, rarity, random);
        bitmap.SetTransparent(true);
        const std::unique_ptr<TBitmap> expected = bitmap.Clone();
        reference::ResetTransparent(*expected);
        ResetTransparent(bitmap);
        ASSERT_TRUE(SamePixels(*expected, bitmap)) << width << " pixels, one in " << rarity;
        ASSERT_FALSE(bitmap.Transparent());
      }
    }
  });
}

TEST(ResetTransparentTest, EveryAlphaButZero_StaysWithItsColor) {
  TBitmap bitmap = GradientBitmap(pf32bit, 256, 1);
  for (int x = 0; x < 256; ++x) bitmap.ScanLine(0)[4 * x + 3] = static_cast<uint8_t>(x);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  bitmap.SetTransparent(true);
  ResetTransparent(bitmap);
  EXPECT_EQ(bitmap.PixelColor(0, 0), clWhite);
  EXPECT_EQ(bitmap.ScanLine(0)[3], 255);
  EXPECT_EQ(std::memcmp(bitmap.ScanLine(0) + 4, before->ScanLine(0) + 4, 255 * 4), 0);
}

TEST(ResetTransparentTest, BitmapThatIsNotTransparent_StaysAsItIs) {
  std::mt19937 random(3);
  TBitmap bitmap = HoledBitmap(13, 7, 2, random);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  ResetTransparent(bitmap);
  EXPECT_TRUE(SamePixels(*before, bitmap));
  EXPECT_FALSE(bitmap.Modified());
}

TEST(ResetTransparentTest, TransparentBitmapOfAnotherFormat_StaysTransparent) {
  for (const TPixelFormat format :
       {pfDevice, pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pfCustom}) {
    TBitmap bitmap = format == pfDevice || format == pfCustom ? GradientBitmap(pf32bit, 13, 7)
                                                              : GradientBitmap(format, 13, 7);
    bitmap.SetPixelFormat(format);
    if (bitmap.StoredBits() == 32) bitmap.ScanLine(2)[4 * 3 + 3] = 0;
    bitmap.SetTransparent(true);
    const std::unique_ptr<TBitmap> before = bitmap.Clone();
    ResetTransparent(bitmap);
    EXPECT_TRUE(SamePixels(*before, bitmap)) << format;
    EXPECT_TRUE(bitmap.Transparent()) << format;
  }
}

TEST(ResetTransparentTest, Bitmap_KeepsWhatElseItHas) {
  TBitmap bitmap = GradientBitmap(pf32bit, 13, 7);
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(RGB(1, 2, 3));
  bitmap.SetAlphaFormat(afDefined);
  bitmap.SetDpi({300, 200});
  bitmap.SetModified(false);
  ResetTransparent(bitmap);
  EXPECT_EQ(bitmap.TransparentMode(), tmFixed);
  EXPECT_EQ(bitmap.TransparentColor(), RGB(1, 2, 3));
  EXPECT_EQ(bitmap.AlphaFormat(), afDefined);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 200}));
  EXPECT_TRUE(bitmap.Modified());
}

TEST(ResetTransparentTest, EmptyBitmap_IsNoLongerTransparent) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf32bit);
  bitmap.SetTransparent(true);
  ResetTransparent(bitmap);
  EXPECT_FALSE(bitmap.Transparent());
}

}  // namespace
}  // namespace rasterkit
