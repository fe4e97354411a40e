#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/kernels/mix/watermark.h>

#include "tests/reference/composition_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::SamePixels;

void ExpectMarkedLikeReference(const TBitmap& picture, const TBitmap& watermark) {
  const std::unique_ptr<TBitmap> mark = watermark.Clone(), expectedMark = watermark.Clone();
  const std::unique_ptr<TBitmap> expected = reference::WaterMarkedBitmap(picture, *expectedMark);
  const std::unique_ptr<TBitmap> actual = WaterMarkedBitmap(picture, *mark);
  ASSERT_TRUE(SamePixels(*expected, *actual));
  ASSERT_TRUE(SamePixels(*expectedMark, *mark));
}

/// Every channel value under every gray value and strength: no formula is trusted.
TEST(WatermarkTest, EveryChannelGrayAndStrength_EqualTheReference) {
  std::vector<uint8_t> expected(768), actual(768), grays(256), strengths(256);
  std::vector<uint8_t> channels(768);
  for (size_t i = 0; i < 768; ++i) channels[i] = static_cast<uint8_t>(i / 3 + i % 3 * 85);
  for (int gray = 0; gray < 256; ++gray) {
    // One dark gray, one at the border, all light ones: dark ones differ in nothing.
    if (gray > 3 && gray < 126 && !test::IsFullRun()) continue;
    std::fill(grays.begin(), grays.end(), static_cast<uint8_t>(gray));
    for (int strength = 0; strength < 256; ++strength) {
      std::fill(strengths.begin(), strengths.end(), static_cast<uint8_t>(strength));
      actual = channels;
      kernels::PressWatermark24(actual.data(), grays.data(), strengths.data(), 256);
      for (size_t i = 0; i < 768; ++i)
        expected[i] = reference::WatermarkedChannel(channels[i], grays[0], strengths[0]);
      ASSERT_EQ(actual, expected) << "gray " << gray << ", strength " << strength;
    }
  }
}

TEST(WatermarkTest, KernelOfEveryWidthAndTarget_EqualTheReferenceAndStayInside) {
  constexpr unsigned kSeed = 41;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    std::mt19937 random(kSeed);
    for (size_t width = 0; width <= 70; ++width) {
      for (const unsigned paper : {1u, 4u, 40u}) {
        std::vector<uint8_t> pixels(3 * width + 2), grays(width), strengths(width);
        for (uint8_t& byte : pixels) byte = static_cast<uint8_t>(random());
        for (uint8_t& byte : grays) byte = static_cast<uint8_t>(random());
        // Mostly paper, so that whole vectors are skipped.
        for (uint8_t& byte : strengths)
          byte = static_cast<uint8_t>(random() % paper == 0 ? random() : 250 + random() % 6);
        std::vector<uint8_t> expected = pixels;
        for (size_t i = 0; i < 3 * width; ++i)
          expected[i + 1] =
              reference::WatermarkedChannel(pixels[i + 1], grays[i / 3], strengths[i / 3]);
        kernels::PressWatermark24(pixels.data() + 1, grays.data(), strengths.data(), width);
        ASSERT_EQ(pixels, expected) << width << " pixels";
      }
    }
  });
}

TEST(WatermarkTest, EveryFormatOfPictureAndWatermark_EqualTheReference) {
  constexpr unsigned kSeed = 7;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat pictureFormat : test::kEveryFormat) {
    for (const TPixelFormat markFormat : test::kEveryFormat) {
      SCOPED_TRACE(testing::Message() << "formats " << pictureFormat << ", " << markFormat);
      ASSERT_NO_FATAL_FAILURE(
          ExpectMarkedLikeReference(test::RandomBitmap(pictureFormat, 37, 23, random),
                                    test::RandomBitmap(markFormat, 11, 9, random)));
    }
  }
}

TEST(WatermarkTest, EverySizeOfPictureAndWatermark_EqualTheReference) {
  constexpr unsigned kSeed = 8;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (int width = 1; width <= 70; ++width) {
    for (const int markWidth : {1, 2, 7, width, 3 * width + 1}) {
      SCOPED_TRACE(testing::Message() << width << " pixels under " << markWidth);
      ASSERT_NO_FATAL_FAILURE(
          ExpectMarkedLikeReference(test::RandomBitmap(pf24bit, width, 71 - width, random),
                                    test::RandomBitmap(pf8bit, markWidth, width, random)));
    }
  }
}

TEST(WatermarkTest, PaletteOf250AndMoreEverywhere_Should_GiveAPlainCopy) {
  std::mt19937 random(2);
  const TBitmap picture = test::RandomBitmap(pf32bit, 31, 17, random);
  TBitmap watermark = test::RandomBitmap(pf8bit, 8, 8, random);
  std::vector<tagPALETTEENTRY> entries(256);
  for (size_t i = 0; i < 256; ++i) entries[i].peRed = static_cast<uint8_t>(250 + i % 6);
  watermark.SetPalette(HPALETTE(entries));
  const std::unique_ptr<TBitmap> result = WaterMarkedBitmap(picture, watermark);
  const std::unique_ptr<TBitmap> plain = picture.Clone();
  plain->SetPixelFormat(pf24bit);
  EXPECT_EQ(result->PixelFormat(), pf24bit);
  EXPECT_TRUE(SamePixels(*plain, *result));
}

TEST(WatermarkTest, Watermark_Should_BeConvertedForItsOwner) {
  std::mt19937 random(2);
  TBitmap watermark = test::RandomBitmap(pf24bit, 9, 5, random);
  WaterMarkedBitmap(test::GradientBitmap(pf24bit, 4, 4), watermark);
  EXPECT_EQ(watermark.PixelFormat(), pf8bit);
}

TEST(WatermarkTest, ShortPalette_Should_CountAsBlackBeyondItsEnd) {
  TBitmap watermark = test::GradientBitmap(pf8bit, 5, 5);
  std::vector<tagPALETTEENTRY> entries(3, {255, 255, 255, 0});
  watermark.SetPalette(HPALETTE(entries));
  ExpectMarkedLikeReference(test::GradientBitmap(pf24bit, 40, 40), watermark);
  watermark.SetPalette(HPALETTE());
  ExpectMarkedLikeReference(test::GradientBitmap(pf24bit, 40, 40), watermark);
}

TEST(WatermarkTest, ZeroSizes_Should_LeaveNoMark) {
  TBitmap nothing;
  const TBitmap picture = test::GradientBitmap(pf24bit, 7, 5);
  EXPECT_TRUE(SamePixels(picture, *WaterMarkedBitmap(picture, nothing)));
  TBitmap watermark = test::GradientBitmap(pf8bit, 3, 3);
  const std::unique_ptr<TBitmap> result = WaterMarkedBitmap(TBitmap(), watermark);
  EXPECT_TRUE(result->Empty());
  EXPECT_EQ(result->PixelFormat(), pf24bit);
}

TEST(WatermarkTest, PictureAsItsOwnWatermark_Should_BeTakenBeforeItIsConverted) {
  std::mt19937 random(2);
  TBitmap both = test::RandomBitmap(pf24bit, 30, 20, random);
  const std::unique_ptr<TBitmap> copy = both.Clone();
  const std::unique_ptr<TBitmap> expected = reference::WaterMarkedBitmap(*both.Clone(), *copy);
  EXPECT_TRUE(SamePixels(*expected, *WaterMarkedBitmap(both, both)));
}

TEST(WatermarkTest, Transparency_Should_ComeWithThePicture) {
  TBitmap picture = test::GradientBitmap(pf24bit, 7, 5);
  picture.SetTransparent(true);
  picture.SetTransparentColor(RGB(9, 8, 7));
  TBitmap watermark = test::GradientBitmap(pf8bit, 3, 3);
  const std::unique_ptr<TBitmap> result = WaterMarkedBitmap(picture, watermark);
  EXPECT_TRUE(result->Transparent());
  EXPECT_EQ(result->TransparentColor(), RGB(9, 8, 7));
}

}  // namespace
}  // namespace rasterkit
