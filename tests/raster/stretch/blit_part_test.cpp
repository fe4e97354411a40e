#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/raster/stretch/blit.h>

#include "tests/reference/canvas_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using reference::Manner;
using reference::Way;
using test::kEveryFormat;

/// Random pixels, without the unused highest bit of 15-bit words.
Raster RandomPicture(TPixelFormat format, int width, int height, std::mt19937& random) {
  Raster raster = test::RandomRaster(format, width, height, random);
  if (format == pf15bit)
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) raster.Row(y)[2 * x + 1] &= 0x7F;
  return raster;
}

PixelRect RandomRect(std::mt19937& random, int low, int high) {
  const auto any = [&] {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  return {any(), any(), any(), any()};
}

Raster Draw(const Raster& target, const PixelRect& place, const Raster& source,
            const PixelRect& part, const Manner& manner) {
  Raster drawn = target.Clone();
  switch (manner.way) {
    case Way::copied:
      BlitCopied(drawn, place, source, part);
      break;
    case Way::keyed:
      BlitKeyed(drawn, place, source, part, manner.key);
      break;
    default:
      BlitBlended(drawn, place, source, part,
                  {static_cast<uint8_t>(manner.constantAlpha), manner.pixelAlpha});
  }
  return drawn;
}

std::string Named(const PixelRect& r) {
  return std::to_string(r.left) + " " + std::to_string(r.top) + " " + std::to_string(r.right) +
         " " + std::to_string(r.bottom);
}

void ExpectAsReference(const Raster& target, const PixelRect& place, const Raster& source,
                       const PixelRect& part, Manner manner) {
  const Raster drawn = Draw(target, place, source, part, manner);
  // Full opacity without pixel alpha is opaque drawing, which keeps indexes.
  if (manner.way == Way::blended && manner.constantAlpha == 255 &&
      (!manner.pixelAlpha || source.Format() != pf32bit))
    manner.way = Way::opaque;
  EXPECT_TRUE(test::SamePixels(reference::DrawPart(target, place, source, part, manner), drawn))
      << source.Format() << " onto " << target.Format() << ", place " << Named(place) << ", part "
      << Named(part) << ", way " << static_cast<int>(manner.way) << ", alpha "
      << manner.constantAlpha << manner.pixelAlpha;
  EXPECT_TRUE(test::PaddingIsZero(drawn));
}

TEST(BlitPart, Should_EqualTheReference_ForEveryPairOfFormats_AndAnyRectangles) {
  constexpr unsigned kSeed = 2404;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  constexpr int kConstants[] = {0, 1, 127, 128, 254, 255};
  for (const TPixelFormat to : kEveryFormat) {
    for (const TPixelFormat from : kEveryFormat) {
      for (int i = 0; i < 12; ++i) {
        const Raster target = RandomPicture(to, 1 + i * 3, 23, random);
        Raster source = RandomPicture(from, 34 - i * 3, 1 + i, random);
        if (IsIndexed(from) && i % 3 == 0) source.palette = target.palette;
        if (i % 2 == 0) source.alphaFormat = afDefined;
        const PixelRect place = RandomRect(random, -15, 50);
        const PixelRect part = i % 4 == 0 ? PixelRect{0, 0, source.Width(), source.Height()}
                                          : RandomRect(random, -10, 40);
        const TColor key = source.PixelColor(0, 0);
        ExpectAsReference(target, place, source, part, {Way::copied});
        ExpectAsReference(target, place, source, part, {Way::keyed, 255, false, key});
        ExpectAsReference(target, place, source, part,
                          {Way::blended, kConstants[i % 6], i % 2 == 0});
        ExpectAsReference(target, place, source, part,
                          {Way::blended, static_cast<int>(random() % 256), i % 2 == 1});
      }
    }
  }
}

TEST(BlitPart, Should_EqualTheReference_ForWidthsUpTo70_AtTheSameSize) {
  constexpr unsigned kSeed = 70;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  for (int width = 0; width <= 70; ++width) {
    for (const TPixelFormat to : {pf24bit, pf32bit, pf8bit}) {
      const Raster target = RandomPicture(to, width, 2, random);
      const Raster source = RandomPicture(pf32bit, width + 3, 2, random);
      const PixelRect place{0, 0, width, 2}, part{2, 0, width + 2, 2};
      ExpectAsReference(target, place, source, part, {Way::blended, 255, true});
      ExpectAsReference(target, place, source, part, {Way::blended, 99, true});
      ExpectAsReference(target, place, source, part, {Way::blended, 99, false});
      ExpectAsReference(target, place, source, part, {Way::copied});
    }
  }
}

TEST(BlitPart, Should_LeaveThePixels_When_TheirSourceLiesOutside) {
  const Raster target = test::GradientRaster(pf24bit, 11, 9);
  const Raster source = test::GradientRaster(pf24bit, 4, 3);
  Raster drawn = target.Clone();
  // The part begins two pixels to the left of and one above the source.
  BlitCopied(drawn, {1, 1, 9, 7}, source, {-2, -1, 6, 5});
  for (int y = 0; y < 9; ++y) {
    for (int x = 0; x < 11; ++x) {
      const bool inside = x >= 3 && x < 7 && y >= 2 && y < 5;
      EXPECT_EQ(drawn.PixelColor(x, y),
                inside ? source.PixelColor(x - 3, y - 2) : target.PixelColor(x, y));
    }
  }
}

TEST(BlitPart, Should_DrawNothing_When_ARectangleIsEmpty) {
  const Raster target = test::GradientRaster(pf24bit, 11, 9);
  const Raster source = test::GradientRaster(pf32bit, 4, 3);
  const PixelRect whole{0, 0, 4, 3};
  for (const PixelRect empty : {PixelRect{2, 0, 2, 3}, PixelRect{0, 2, 4, 2}}) {
    EXPECT_TRUE(test::SamePixels(target, Draw(target, empty, source, whole, {Way::copied})));
    EXPECT_TRUE(test::SamePixels(target, Draw(target, whole, source, empty, {Way::copied})));
  }
  for (const auto& [width, height] : {std::pair(0, 0), std::pair(0, 5), std::pair(5, 0)}) {
    const Raster nothing(pf24bit, width, height);
    EXPECT_TRUE(test::SamePixels(target, Draw(target, whole, nothing, whole, {Way::copied})));
    Raster none(pf24bit, width, height);
    BlitCopied(none, whole, source, whole);
    BlitKeyed(none, whole, source, whole, 0);
    BlitBlended(none, whole, source, whole, {77, true});
  }
}

TEST(BlitPart, Should_Survive_When_RectanglesAreHuge) {
  constexpr int kLow = INT32_MIN, kHigh = INT32_MAX;
  const Raster source = test::GradientRaster(pf24bit, 5, 4);
  for (const PixelRect place :
       {PixelRect{kLow, kLow, kHigh, kHigh}, PixelRect{kHigh, kHigh, kLow, kLow},
        PixelRect{0, 0, kHigh, kHigh}, PixelRect{kLow, 0, 3, kHigh}, PixelRect{0, 0, 11, 9}}) {
    for (const PixelRect part : {PixelRect{kLow, kLow, kHigh, kHigh}, PixelRect{0, 0, 5, 4},
                                 PixelRect{kHigh, 0, kLow, kHigh}, PixelRect{1, 1, 2, 2}}) {
      Raster drawn = test::GradientRaster(pf24bit, 11, 9);
      BlitCopied(drawn, place, source, part);
      BlitBlended(drawn, place, source, part, {99, false});
    }
  }
  // The whole number range onto itself: each target pixel takes the source pixel at its position.
  Raster drawn = test::GradientRaster(pf24bit, 11, 9);
  BlitCopied(drawn, {kLow, kLow, kHigh, kHigh}, source, {kLow, kLow, kHigh, kHigh});
  EXPECT_EQ(drawn.PixelColor(4, 3), source.PixelColor(4, 3));
  EXPECT_EQ(drawn.PixelColor(0, 0), source.PixelColor(0, 0));
  EXPECT_EQ(drawn.PixelColor(5, 3), test::GradientRaster(pf24bit, 11, 9).PixelColor(5, 3));
}

TEST(BlitPart, Should_KeepTheIndex_When_ABlendedPixelHasNoOpacity) {
  Raster target(pf8bit, 3, 1);
  const tagPALETTEENTRY twice[] = {{9, 9, 9, 0}, {200, 0, 0, 0}, {9, 9, 9, 0}};
  target.palette = HPALETTE(twice);
  const uint8_t indexes[] = {2, 2, 2};
  std::copy_n(indexes, 3, target.Row(0));
  Raster source(pf32bit, 3, 1);
  const uint8_t pixels[] = {0, 0, 200, 0, 0, 0, 200, 255, 9, 9, 9, 255};
  std::copy_n(pixels, 12, source.Row(0));
  BlitBlended(target, {0, 0, 3, 1}, source, {0, 0, 3, 1}, {255, true});
  EXPECT_EQ(target.Row(0)[0], 2) << "no opacity";
  EXPECT_EQ(target.Row(0)[1], 1);
  EXPECT_EQ(target.Row(0)[2], 0) << "nearest, lowest index";
  std::copy_n(indexes, 3, target.Row(0));
  BlitBlended(target, {0, 0, 3, 1}, source, {0, 0, 3, 1}, {0, false});
  EXPECT_EQ(target.Row(0)[1], 2);
}

TEST(BlitPart, Should_KeepTheIndex_When_TwoEntriesHaveOneColor) {
  const tagPALETTEENTRY twice[] = {{9, 9, 9, 0}, {200, 0, 0, 0}, {9, 9, 9, 0}};
  Raster target(pf8bit, 2, 1), source(pf8bit, 2, 1);
  target.palette = source.palette = HPALETTE(twice);
  std::fill_n(target.Row(0), 2, uint8_t{2});
  std::fill_n(source.Row(0), 2, uint8_t{1});
  BlitKeyed(target, {0, 0, 2, 1}, source, {0, 0, 2, 1}, RGB(200, 0, 0));
  EXPECT_EQ(target.Row(0)[0], 2) << "left out";
  std::fill_n(target.Row(0), 2, uint8_t{1});
  std::fill_n(source.Row(0), 2, uint8_t{2});
  BlitBlended(target, {0, 0, 2, 1}, source, {0, 0, 2, 1}, {255, true});
  EXPECT_EQ(target.Row(0)[1], 2) << "drawn without mixing";
}

TEST(BlitPart, Should_LeaveOutTheKey_AsWordsCanHoldIt) {
  for (const TPixelFormat format : {pf15bit, pf16bit}) {
    Raster target = test::GradientRaster(pf24bit, 2, 1), source(format, 2, 1);
    const Raster before = target.Clone();
    const uint16_t words[] = {static_cast<uint16_t>(format == pf15bit ? 0x0421 : 0x0841), 0};
    std::memcpy(source.Row(0), words, sizeof words);
    BlitKeyed(target, {0, 0, 2, 1}, source, {0, 0, 2, 1}, RGB(15, 11, 14));
    EXPECT_EQ(target.PixelColor(0, 0), before.PixelColor(0, 0)) << format;
    EXPECT_EQ(target.PixelColor(1, 0), clBlack) << format;
  }
}

TEST(BlitPart, Should_MirrorAsTheImage_When_CentersFallBetweenPixels) {
  // Two pixels become one: the center lies between them, and the right one is taken; mirrored it
  // is the left one, which is the same picture seen in a mirror.
  const Raster source = test::GradientRaster(pf24bit, 2, 1);
  Raster drawn = test::GradientRaster(pf24bit, 1, 1);
  BlitCopied(drawn, {0, 0, 1, 1}, source, {0, 0, 2, 1});
  EXPECT_EQ(drawn.PixelColor(0, 0), source.PixelColor(1, 0));
  BlitCopied(drawn, {1, 0, 0, 1}, source, {0, 0, 2, 1});
  EXPECT_EQ(drawn.PixelColor(0, 0), source.PixelColor(0, 0));
  BlitCopied(drawn, {1, 0, 0, 1}, source, {2, 0, 0, 1});
  EXPECT_EQ(drawn.PixelColor(0, 0), source.PixelColor(1, 0)) << "mirrored twice";
}

}  // namespace
}  // namespace rasterkit
