#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

TBitmap Sample(TPixelFormat format = pf24bit) {
  TBitmap bitmap = test::GradientBitmap(format, 17, 9);
  bitmap.SetDpi({300, 150});
  bitmap.SetProfile(std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3}));
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(RGB(9, 8, 7));
  return bitmap;
}

TEST(BitmapAssign, Assign_Should_CopyEverything) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap source = Sample(format);
    source.SetAlphaFormat(afDefined);
    TBitmap target = test::GradientBitmap(pf1bit, 3, 3);
    target.Assign(&source);
    EXPECT_TRUE(test::SamePixels(source, target));
    EXPECT_EQ(target.PixelFormat(), format);
    EXPECT_EQ(target.Dpi(), source.Dpi());
    EXPECT_EQ(target.Profile(), source.Profile());
    EXPECT_EQ(target.AlphaFormat(), afDefined);
    EXPECT_TRUE(target.Transparent());
    EXPECT_EQ(target.TransparentMode(), tmFixed);
    EXPECT_EQ(target.TransparentColor(), RGB(9, 8, 7));
    EXPECT_NE(target.ScanLine(0), source.ScanLine(0)) << "a copy of its own";
  }
}

TEST(BitmapAssign, Assign_Should_CarryTheAutomaticMode) {
  TBitmap source = test::GradientBitmap(pf24bit, 17, 9);
  source.SetTransparent(true);
  TBitmap target;
  target.SetTransparentColor(RGB(1, 1, 1));
  target.Assign(&source);
  EXPECT_EQ(target.TransparentMode(), tmAuto);
  EXPECT_EQ(target.TransparentColor(), source.PixelColor(0, 8));
}

TEST(BitmapAssign, Assign_Should_Empty_When_SourceIsAbsent) {
  TBitmap target = Sample();
  target.Assign(nullptr);
  EXPECT_TRUE(target.Empty());
  EXPECT_TRUE(target.Modified());
}

TEST(BitmapAssign, Assign_Should_DoNothing_When_SourceIsItself) {
  TBitmap bitmap = Sample();
  bitmap.SetModified(false);
  bitmap.Assign(&bitmap);
  EXPECT_TRUE(test::SamePixels(Sample(), bitmap));
  EXPECT_FALSE(bitmap.Modified());
}

TEST(BitmapAssign, Clone_Should_BeAWholeCopy) {
  TBitmap source = Sample(pf8bit);
  source.Canvas().Brush.Color = RGB(4, 5, 6);
  const std::unique_ptr<TBitmap> copy = source.Clone();
  EXPECT_TRUE(test::SamePixels(source, *copy));
  EXPECT_EQ(copy->TransparentColor(), RGB(9, 8, 7));
  EXPECT_EQ(copy->Canvas().Brush.Color, RGB(4, 5, 6));
  copy->ScanLine(0)[0] ^= 0xFF;
  EXPECT_FALSE(test::SamePixels(source, *copy));
}

TEST(BitmapAssign, Move_Should_BeFreeAndLeaveAnEmptyBitmap) {
  TBitmap source = Sample();
  source.Canvas().Brush.Color = RGB(4, 5, 6);
  const uint8_t* rows = source.ScanLine(0);
  TBitmap target = std::move(source);
  EXPECT_EQ(target.ScanLine(0), rows);
  EXPECT_TRUE(target.Transparent());
  EXPECT_TRUE(source.Empty());  // NOLINT(bugprone-use-after-move): the promise is tested
  EXPECT_EQ(source.PixelFormat(), pfDevice);
  target.SetSize(18, 9);
  EXPECT_EQ(target.PixelColor(17, 0), RGB(4, 5, 6)) << "the brush came along";
  target.Canvas().FillRect({0, 0, 1, 1});
  EXPECT_EQ(target.PixelColor(0, 0), RGB(4, 5, 6)) << "the canvas paints its new bitmap";
}

TEST(BitmapAssign, MoveAssignment_Should_KeepTheTargetsCanvasInPlace) {
  TBitmap target;
  TCanvas& canvas = target.Canvas();
  TBitmap source = Sample();
  source.Canvas().Brush.Color = RGB(4, 5, 6);
  target = std::move(source);
  EXPECT_EQ(&canvas, &target.Canvas());
  canvas.FillRect({0, 0, 1, 1});
  EXPECT_EQ(target.PixelColor(0, 0), RGB(4, 5, 6));
}

TEST(BitmapAssign, TransparentColor_Should_FollowTheBottomLeftPixel_When_Automatic) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 17, 9);
  EXPECT_EQ(bitmap.TransparentMode(), tmAuto);
  EXPECT_EQ(bitmap.TransparentColor(), bitmap.PixelColor(0, 8));
  bitmap.ScanLine(8)[0] ^= 0x55;
  EXPECT_EQ(bitmap.TransparentColor(), bitmap.PixelColor(0, 8));
  bitmap.SetTransparentColor(RGB(3, 2, 1));
  EXPECT_EQ(bitmap.TransparentMode(), tmFixed);
  EXPECT_EQ(bitmap.TransparentColor(), RGB(3, 2, 1));
  bitmap.SetTransparentMode(tmAuto);
  EXPECT_EQ(bitmap.TransparentColor(), bitmap.PixelColor(0, 8));
}

TEST(BitmapAssign, Modified_Should_BeSetByEveryChange) {
  TBitmap bitmap = test::GradientBitmap(pf8bit, 5, 5);
  EXPECT_FALSE(bitmap.Modified());
  const auto expectChange = [&](const char* what, auto change) {
    bitmap.SetModified(false);
    change();
    EXPECT_TRUE(bitmap.Modified()) << what;
  };
  expectChange("size", [&] { bitmap.SetSize(6, 5); });
  expectChange("palette", [&] { bitmap.SetPalette(GrayPalette(256)); });
  expectChange("format", [&] { bitmap.SetPixelFormat(pf24bit); });
  expectChange("fill", [&] { bitmap.Canvas().FillRect({0, 0, 1, 1}); });
  expectChange("draw", [&] { bitmap.Canvas().Draw(0, 0, test::GradientBitmap(pf8bit, 2, 2)); });
  expectChange("reset", [&] { bitmap.ResetPixels(pf4bit, 3, 3); });
  expectChange("assign", [&] { bitmap.Assign(nullptr); });
}

TEST(AssignBetweenKinds, Should_CarryTransparencyBothWays) {
  TBitmap source = Sample();
  TPngImage png;
  TJPEGImage jpeg;
  for (TGraphic* graphic : {static_cast<TGraphic*>(&png), static_cast<TGraphic*>(&jpeg)}) {
    graphic->Assign(&source);
    EXPECT_TRUE(graphic->Transparent());
    EXPECT_EQ(graphic->TransparentMode(), tmFixed);
    EXPECT_EQ(graphic->TransparentColor(), RGB(9, 8, 7));
    TBitmap back;
    back.Assign(graphic);
    EXPECT_TRUE(back.Transparent());
    EXPECT_EQ(back.TransparentColor(), RGB(9, 8, 7));
    EXPECT_TRUE(test::SamePixels(source, back));
    EXPECT_EQ(back.Dpi(), source.Dpi());
    EXPECT_EQ(back.Profile(), source.Profile());
  }
  png.Assign(&jpeg);
  EXPECT_EQ(png.TransparentColor(), RGB(9, 8, 7));
  EXPECT_TRUE(test::SamePixels(source, png.Bitmap()));
}

TEST(AssignBetweenKinds, Should_CarryTheAutomaticMode) {
  TBitmap source = test::GradientBitmap(pf24bit, 17, 9);
  TPngImage png;
  png.Assign(&source);
  EXPECT_EQ(png.TransparentMode(), tmAuto);
  EXPECT_EQ(png.TransparentColor(), source.PixelColor(0, 8));
  TJPEGImage jpeg;
  jpeg.Assign(&png);
  EXPECT_EQ(jpeg.TransparentColor(), source.PixelColor(0, 8));
}

}  // namespace
}  // namespace rasterkit
