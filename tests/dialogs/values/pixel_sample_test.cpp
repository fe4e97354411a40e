#include <cmath>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/step_part.h>
#include <rasterkit/dialogs/values/pixel_sample.h>
#include <rasterkit/dialogs/values/value_histogram.h>

#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

constexpr unsigned kSeed = 3;

TRect All(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

TEST(PixelSample, ASmallPicture_Should_BeItsOwnSample) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit, pf32bit}) {
    const TBitmap picture = test::PaperBitmap(format, 61, 37, random);
    const PixelSample sample(picture);
    EXPECT_TRUE(sample.IsWhole());
    EXPECT_TRUE(test::SamePixels(picture, sample.Pixels()));
    ASSERT_EQ(sample.Counted().size(), 1u);
  }
}

/// Every counted pixel, changed in the sample, is a pixel of the changed picture: each color of the
/// picture tells where it is from, and the sharpening looks at its neighbors.
TEST(PixelSample, CountedPixels_Should_BecomeWhatTheyBecomeInThePicture) {
  TBitmap picture;
  picture.ResetPixels(pf24bit, 1000, 900);
  std::mt19937 random(kSeed);
  for (int y = 0; y < picture.Height(); ++y)
    for (int x = 0; x < 3 * picture.Width(); ++x)
      picture.ScanLine(y)[x] = static_cast<uint8_t>(random());
  const AdjustColors step{5, 10, 40, 3, 0, -5};
  const PixelSample sample(picture);
  ASSERT_FALSE(sample.IsWhole());
  const TBitmap whole = ChangeStepPart(picture, All(picture), step);
  const TBitmap changed = ChangeStepPart(sample.Pixels(), All(sample.Pixels()), step);
  // Random pixels occur once: where the sample's square is from is found by its first row.
  const auto place = [&](const TRect& square) {
    const uint8_t* const first = sample.Pixels().ScanLine(square.Top) + 3 * square.Left;
    for (int y = 0; y < picture.Height(); ++y)
      for (int x = 0; x + square.Right - square.Left <= picture.Width(); ++x)
        if (std::memcmp(picture.ScanLine(y) + 3 * x, first,
                        3 * static_cast<size_t>(square.Right - square.Left)) == 0)
          return TPoint{x, y};
    ADD_FAILURE() << "not from the picture, seed " << kSeed;
    return TPoint{};
  };
  size_t checked = 0;
  for (size_t i = 0; i < sample.Counted().size(); i += 17) {
    const TRect& square = sample.Counted()[i];
    const TPoint from = place(square);
    for (int y = square.Top; y < square.Bottom; ++y)
      for (int x = square.Left; x < square.Right; ++x, ++checked)
        ASSERT_EQ(changed.PixelColor(x, y),
                  whole.PixelColor(from.X + x - square.Left, from.Y + y - square.Top));
  }
  EXPECT_GT(checked, 10000u);
}

TEST(PixelSample, Should_KeepShares_OfEveryFormat) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit, pf32bit}) {
    const TBitmap picture = test::PaperBitmap(format, 1200, 700, random);
    const PixelSample sample(picture);
    EXPECT_EQ(sample.Pixels().PixelFormat(), format);
    EXPECT_EQ(sample.Pixels().Palette(), picture.Palette());
    const LevelFacts whole = FactsOf(CountLevels(picture, {All(picture)}).gray);
    const LevelFacts part = FactsOf(CountLevels(sample.Pixels(), sample.Counted()).gray);
    EXPECT_NEAR(whole.mean, part.mean, 2) << format << " seed " << kSeed;
    EXPECT_NEAR(whole.whitePercent, part.whitePercent, 2) << format << " seed " << kSeed;
  }
}

TEST(PixelSample, Transparency_Should_BeThatOfThePicture) {
  std::mt19937 random(kSeed);
  TBitmap picture = test::PaperBitmap(pf8bit, 900, 900, random);
  picture.SetTransparent(true);
  const PixelSample sample(picture);
  EXPECT_TRUE(sample.Pixels().Transparent());
  EXPECT_EQ(sample.Pixels().TransparentColor(), picture.TransparentColor());
}

TEST(PixelSample, MoreColumnsThanCanBeMultiplied_Should_BeTakenFromEverywhere) {
  TBitmap picture;
  picture.ResetPixels(pf1bit, 12'000'000, 41);
  const size_t half = 12'000'000 / 8 / 2;
  for (int y = 0; y < picture.Height(); ++y) {
    std::memset(picture.ScanLine(y), 0, half);
    std::memset(picture.ScanLine(y) + half, 0xFF, half);
  }
  const PixelSample sample(picture);
  ASSERT_FALSE(sample.IsWhole());
  ASSERT_EQ(sample.Counted().size(), 196u);
  size_t light = 0;
  for (const TRect& square : sample.Counted()) {
    light += *(sample.Pixels().ScanLine(square.Top) + (square.Left + 8) / 8) == 0xFF;
  }
  EXPECT_EQ(light, 98u);
}

TEST(PixelSample, ALongAndNarrowPicture_Should_GiveOne) {
  std::mt19937 random(kSeed);
  const TBitmap picture = test::PaperBitmap(pf24bit, 10, 100000, random);
  const PixelSample sample(picture);
  EXPECT_FALSE(sample.Pixels().Empty());
  EXPECT_EQ(sample.Counted().size(), 1u);
}

}  // namespace
}  // namespace rasterkit
