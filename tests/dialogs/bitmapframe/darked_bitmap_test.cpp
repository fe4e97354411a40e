#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/dialogs/bitmapframe/darked_bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

constexpr unsigned kSeed = 616161;

DarkedBitmap Darkening(const TBitmap& picture, const TRect& lit) {
  DarkedBitmap darkening;
  darkening.Fill(picture.Width(), picture.Height(), lit);
  return darkening;
}

TEST(DarkedBitmap, Should_HalveWhatLiesOutside_When_ThePictureHasAnyFormat) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryFormat) {
    const TBitmap picture = RandomBitmap(format, 13, 9, random);
    const TBitmap darked = Darkening(picture, {3, 2, 8, 7}).Make(picture);
    EXPECT_EQ(darked.PixelFormat(), format == pf32bit ? pf32bit : pf24bit);
    for (int y = 0; y < 9; ++y)
      for (int x = 0; x < 13; ++x) {
        const bool isLit = x >= 3 && x < 8 && y >= 2 && y < 7;
        const TColor color = picture.PixelColor(x, y);
        ASSERT_EQ(darked.PixelColor(x, y), isLit ? color : (color >> 1) & 0x7F7F7F)
            << "format " << format << " at " << x << "," << y << ", seed " << kSeed;
      }
  }
}

TEST(DarkedBitmap, Should_KeepAlpha_When_ThePictureHas32Bits) {
  std::mt19937 random(kSeed);
  const TBitmap picture = RandomBitmap(pf32bit, 5, 3, random);
  const TBitmap darked = Darkening(picture, {}).Make(picture);
  for (int x = 0; x < 5; ++x)
    EXPECT_EQ(darked.ScanLine(1)[4 * x + 3], picture.ScanLine(1)[4 * x + 3]);
}

TEST(DarkedBitmap, Should_BeClipped_When_TheRectangleReachesBeyondThePicture) {
  const DarkedBitmap darkening = Darkening(GradientBitmap(pf24bit, 6, 4), {-5, -5, 100, 2});
  EXPECT_TRUE(darkening.IsLit(0, 0));
  EXPECT_TRUE(darkening.IsLit(5, 1));
  EXPECT_FALSE(darkening.IsLit(0, 2));
}

/// Byte-identical to mirroring a darkened copy.
void ExpectMirroredLikeACopy(const std::vector<bool>& mirrorings, int width, int height) {
  std::mt19937 random(kSeed);
  for (const TRect& lit : {TRect{1, 1, 4, 3},
                           {0, 0, width, height},
                           {width - 2, height - 2, width, height},
                           {2, 0, 3, height},
                           {0, 0, 0, 0}}) {
    TBitmap picture = RandomBitmap(pf24bit, width, height, random);
    DarkedBitmap darkening = Darkening(picture, lit);
    TBitmap copy = darkening.Make(picture);
    for (const bool horizontal : mirrorings) {
      SwapBitmap(horizontal, &copy);
      SwapBitmap(horizontal, &picture);
      darkening.Swap(horizontal);
      ASSERT_TRUE(SamePixels(copy, darkening.Make(picture))) << width << " x " << height;
    }
  }
}

TEST(DarkedBitmap, Should_BeWhatAMirroredCopyIs_When_MirroredAnyNumberOfTimes) {
  for (const auto& [width, height] : {std::pair{11, 7}, {8, 5}, {2, 2}, {1, 6}, {6, 1}, {1, 1}}) {
    ExpectMirroredLikeACopy({true}, width, height);
    ExpectMirroredLikeACopy({false}, width, height);
    ExpectMirroredLikeACopy({true, false, true, true, false}, width, height);
  }
}

TEST(DarkedBitmap, RowKind_Should_MeanTheSameLitColumns) {
  for (const TRect& lit : {TRect{1, 1, 4, 3}, {3, 2, 9, 6}, {5, 4, 9, 7}})
    for (int mirrorings = 0; mirrorings < 4; ++mirrorings) {
      DarkedBitmap darkening;
      darkening.Fill(9, 7, lit);
      if (mirrorings & 1) darkening.Swap(true);
      if (mirrorings & 2) darkening.Swap(false);
      for (int y = 0; y < 7; ++y)
        for (int other = 0; other < 7; ++other) {
          if (darkening.RowKind(y) != darkening.RowKind(other)) continue;
          for (int x = 0; x < 9; ++x)
            ASSERT_EQ(darkening.IsLit(x, y), darkening.IsLit(x, other)) << x << "," << y;
        }
    }
}

TEST(DarkedBitmap, Should_StartOver_When_FilledAgain) {
  const TBitmap picture = GradientBitmap(pf24bit, 9, 9);
  DarkedBitmap darkening = Darkening(picture, {0, 0, 3, 3});
  darkening.Swap(true);
  EXPECT_FALSE(darkening.IsLit(0, 0));
  darkening.Fill(9, 9, {0, 0, 3, 3});
  EXPECT_TRUE(darkening.IsLit(0, 0));
  EXPECT_EQ(darkening, Darkening(picture, {0, 0, 3, 3}));
}

}  // namespace
}  // namespace rasterkit::test
