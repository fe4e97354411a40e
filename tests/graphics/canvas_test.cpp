#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

TBitmap White(int width, int height, TPixelFormat format = pf24bit) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(format);
  bitmap.SetSize(width, height);
  return bitmap;
}

TEST(Canvas, Rectangle_Should_LeaveOutTheLastColumnAndRow_When_PenIsClear) {
  TBitmap bitmap = White(9, 7);
  TCanvas& canvas = bitmap.Canvas();
  canvas.Pen.Style = psClear;
  canvas.Brush.Color = RGB(1, 2, 3);
  canvas.Rectangle(2, 1, 7, 5);
  for (int y = 0; y < 7; ++y)
    for (int x = 0; x < 9; ++x)
      EXPECT_EQ(bitmap.PixelColor(x, y),
                x >= 2 && x < 6 && y >= 1 && y < 4 ? RGB(1, 2, 3) : clWhite);
  canvas.Rectangle(0, 0, 10, 8);
  EXPECT_EQ(bitmap.PixelColor(8, 6), RGB(1, 2, 3)) << "one more than the size fills all";
}

TEST(Canvas, Rectangle_Should_DrawTheOutlineInside) {
  for (int width = 1; width <= 4; ++width) {
    TBitmap bitmap = White(13, 11);
    TCanvas& canvas = bitmap.Canvas();
    canvas.Pen.Color = clBlack;
    canvas.Pen.Width = width;
    canvas.Brush.Color = RGB(1, 2, 3);
    canvas.Rectangle(11, 9, 2, 1);
    for (int y = 0; y < 11; ++y) {
      for (int x = 0; x < 13; ++x) {
        const bool inside = x >= 2 && x < 11 && y >= 1 && y < 9;
        const bool inner = x >= 2 + width && x < 11 - width && y >= 1 + width && y < 9 - width;
        EXPECT_EQ(bitmap.PixelColor(x, y), inner    ? RGB(1, 2, 3)
                                           : inside ? clBlack
                                                    : clWhite)
            << "pen " << width << " at " << x << ", " << y;
      }
    }
  }
}

TEST(Canvas, Rectangle_Should_LeaveTheInside_When_BrushIsClear_And_RestoreWithXor) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 13, 11);
  TCanvas& canvas = bitmap.Canvas();
  canvas.Brush.Style = bsClear;
  canvas.Pen.Mode = pmXor;
  canvas.Pen.Color = clWhite;
  for (int width = 1; width < 9; ++width) {
    canvas.Pen.Width = width;
    canvas.Rectangle(1, 1, 12, 6);
    EXPECT_FALSE(test::SamePixels(test::GradientBitmap(pf24bit, 13, 11), bitmap));
    if (width == 1) {
      EXPECT_EQ(bitmap.PixelColor(5, 3), test::GradientBitmap(pf24bit, 13, 11).PixelColor(5, 3));
    }
    canvas.Rectangle(1, 1, 12, 6);
    EXPECT_TRUE(test::SamePixels(test::GradientBitmap(pf24bit, 13, 11), bitmap)) << width;
  }
}

TEST(Canvas, Polyline_Should_UseThePen) {
  TBitmap bitmap = White(21, 9);
  TCanvas& canvas = bitmap.Canvas();
  canvas.Pen.Color = RGB(200, 0, 0);
  const TPoint points[] = {{2, 2}, {18, 2}, {18, 6}};
  canvas.Polyline(points);
  EXPECT_EQ(bitmap.PixelColor(10, 2), RGB(200, 0, 0));
  EXPECT_EQ(bitmap.PixelColor(18, 6), RGB(200, 0, 0));
  EXPECT_EQ(bitmap.PixelColor(10, 3), clWhite);
  canvas.Pen.Width = 3;
  canvas.Polyline(points);
  EXPECT_EQ(bitmap.PixelColor(10, 3), RGB(200, 0, 0));
  canvas.Pen.Style = psClear;
  canvas.Pen.Color = clBlack;
  canvas.Polyline(points);
  EXPECT_EQ(bitmap.PixelColor(10, 2), RGB(200, 0, 0));
}

TEST(Canvas, NegativeColor_Should_BeASystemColor) {
  const auto before = HostPorts().systemColor;
  HostPorts().systemColor = [](uint32_t index) { return index == 5 ? 0x102030u : 0u; };
  TBitmap bitmap = White(3, 3);
  bitmap.Canvas().Brush.Color = static_cast<TColor>(0xFF000005);
  bitmap.Canvas().FillRect({0, 0, 3, 3});
  HostPorts().systemColor = before;
  EXPECT_EQ(bitmap.PixelColor(1, 1), 0x102030);
}

TEST(Canvas, Draw_Should_LeaveOutTheTransparentColor) {
  TBitmap picture = White(5, 4);
  picture.Canvas().Brush.Color = RGB(10, 20, 30);
  picture.Canvas().FillRect({1, 1, 4, 3});
  picture.SetTransparent(true);
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap target = White(9, 9, format);
    target.Canvas().Brush.Color = clBlack;
    target.Canvas().FillRect({0, 0, 9, 9});
    target.Canvas().Draw(2, 3, picture);
    EXPECT_EQ(target.PixelColor(2, 3), clBlack) << "bottom-left color is transparent";
    picture.SetTransparent(false);
    target.Canvas().Draw(2, 3, picture);
    EXPECT_EQ(target.PixelColor(2, 3), clWhite);
    picture.SetTransparent(true);
  }
}

TEST(Canvas, Draw_Should_WriteAlpha255_When_Opaque) {
  TBitmap picture = test::GradientBitmap(pf32bit, 5, 4);
  TBitmap target = test::GradientBitmap(pf32bit, 9, 9);
  target.Canvas().Draw(1, 1, picture);
  EXPECT_EQ(target.ScanLine(2)[4 * 3 + 3], 255);
}

TEST(Canvas, Draw_Should_BlendADefinedAlphaChannel) {
  TBitmap picture = White(2, 1, pf32bit);
  picture.SetAlphaFormat(afDefined);
  uint8_t* row = picture.ScanLine(0);
  const uint8_t pixels[] = {0, 0, 200, 128, 9, 9, 9, 0};
  std::copy(std::begin(pixels), std::end(pixels), row);
  TPngImage png;
  png.Assign(&picture);
  for (const TGraphic* graphic : {static_cast<TGraphic*>(&picture), static_cast<TGraphic*>(&png)}) {
    TBitmap target = White(2, 1);
    target.Canvas().Draw(0, 0, *graphic);
    // 200 * 128 / 255 + 255 * 127 / 255 = 227.4; 255 * 127 / 255 = 127
    EXPECT_EQ(target.PixelColor(0, 0), RGB(227, 127, 127));
    EXPECT_EQ(target.PixelColor(1, 0), clWhite);
  }
}

TEST(Canvas, StretchDraw_Should_TakeTheNearestPixel) {
  const TBitmap picture = test::GradientBitmap(pf24bit, 4, 3);
  TBitmap target = White(20, 15);
  target.Canvas().StretchDraw({2, 1, 10, 7}, picture);
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 8; ++x)
      EXPECT_EQ(target.PixelColor(2 + x, 1 + y), picture.PixelColor(x / 2, y / 2));
  EXPECT_EQ(target.PixelColor(10, 6), clWhite);
}

TEST(Canvas, StretchDraw_Should_Mirror_When_SidesAreExchanged) {
  const TBitmap picture = test::GradientBitmap(pf24bit, 5, 4);
  TBitmap target = White(5, 4);
  target.Canvas().StretchDraw({5, 4, 0, 0}, picture);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 5; ++x)
      EXPECT_EQ(target.PixelColor(x, y), picture.PixelColor(4 - x, 3 - y));
}

TEST(Canvas, Draw_Should_BeClipped_When_PlaceIsFarAway) {
  const TBitmap picture = test::GradientBitmap(pf24bit, 5, 4);
  TBitmap target = White(11, 9);
  target.Canvas().Draw(INT32_MAX, 0, picture);
  target.Canvas().Draw(0, INT32_MAX - 2, picture);
  target.Canvas().Draw(INT32_MIN, INT32_MIN, picture);
  EXPECT_TRUE(test::SamePixels(White(11, 9), target));
  target.Canvas().StretchDraw({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, picture);
  EXPECT_EQ(target.PixelColor(0, 0), picture.PixelColor(2, 2)) << "the middle covers all";
  EXPECT_EQ(target.PixelColor(10, 8), picture.PixelColor(2, 2));
}

TEST(Canvas, Draw_Should_ReadTheOldPixels_When_DrawingABitmapOntoItself) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 11, 9);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  bitmap.Canvas().Draw(2, 1, bitmap);
  for (int y = 1; y < 9; ++y)
    for (int x = 2; x < 11; ++x)
      EXPECT_EQ(bitmap.PixelColor(x, y), before->PixelColor(x - 2, y - 1));
}

TEST(Canvas, Draw_Should_DoNothing_When_GraphicIsEmpty) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 11, 9);
  bitmap.Canvas().Draw(0, 0, TBitmap());
  bitmap.Canvas().StretchDraw({0, 0, 11, 9}, TJPEGImage());
  bitmap.Canvas().Draw(0, 0, TPngImage());
  EXPECT_TRUE(test::SamePixels(test::GradientBitmap(pf24bit, 11, 9), bitmap));
}

}  // namespace
}  // namespace rasterkit
