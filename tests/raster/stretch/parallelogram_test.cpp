#include <random>

#include <gtest/gtest.h>

#include <rasterkit/raster/stretch/blit.h>

#include "tests/reference/canvas_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using Corners = std::array<PixelPoint, 3>;

std::string Named(const Corners& corners) {
  std::string text;
  for (const PixelPoint& point : corners)
    text += " (" + std::to_string(point.x) + ", " + std::to_string(point.y) + ")";
  return text;
}

void ExpectAsReference(const Raster& target, const Corners& corners, const Raster& source,
                       const PixelRect& part) {
  Raster drawn = target.Clone();
  BlitParallelogram(drawn, corners, source, part);
  EXPECT_TRUE(test::SamePixels(reference::DrawParallelogram(target, corners, source, part), drawn))
      << source.Format() << " onto " << target.Format() << Named(corners) << ", part " << part.left
      << " " << part.top << " " << part.right << " " << part.bottom;
  EXPECT_TRUE(test::PaddingIsZero(drawn));
}

TEST(Parallelogram, Should_EqualTheReference_ForEveryPairOfFormats) {
  constexpr unsigned kSeed = 303;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  const auto any = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  for (const TPixelFormat to : test::kEveryFormat) {
    for (const TPixelFormat from : test::kEveryFormat) {
      for (int i = 0; i < 25; ++i) {
        const Raster target = test::GradientRaster(to, any(0, 40), any(0, 30));
        Raster source = test::GradientRaster(from, any(1, 30), any(1, 20));
        if (IsIndexed(from) && i % 2 == 0) source.palette = target.palette;
        const PixelRect part = i % 3 == 0
                                   ? PixelRect{0, 0, source.Width(), source.Height()}
                                   : PixelRect{any(-5, 8), any(-5, 8), any(9, 40), any(9, 30)};
        Corners corners;
        for (PixelPoint& corner : corners) corner = {any(-10, 50), any(-10, 40)};
        if (i % 5 == 0) {  // upright, perhaps mirrored
          corners[1].y = corners[0].y;
          corners[2].x = corners[0].x;
        } else if (i % 5 == 1) {  // turned by a quarter
          corners[1].x = corners[0].x;
          corners[2].y = corners[0].y;
        }
        ExpectAsReference(target, corners, source, part);
      }
    }
  }
}

/// Positions that step in fixed point, whole parts and exact borders included.
TEST(Parallelogram, Should_EqualTheReference_ForEveryWidth_AndOnLargePictures) {
  constexpr unsigned kSeed = 304;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  const auto any = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  constexpr TPixelFormat kFormats[] = {pf8bit, pf15bit, pf16bit, pf24bit, pf32bit};
  for (int width = 0; width <= 70; ++width) {
    for (const TPixelFormat from : kFormats) {
      for (const TPixelFormat to : {from, kFormats[width % 5]}) {
        const Raster target = test::GradientRaster(to, width, any(1, 30));
        const int w = any(1, 40), h = any(1, 40);
        Raster source = test::RandomRaster(from, w, h, random);
        if (IsIndexed(from) && from == to) source.palette = target.palette;
        // One edge of the part with every size, so that the last row and column are covered.
        const PixelRect part{any(0, w - 1), any(0, h - 1), w, h};
        for (const int unit : {1, 8}) {
          Corners corners;
          for (PixelPoint& corner : corners)
            corner = {any(-2, 9) * 8 / unit, any(-2, 6) * 8 / unit};
          ExpectAsReference(target, corners, source, part);
        }
      }
    }
  }
  for (const TPixelFormat format : kFormats) {
    const Raster source = test::RandomRaster(format, 500, 370, random);
    const Raster target = test::GradientRaster(format, 577, 300);
    const PixelRect all{0, 0, 500, 370};
    ExpectAsReference(target, {{{50, 0}, {577, 33}, {0, 270}}}, source, all);
    ExpectAsReference(target, {{{560, 290}, {30, 299}, {530, 3}}}, source, all);
    ExpectAsReference(target, {{{-1000, -3000}, {3000, 200}, {-1700, 4000}}}, source, all);
  }
}

TEST(Parallelogram, Should_LeaveOutPixelsWithoutASource_When_ThePartIsALittleTooLarge) {
  constexpr unsigned kSeed = 306;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  const Raster target = test::GradientRaster(pf24bit, 61, 40);
  const Raster source = test::RandomRaster(pf24bit, 21, 13, random);
  for (const PixelRect part : {PixelRect{0, 0, 22, 13}, PixelRect{0, 0, 21, 14},
                               PixelRect{-1, 0, 21, 13}, PixelRect{0, -1, 21, 13}})
    ExpectAsReference(target, {{{3, 0}, {60, 5}, {0, 38}}}, source, part);
}

/// A side too long or an area too large for exact fixed point.
TEST(Parallelogram, Should_EqualTheReference_When_FixedPointIsTooCoarse) {
  constexpr unsigned kSeed = 305;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  const Raster target = test::GradientRaster(pf24bit, 61, 40);
  const Raster wide = test::RandomRaster(pf24bit, (1 << 16) + 1, 2, random);
  ExpectAsReference(target, {{{1, 0}, {60, 3}, {0, 38}}}, wide, {0, 0, wide.Width(), 2});
  const Raster source = test::RandomRaster(pf24bit, 57, 43, random);
  for (const int far : {100000, 400000, 3000000})
    ExpectAsReference(target, {{{-far, -far}, {far, 7 - far}, {11 - far, far}}}, source,
                      {0, 0, 57, 43});
}

TEST(Parallelogram, Should_MirrorAllButTheLastColumnAndRow_When_ThePartIsOneShort) {
  const int w = 7, h = 5;
  const Raster source = test::GradientRaster(pf24bit, w, h);
  const PixelRect part{0, 0, w - 1, h - 1};
  Raster leftRight = source.Clone(), topBottom = source.Clone();
  BlitParallelogram(leftRight, {{{w - 1, 0}, {0, 0}, {w - 1, h - 1}}}, source, part);
  BlitParallelogram(topBottom, {{{0, h - 1}, {w - 1, h - 1}, {0, 0}}}, source, part);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const bool inside = x < w - 1 && y < h - 1;
      EXPECT_EQ(leftRight.PixelColor(x, y), source.PixelColor(inside ? w - 2 - x : x, y));
      EXPECT_EQ(topBottom.PixelColor(x, y), source.PixelColor(x, inside ? h - 2 - y : y));
    }
  }
}

TEST(Parallelogram, Should_KeepAlpha_When_BothAre32Bit) {
  const Raster source = test::GradientRaster(pf32bit, 6, 4);
  for (const Corners& corners : {Corners{{{6, 0}, {0, 0}, {6, 4}}},     // mirrored
                                 Corners{{{4, 0}, {4, 6}, {0, 0}}}}) {  // a quarter turn
    Raster drawn = test::GradientRaster(pf32bit, 9, 9);
    BlitParallelogram(drawn, corners, source, {0, 0, 6, 4});
    const uint8_t* expected = corners[0].x == 6 ? source.Row(0) + 4 * 5 : source.Row(3);
    EXPECT_EQ(drawn.Row(0)[3], expected[3]);
  }
}

TEST(Parallelogram, Should_MirrorThePart_When_ItsSidesAreExchanged) {
  const Raster source = test::GradientRaster(pf24bit, 6, 4);
  const Corners slanted{{{1, 2}, {8, 0}, {3, 8}}};
  // The same parallelogram, seen from its right side.
  const Corners other{{{8, 0}, {1, 2}, {10, 6}}};
  Raster mirrored = test::GradientRaster(pf24bit, 12, 11), plain = mirrored.Clone();
  BlitParallelogram(mirrored, slanted, source, {6, 0, 0, 4});
  BlitParallelogram(plain, other, source, {0, 0, 6, 4});
  EXPECT_TRUE(test::SamePixels(plain, mirrored));
  EXPECT_FALSE(test::SamePixels(test::GradientRaster(pf24bit, 12, 11), mirrored));
  // From its lower side.
  const Corners below{{{3, 8}, {10, 6}, {1, 2}}};
  mirrored = test::GradientRaster(pf24bit, 12, 11), plain = mirrored.Clone();
  BlitParallelogram(mirrored, slanted, source, {0, 4, 6, 0});
  BlitParallelogram(plain, below, source, {0, 0, 6, 4});
  EXPECT_TRUE(test::SamePixels(plain, mirrored));
  EXPECT_FALSE(test::SamePixels(test::GradientRaster(pf24bit, 12, 11), mirrored));
}

TEST(Parallelogram, Should_DrawNothing_When_ItHasNoArea_OrLiesTooFarAway) {
  const Raster target = test::GradientRaster(pf24bit, 9, 7);
  const Raster source = test::GradientRaster(pf24bit, 5, 4);
  const int far = (1 << 27) + 1;
  for (const Corners& corners :
       {Corners{{{1, 1}, {5, 5}, {3, 3}}}, Corners{{{1, 1}, {1, 1}, {1, 6}}},
        Corners{{{0, 0}, {far, 0}, {0, 7}}}, Corners{{{0, 0}, {9, 1}, {INT32_MIN, INT32_MIN}}}}) {
    Raster drawn = target.Clone();
    BlitParallelogram(drawn, corners, source, {0, 0, 5, 4});
    EXPECT_TRUE(test::SamePixels(target, drawn)) << Named(corners);
  }
  Raster drawn = target.Clone();
  BlitParallelogram(drawn, {{{0, 0}, {9, 0}, {0, 7}}}, source, {2, 2, 2, 4});
  BlitParallelogram(drawn, {{{0, 0}, {9, 0}, {1, 7}}}, Raster(pf24bit, 0, 0), {0, 0, 5, 4});
  Raster narrow(pf8bit, 0, 5);
  BlitParallelogram(narrow, {{{0, 0}, {9, 0}, {1, 7}}}, test::GradientRaster(pf8bit, 5, 4),
                    {0, 0, 5, 4});
  EXPECT_TRUE(test::SamePixels(target, drawn));
}

TEST(Parallelogram, Should_CoverAll_When_ItIsHuge) {
  const int far = 1 << 27;
  Raster drawn = test::GradientRaster(pf24bit, 9, 7);
  const Raster source = test::GradientRaster(pf24bit, 5, 4);
  // Nearly a square around the target, whose center pixel it shows everywhere.
  BlitParallelogram(drawn, {{{-far, -far}, {far, 1 - far}, {-far, far}}}, source, {0, 0, 5, 3});
  for (int y = 0; y < 7; ++y)
    for (int x = 0; x < 9; ++x) EXPECT_EQ(drawn.PixelColor(x, y), source.PixelColor(2, 1));
  // A part of the largest possible size.
  BlitParallelogram(drawn, {{{0, 0}, {9, 1}, {0, 7}}}, source,
                    {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
}

}  // namespace
}  // namespace rasterkit
