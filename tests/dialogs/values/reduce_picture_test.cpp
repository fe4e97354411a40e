#include <random>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/values/reduce_picture.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/halftone.h>

#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

constexpr unsigned kSeed = 808;
const std::atomic<bool> kNever = false;

/// A picture that is high enough for several bands.
TBitmap Any(TPixelFormat format, std::mt19937& random, int width = 900, int height = 3000) {
  return test::PaperBitmap(format, width, height, random, 1);
}

Reduction ToSize(int width, int height, bool isQuick = false) {
  return {width, height, {0, 0, width, height}, isQuick};
}

TEST(ReducePicture, Bands_Should_BeTheMeansOfTheWhole) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf1bit, pf8bit, pf16bit, pf24bit, pf32bit}) {
    const TBitmap picture = Any(format, random);
    const TBitmap made = ReducePicture(picture, ToSize(123, 457));
    Raster expected(pf24bit, 123, 457);
    BlitHalftone(expected, {0, 0, 123, 457}, picture.Content());
    EXPECT_TRUE(test::SamePixels(expected, made.Content())) << format << " seed " << kSeed;
  }
}

TEST(ReducePicture, Alpha_Should_WeighTheColors) {
  std::mt19937 random(kSeed);
  TBitmap picture = Any(pf32bit, random);
  picture.SetAlphaFormat(afDefined);
  const TBitmap made = ReducePicture(picture, ToSize(123, 457));
  EXPECT_EQ(made.AlphaFormat(), afDefined);
  Raster expected(pf32bit, 123, 457);
  CopyHalftone(expected, {0, 0, 123, 457}, picture.Content());
  EXPECT_TRUE(test::SamePixels(expected, made.Content())) << "seed " << kSeed;
}

TEST(ReducePicture, ATransparentColor_Should_NotMix) {
  TBitmap picture;
  picture.ResetPixels(pf24bit, 400, 400);
  for (int y = 0; y < 400; ++y)
    for (int x = 0; x < 400; ++x) {
      uint8_t* const pixel = picture.ScanLine(y) + 3 * x;
      pixel[0] = pixel[1] = 0;
      pixel[2] = x < 200 ? 255 : 100;
    }
  picture.SetTransparentColor(RGB(255, 0, 0));
  picture.SetTransparent(true);
  const TBitmap made = ReducePicture(picture, ToSize(41, 41));
  ASSERT_EQ(made.PixelFormat(), pf32bit);
  EXPECT_EQ(made.AlphaFormat(), afDefined);
  for (int x = 0; x < 41; ++x) {
    const uint8_t* const pixel = made.ScanLine(20) + 4 * x;
    const bool isTransparent = pixel[3] == 0;
    EXPECT_TRUE(isTransparent || (pixel[3] == 255 && pixel[2] == 100)) << x;
    EXPECT_EQ(isTransparent, x < 20) << x;
  }
}

TEST(ReducePicture, APart_Should_BeThatOfTheWholeReduction) {
  std::mt19937 random(kSeed);
  const TBitmap picture = Any(pf24bit, random, 1200, 900);
  const TBitmap whole = ReducePicture(picture, ToSize(400, 300));
  const TBitmap part = ReducePicture(picture, {100, 80, {-37, -59, 363, 241}, false});
  for (int y = 0; y < 80; ++y)
    for (int x = 0; x < 100; ++x)
      ASSERT_EQ(part.PixelColor(x, y), whole.PixelColor(x + 37, y + 59)) << x << ' ' << y;
}

TEST(ReducePicture, TheQuickOne_Should_TakePixelsUnderTheCenters) {
  std::mt19937 random(kSeed);
  const TBitmap picture = Any(pf24bit, random, 600, 400);
  const TBitmap made = ReducePicture(picture, ToSize(60, 40, true));
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 60; ++x)
      ASSERT_EQ(made.PixelColor(x, y), picture.PixelColor(10 * x + 5, 10 * y + 5));
}

TEST(ReducePicture, Should_BeEmpty_When_CanceledOrTakenAway) {
  std::mt19937 random(kSeed);
  const TBitmap picture = Any(pf24bit, random, 100, 100);
  BorrowedPixels pixels(picture);
  const std::atomic<bool> isCanceled = true;
  EXPECT_FALSE(ReducePicture(pixels, ToSize(10, 10), kNever).Empty());
  EXPECT_TRUE(ReducePicture(pixels, ToSize(10, 10), isCanceled).Empty());
  pixels.TakeAway();
  EXPECT_TRUE(ReducePicture(pixels, ToSize(10, 10), kNever).Empty());
}

TEST(BorrowedPixels, TakeAway_Should_WaitForThoseThatRead) {
  const TBitmap picture;
  BorrowedPixels pixels(picture);
  std::atomic<bool> reads = false, isDone = false;
  std::thread reader([&] {
    pixels.Read([&](const TBitmap&) {
      reads = true;
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      isDone = true;
    });
  });
  while (!reads) std::this_thread::yield();
  pixels.TakeAway();
  EXPECT_TRUE(isDone);
  reader.join();
  EXPECT_FALSE(pixels.Read([](const TBitmap&) { FAIL(); }));
}

}  // namespace
}  // namespace rasterkit
