#include <random>

#include <gtest/gtest.h>

#include <rasterkit/raster/stretch/blit.h>

#include "tests/reference/blit_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::kEveryFormat;

Raster RandomRaster15Clean(TPixelFormat format, int width, int height, std::mt19937& random) {
  Raster raster = test::RandomRaster(format, width, height, random);
  if (format != pf15bit) return raster;
  // The unused highest bit of 15-bit words is no part of the color.
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) raster.Row(y)[2 * x + 1] &= 0x7F;
  return raster;
}

PixelRect RandomPlace(std::mt19937& random) {
  const auto any = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  PixelRect place{any(-20, 40), any(-20, 40), 0, 0};
  place.right = place.left + any(-50, 60);
  place.bottom = place.top + any(-50, 60);
  return place;
}

TEST(Blit, Should_EqualTheReference_ForEveryPairOfFormats) {
  const auto seed = 99u;
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  for (const TPixelFormat to : kEveryFormat) {
    for (const TPixelFormat from : kEveryFormat) {
      for (int i = 0; i < 12; ++i) {
        const Raster target = RandomRaster15Clean(to, 37, 29, random);
        Raster source = RandomRaster15Clean(from, 1 + i * 3, 1 + i * 2, random);
        if (IsIndexed(from) && i % 4 == 0) source.palette = target.palette;
        if (from == pf32bit && i % 2 == 0) source.alphaFormat = afDefined;
        PixelRect place = RandomPlace(random);
        if (i % 3 == 0) place.right = place.left + source.Width();
        std::optional<TColor> key;
        if (i % 5 < 2) key = source.PixelColor(0, source.Height() - 1);
        Raster drawn = target.Clone();
        BlitStretched(drawn, place, source, key);
        EXPECT_TRUE(test::SamePixels(reference::Blit(target, place, source, key), drawn))
            << from << " onto " << to << ", place " << place.left << " " << place.top << " "
            << place.right << " " << place.bottom;
        EXPECT_TRUE(test::PaddingIsZero(drawn));
      }
    }
  }
}

TEST(Blit, Should_BlendEveryAlphaWithEveryValue) {
  Raster source(pf32bit, 256, 1);
  source.alphaFormat = afDefined;
  for (int value = 0; value < 256; ++value) {
    Raster target(pf32bit, 256, 1);
    for (int alpha = 0; alpha < 256; ++alpha) {
      uint8_t* from = source.Row(0) + 4 * alpha;
      uint8_t* to = target.Row(0) + 4 * alpha;
      from[0] = static_cast<uint8_t>(value);
      from[1] = static_cast<uint8_t>(255 - value);
      from[2] = 255;
      from[3] = static_cast<uint8_t>(alpha);
      to[0] = 255;
      to[1] = static_cast<uint8_t>(value);
      to[2] = 0;
      to[3] = static_cast<uint8_t>(value);
    }
    const Raster expected = reference::Blit(target, {0, 0, 256, 1}, source, {});
    BlitStretched(target, {0, 0, 256, 1}, source);
    ASSERT_TRUE(test::SamePixels(expected, target));
  }
}

TEST(Blit, Should_KeepTheSource_When_AllOf16BitKeyIsWidened) {
  // 16-bit pixels cannot hold this red: the key is the nearest color that they can hold.
  Raster source(pf16bit, 2, 1);
  source.Row(0)[0] = 0x00;
  source.Row(0)[1] = 0xF8;  // red
  source.Row(0)[2] = 0x1F;
  source.Row(0)[3] = 0x00;  // blue
  Raster target = test::GradientRaster(pf24bit, 2, 1);
  const TColor before = target.PixelColor(0, 0);
  BlitStretched(target, {0, 0, 2, 1}, source, RGB(250, 3, 1));
  EXPECT_EQ(target.PixelColor(0, 0), before);
  EXPECT_EQ(target.PixelColor(1, 0), RGB(0, 0, 255));
}

TEST(Blit, Should_DrawNothing_When_SomethingIsEmptyOrOutside) {
  const Raster target = test::GradientRaster(pf24bit, 9, 7);
  const Raster source = test::GradientRaster(pf24bit, 5, 5);
  for (const PixelRect place : {PixelRect{3, 3, 3, 8}, PixelRect{9, 0, 14, 5},
                                PixelRect{-5, 0, 0, 5}, PixelRect{0, 7, 5, 12}}) {
    Raster drawn = target.Clone();
    BlitStretched(drawn, place, source);
    EXPECT_TRUE(test::SamePixels(target, drawn));
  }
  Raster drawn = target.Clone();
  BlitStretched(drawn, {0, 0, 5, 5}, Raster(pf24bit, 0, 0));
  EXPECT_TRUE(test::SamePixels(target, drawn));
}

TEST(Blit, Should_Survive_When_PlaceIsHuge) {
  Raster target = test::GradientRaster(pf24bit, 9, 7);
  const Raster source = test::GradientRaster(pf24bit, 5, 5);
  BlitStretched(target, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, source);
  EXPECT_EQ(target.PixelColor(4, 4), source.PixelColor(2, 2));
}

}  // namespace
}  // namespace rasterkit
