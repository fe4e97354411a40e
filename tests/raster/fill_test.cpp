#include <random>

#include <gtest/gtest.h>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stroke.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::kEveryFormat;

bool Inside(const PixelRect& rect, int x, int y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

TColor Shown(const Raster& raster, TColor color) {
  Raster one(raster.Format(), 1, 1);
  one.ClearPadding();
  one.palette = raster.palette;
  FillRaster(one, {0, 0, 1, 1}, color);
  return one.PixelColor(0, 0);
}

TEST(Fill, Should_PaintTheRectangleAndNothingElse) {
  const auto seed = 3u;
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  for (const TPixelFormat format : kEveryFormat) {
    for (int i = 0; i < 60; ++i) {
      const Raster before = test::RandomRaster(format, 41, 13, random);
      const auto any = [&](int size) { return static_cast<int>(random() % (size + 10)) - 5; };
      const PixelRect rect{any(41), any(13), any(41), any(13)};
      const auto color = static_cast<TColor>(random() & 0xFFFFFF);
      Raster after = before.Clone();
      FillRaster(after, rect, color);
      const TColor shown = Shown(before, color);
      for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 41; ++x)
          ASSERT_EQ(after.PixelColor(x, y), Inside(rect, x, y) ? shown : before.PixelColor(x, y));
      EXPECT_TRUE(test::PaddingIsZero(after));
    }
  }
}

TEST(Fill, Should_TakeTheNearestEntry_When_Indexed) {
  std::mt19937 random(4);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    const Raster raster = test::RandomRaster(format, 3, 3, random);
    const TColor color = RGB(30, 90, 200);
    const int nearest = NearestEntry(raster.palette.Entries(), color);
    EXPECT_EQ(Shown(raster, color), EntryColor(raster.palette.Entry(nearest)));
  }
}

// Black, dark gray, black up to the last entry that a pixel can refer to, then the requested color.
Raster WithColorOutOfReach(TPixelFormat format, TColor color) {
  Raster raster(format, 9, 3);
  std::vector<tagPALETTEENTRY> entries(size_t{1} << StoredBitsPerPixel(format));
  entries[1] = {40, 40, 40, 0};
  entries.push_back({static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                     static_cast<uint8_t>(color >> 16), 0});
  raster.palette = HPALETTE(entries);
  FillRaster(raster, {0, 0, 9, 3}, clBlack);
  raster.ClearPadding();
  return raster;
}

TEST(Fill, Should_TakeTheNearestEntryInReach_When_ThePaletteIsLongerThanTheFormat) {
  for (const TPixelFormat format : {pf1bit, pf4bit}) {
    const TColor wanted = RGB(90, 80, 70), nearest = RGB(40, 40, 40);
    Raster filled = WithColorOutOfReach(format, wanted);
    FillRaster(filled, {1, 1, 5, 2}, wanted);
    EXPECT_EQ(filled.PixelColor(1, 1), nearest) << format;

    Raster inverted = WithColorOutOfReach(format, wanted);
    PaintRect(inverted, {1, 1, 5, 2}, wanted, PaintMode::exclusiveOr);
    EXPECT_EQ(inverted.PixelColor(1, 1), nearest) << format;

    Raster drawn = WithColorOutOfReach(format, wanted);
    Raster source(pf24bit, 4, 1);
    FillRaster(source, {0, 0, 4, 1}, wanted);
    BlitStretched(drawn, {1, 1, 5, 2}, source);
    EXPECT_EQ(drawn.PixelColor(1, 1), nearest) << format;
  }
}

TEST(Fill, Should_KeepTheHighBits_When_15Or16Bits) {
  EXPECT_EQ(Shown(Raster(pf16bit, 1, 1), RGB(255, 7, 9)), RGB(255, 4, 8));
  EXPECT_EQ(Shown(Raster(pf15bit, 1, 1), RGB(255, 15, 9)), RGB(255, 8, 8));
  EXPECT_EQ(Shown(Raster(pf15bit, 1, 1), clWhite), clWhite);
  EXPECT_EQ(Shown(Raster(pf16bit, 1, 1), clWhite), clWhite);
}

TEST(Fill, Should_WriteAlpha255) {
  Raster raster = test::GradientRaster(pf32bit, 3, 1);
  FillRaster(raster, {1, 0, 2, 1}, RGB(1, 2, 3));
  EXPECT_EQ(raster.Row(0)[7], 255);
  EXPECT_NE(raster.Row(0)[11], 255) << "outside the rectangle";
}

TEST(PaintRect, Twice_Should_RestoreThePicture_When_Xor) {
  for (const TPixelFormat format : kEveryFormat) {
    const Raster before = test::GradientRaster(format, 23, 11);
    Raster after = before.Clone();
    PaintRect(after, {3, 2, 30, 9}, clWhite, PaintMode::exclusiveOr);
    EXPECT_FALSE(test::SamePixels(before, after));
    EXPECT_TRUE(test::PaddingIsZero(after));
    PaintRect(after, {3, 2, 30, 9}, clWhite, PaintMode::exclusiveOr);
    EXPECT_TRUE(test::SamePixels(before, after));
  }
}

Raster White(int width, int height) {
  Raster raster(pf24bit, width, height);
  FillRaster(raster, {0, 0, width, height}, clWhite);
  raster.ClearPadding();
  return raster;
}

int CountBlack(const Raster& raster) {
  int count = 0;
  for (int y = 0; y < raster.Height(); ++y)
    for (int x = 0; x < raster.Width(); ++x) count += raster.PixelColor(x, y) == clBlack;
  return count;
}

TEST(Stroke, Line_Should_HoldItsEndsAndOnePixelAColumn) {
  Raster raster = White(31, 21);
  const PixelPoint points[] = {{2, 3}, {27, 14}};
  StrokePolyline(raster, points, 1, clBlack, PaintMode::copy);
  EXPECT_EQ(raster.PixelColor(2, 3), clBlack);
  EXPECT_EQ(raster.PixelColor(27, 14), clBlack);
  EXPECT_EQ(CountBlack(raster), 26);
  for (int x = 2; x <= 27; ++x) {
    const int y = static_cast<int>(std::floor(3 + 11.0 * (x - 2) / 25 + 0.5));
    EXPECT_EQ(raster.PixelColor(x, y), clBlack) << x;
  }
}

TEST(Stroke, Line_Should_BeTheSame_When_EndsAreExchanged_AndSteepOnesToo) {
  for (const PixelPoint end : {PixelPoint{29, 4}, PixelPoint{5, 19}, PixelPoint{2, 19}}) {
    Raster there = White(31, 21), back = White(31, 21);
    const PixelPoint points[] = {{2, 3}, end}, reversed[] = {end, {2, 3}};
    StrokePolyline(there, points, 3, clBlack, PaintMode::copy);
    StrokePolyline(back, reversed, 3, clBlack, PaintMode::copy);
    EXPECT_TRUE(test::SamePixels(there, back));
  }
}

TEST(Stroke, Pen_Should_BeRound) {
  const int pixels[] = {1, 4, 9, 12, 21};
  for (int width = 1; width <= 5; ++width) {
    Raster raster = White(21, 21);
    const PixelPoint points[] = {{10, 10}, {10, 10}};
    StrokePolyline(raster, points, width, clBlack, PaintMode::copy);
    EXPECT_EQ(CountBlack(raster), pixels[width - 1]) << "width " << width;
  }
}

TEST(Stroke, CrossingLines_Should_PaintEachPixelOnce_When_Xor) {
  for (const TPixelFormat format : kEveryFormat) {
    const Raster before = test::GradientRaster(format, 33, 31);
    Raster after = before.Clone();
    const PixelPoint points[] = {{1, 1}, {30, 28}, {30, 1}, {1, 28}, {1, 1}};
    StrokePolyline(after, points, 2, clWhite, PaintMode::exclusiveOr);
    EXPECT_FALSE(test::SamePixels(before, after));
    StrokePolyline(after, points, 2, clWhite, PaintMode::exclusiveOr);
    EXPECT_TRUE(test::SamePixels(before, after));
  }
}

TEST(Stroke, Lines_Should_BeClipped_When_EndsLieFarOutside) {
  Raster raster = White(17, 13);
  const PixelPoint points[] = {{INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX}, {8, -2000000000}};
  StrokePolyline(raster, points, 1, clBlack, PaintMode::copy);
  EXPECT_EQ(raster.PixelColor(5, 5), clBlack);
  EXPECT_EQ(raster.PixelColor(5, 6), clWhite);
}

TEST(Stroke, Nothing_Should_BeDrawn_When_PointsAreFewOrTheRasterIsEmpty) {
  Raster raster = White(7, 5);
  const PixelPoint point[] = {{3, 3}};
  StrokePolyline(raster, point, 3, clBlack, PaintMode::copy);
  StrokePolyline(raster, {}, 3, clBlack, PaintMode::copy);
  EXPECT_EQ(CountBlack(raster), 0);
  Raster empty(pf24bit, 0, 0);
  const PixelPoint line[] = {{0, 0}, {5, 5}};
  EXPECT_NO_THROW(StrokePolyline(empty, line, 3, clBlack, PaintMode::copy));
}

}  // namespace
}  // namespace rasterkit
