#include <random>

#include <gtest/gtest.h>

#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/halftone.h>

#include "tests/reference/halftone_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using reference::Manner;
using reference::Way;
using test::kEveryFormat;

void ExpectAsReference(const Raster& target, const PixelRect& place, const Raster& source) {
  const bool blends = source.Format() == pf32bit && source.alphaFormat == afDefined;
  const Raster drawn =
      reference::DrawHalftone(target, place, source, blends,
                              blends ? Manner{Way::blended, 255, true} : Manner{Way::opaque});
  const Raster copied =
      reference::DrawHalftone(target, place, source, source.Format() == pf32bit, {Way::copied});
  test::ForEachSimdTarget([&](int64_t simd) {
    const auto where = [&] {
      return std::string(hwy::TargetName(simd)) + ": " + std::to_string(source.Format()) +
             " onto " + std::to_string(target.Format()) + ", " + std::to_string(source.Width()) +
             " x " + std::to_string(source.Height()) + " to " + std::to_string(place.left) + " " +
             std::to_string(place.top) + " " + std::to_string(place.right) + " " +
             std::to_string(place.bottom);
    };
    Raster result = target.Clone();
    BlitHalftone(result, place, source);
    EXPECT_TRUE(test::SamePixels(drawn, result)) << where();
    EXPECT_TRUE(test::PaddingIsZero(result));
    result = target.Clone();
    CopyHalftone(result, place, source);
    EXPECT_TRUE(test::SamePixels(copied, result)) << where() << " copied";
  });
}

TEST(Halftone, Should_EqualTheReference_ForEveryPairOfFormats) {
  constexpr unsigned kSeed = 4;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  const auto any = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  for (const TPixelFormat to : kEveryFormat) {
    for (const TPixelFormat from : kEveryFormat) {
      for (int i = 0; i < 6; ++i) {
        const Raster target = test::GradientRaster(to, any(1, 30), any(1, 20));
        Raster source = test::RandomRaster(from, any(1, 30), any(1, 20), random);
        if (i % 2 == 0) source.alphaFormat = afDefined;
        ExpectAsReference(target, {any(-9, 20), any(-9, 20), any(-9, 40), any(-9, 40)}, source);
      }
    }
  }
}

TEST(Halftone, Should_EqualTheReference_ForEverySizeOfOneAxis) {
  constexpr unsigned kSeed = 5;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  const int step = test::IsFullRun() ? 1 : 5;
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    for (int from = 1; from <= 70; from += step) {
      for (int to = 1; to <= 70; to += step) {
        const Raster source = test::RandomRaster(format, from, 3, random);
        const Raster target = test::GradientRaster(format, to, 5);
        ExpectAsReference(target, {0, 0, to, 5}, source);
        ExpectAsReference(test::GradientRaster(format, 5, to), {5, 0, 0, to},
                          test::RandomRaster(format, 3, from, random));
      }
    }
  }
}

/// Ratios with code of their own, wide enough for every vector length.
TEST(Halftone, Should_EqualTheReference_ForPlainRatios_OnWidePictures) {
  constexpr unsigned kSeed = 6;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  constexpr int kRatios[][2] = {{4, 1}, {2, 1}, {3, 1}, {3, 2},  {2, 3},  {1, 2}, {1, 3},  {1, 4},
                                {5, 8}, {8, 5}, {1, 1}, {16, 1}, {17, 1}, {7, 3}, {15, 16}};
  for (const auto [from, to] : kRatios) {
    for (const int times : {1, 7, 31}) {
      const int width = from * times, place = to * times;
      const Raster source = test::RandomRaster(pf24bit, width, 2 * from, random);
      ExpectAsReference(test::GradientRaster(pf24bit, place, 2 * to), {0, 0, place, 2 * to},
                        source);
      ExpectAsReference(test::GradientRaster(pf24bit, place, 2 * to),
                        {place - 2, 0, -2, 2 * to + 1}, source);
    }
  }
}

/// Rows are summed in bands of 16; only the first and the last row have weights of their own.
TEST(Halftone, Should_EqualTheReference_When_APixelCoversPartsOfManyRows) {
  constexpr unsigned kSeed = 9;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf8bit, pf24bit, pf32bit}) {
    for (const auto& [from, to] : {std::pair(31, 2), std::pair(33, 2), std::pair(50, 3),
                                   std::pair(67, 2), std::pair(161, 5), std::pair(999, 31)}) {
      const Raster target = test::GradientRaster(format, 5, to);
      ExpectAsReference(target, {0, 0, 5, to}, test::RandomRaster(format, 7, from, random));
      ExpectAsReference(target, {0, to, 5, 0}, test::RandomRaster(pf24bit, 5, from, random));
    }
  }
}

TEST(Halftone, Should_KeepEveryColor_When_ThePictureHasOne) {
  for (const int value : {0, 1, 127, 128, 254, 255}) {
    Raster source(pf24bit, 61, 33);
    for (int y = 0; y < 33; ++y) std::fill_n(source.Row(y), 61 * 3, static_cast<uint8_t>(value));
    for (const auto& [width, height] : {std::pair(7, 5), std::pair(100, 90), std::pair(61, 70)}) {
      Raster target = test::GradientRaster(pf24bit, width, height);
      BlitHalftone(target, {0, 0, width, height}, source);
      for (int y = 0; y < height; ++y)
        for (int i = 0; i < 3 * width; ++i) ASSERT_EQ(target.Row(y)[i], value);
    }
  }
}

TEST(Halftone, Should_RoundHalvesUp) {
  Raster source(pf24bit, 2, 1);
  const uint8_t pixels[] = {0, 10, 254, 1, 13, 255};
  std::copy_n(pixels, 6, source.Row(0));
  Raster target(pf24bit, 1, 1);
  BlitHalftone(target, {0, 0, 1, 1}, source);
  EXPECT_EQ(target.PixelColor(0, 0), RGB(255, 12, 1));
}

TEST(Halftone, Should_InterpolateBetweenCenters_When_Growing) {
  Raster source(pf24bit, 2, 1);
  const uint8_t pixels[] = {0, 0, 0, 100, 100, 200};
  std::copy_n(pixels, 6, source.Row(0));
  Raster target(pf24bit, 4, 1);
  BlitHalftone(target, {0, 0, 4, 1}, source);
  // Centers of the target lie at -0.25, 0.25, 0.75 and 1.25 source pixels.
  const uint8_t expected[] = {0, 0, 0, 25, 25, 50, 75, 75, 150, 100, 100, 200};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(target.Row(0)[i], expected[i]) << i;
}

TEST(Halftone, Should_WeightColorsByAlpha_When_Copying32Bit) {
  Raster source(pf32bit, 4, 1);
  const uint8_t pixels[] = {0, 0, 200, 255, 90, 90, 90, 0, 10, 20, 30, 0, 30, 20, 11, 0};
  std::copy_n(pixels, 16, source.Row(0));
  Raster target(pf32bit, 2, 1);
  CopyHalftone(target, {0, 0, 2, 1}, source);
  const uint8_t expected[] = {0, 0, 200, 128, 20, 20, 21, 0};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(target.Row(0)[i], expected[i]) << i;
}

TEST(Halftone, Should_EqualTheReference_When_Alpha255IsEverywhere_OrMissingInOnePixel) {
  constexpr unsigned kSeed = 8;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat to : kEveryFormat) {
    Raster source = test::RandomRaster(pf32bit, 13, 7, random);
    for (int y = 0; y < 7; ++y)
      for (int x = 0; x < 13; ++x) source.Row(y)[4 * x + 3] = 255;
    source.alphaFormat = afDefined;
    ExpectAsReference(test::GradientRaster(to, 20, 15), {1, 2, 6, 15}, source);
    source.Row(6)[4 * 12 + 3] = 254;
    ExpectAsReference(test::GradientRaster(to, 20, 15), {1, 2, 6, 15}, source);
    ExpectAsReference(test::GradientRaster(to, 20, 15), {1, 2, 40, 15}, source);
  }
}

/// Alpha that is 0 in wide areas, 255 in others, of every value between.
Raster WithAreasOfAlpha(Raster raster, std::mt19937& random) {
  uint8_t* alpha = nullptr;
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      alpha = raster.Row(y) + 4 * x + 3;
      if (x / 5 % 3 != 2) *alpha = x / 5 % 3 == 0 ? 0 : 255;
      if (random() % 61 == 0) *alpha = 1;
    }
  }
  return raster;
}

TEST(Halftone, Should_EqualTheReference_When_AreasAreTransparent) {
  constexpr unsigned kSeed = 10;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  constexpr int kSizes[][4] = {{64, 12, 16, 3},  {64, 12, 96, 18},  {67, 13, 16, 5},
                               {61, 11, 97, 17}, {61, 34, 64, 2},   {50, 7, 61, 5},
                               {1, 9, 70, 30},   {53, 1, 20, 1200}, {40, 40, 40, 40}};
  for (const auto& [width, height, toWidth, toHeight] : kSizes) {
    Raster source = WithAreasOfAlpha(test::RandomRaster(pf32bit, width, height, random), random);
    source.alphaFormat = afDefined;
    for (const TPixelFormat to : {pf24bit, pf32bit}) {
      ExpectAsReference(test::GradientRaster(to, toWidth, toHeight), {0, 0, toWidth, toHeight},
                        source);
      ExpectAsReference(test::GradientRaster(to, toWidth, toHeight), {toWidth, toHeight, 0, 0},
                        source);
    }
  }
}

TEST(Halftone, Should_NotAverage_When_ThereIsAKeyColor) {
  const Raster source = test::GradientRaster(pf24bit, 12, 9);
  Raster target = test::GradientRaster(pf24bit, 6, 4), plain = target.Clone();
  const TColor key = source.PixelColor(5, 5);
  BlitHalftone(target, {0, 0, 6, 4}, source, key);
  BlitStretched(plain, {0, 0, 6, 4}, source, key);
  EXPECT_TRUE(test::SamePixels(plain, target));
}

TEST(Halftone, Should_DrawNothing_When_SomethingIsEmpty) {
  const Raster target = test::GradientRaster(pf24bit, 9, 7);
  const Raster source = test::GradientRaster(pf24bit, 5, 4);
  for (const PixelRect place : {PixelRect{3, 3, 3, 8}, PixelRect{9, 0, 14, 5},
                                PixelRect{-5, 0, 0, 5}, PixelRect{0, 7, 5, 12}}) {
    Raster drawn = target.Clone();
    BlitHalftone(drawn, place, source);
    CopyHalftone(drawn, place, source);
    EXPECT_TRUE(test::SamePixels(target, drawn));
  }
  Raster drawn = target.Clone();
  BlitHalftone(drawn, {0, 0, 9, 7}, Raster(pf24bit, 0, 4));
  CopyHalftone(drawn, {0, 0, 9, 7}, Raster(pf32bit, 4, 0));
  EXPECT_TRUE(test::SamePixels(target, drawn));
}

TEST(Halftone, Should_Survive_When_PlacesAreHuge) {
  constexpr int kLongest = 1 << 22;
  const Raster source = test::GradientRaster(pf24bit, 5, 5);
  for (const PixelRect place : {PixelRect{-kLongest / 2, -kLongest / 2, kLongest / 2, kLongest / 2},
                                PixelRect{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                                PixelRect{INT32_MAX, 0, INT32_MIN, 7}}) {
    Raster drawn = test::GradientRaster(pf24bit, 9, 7);
    BlitHalftone(drawn, place, source);
    EXPECT_EQ(drawn.PixelColor(0, 0), source.PixelColor(2, place.top == 0 ? 0 : 2));
    Raster copied = test::GradientRaster(pf24bit, 9, 7);
    CopyHalftone(copied, place, source);
    EXPECT_TRUE(test::SamePixels(drawn, copied));
  }
}

TEST(Halftone, Should_BeExact_When_WeightsAreLarge) {
  // Sizes without a common divisor: the sums exceed 32 bits.
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  const Raster wide = test::RandomRaster(pf24bit, 9973, 3, random);
  const Raster translucent = WithAreasOfAlpha(test::RandomRaster(pf32bit, 9973, 3, random), random);
  for (const int length : {7, 9967, 10007}) {
    const Raster target = test::GradientRaster(pf24bit, 25, 4);
    const PixelRect place{-3, -2000, length - 3, 3001};
    ExpectAsReference(target, place, wide);
    ExpectAsReference(test::GradientRaster(pf32bit, 25, 4), place, translucent);
    ExpectAsReference(test::GradientRaster(pf32bit, 25, 4), {-3, -20000, length - 3, 20003},
                      translucent);
  }
}

}  // namespace
}  // namespace rasterkit
