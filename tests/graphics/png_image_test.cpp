#include <random>

#include <gtest/gtest.h>

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

void Reload(TPngImage& png, TPngImage& back) {
  TMemoryStream stream;
  png.SaveToStream(stream);
  stream.SetPosition(0);
  back.LoadFromStream(stream);
}

TEST(PngImage, New_Should_BeEmpty) {
  TPngImage png;
  EXPECT_TRUE(png.Empty());
  EXPECT_FALSE(png.Transparent());
  TMemoryStream stream;
  EXPECT_THROW(png.SaveToStream(stream), FormatError);
}

TEST(PngImage, Palettes_Should_Stay_And_15And16BitBecome24) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit}) {
    const TBitmap source = test::GradientBitmap(format, 37, 23);
    TPngImage png, back;
    png.Assign(&source);
    EXPECT_EQ(png.Bitmap().PixelFormat(), IsIndexed(format) ? format : pf24bit);
    EXPECT_TRUE(test::SameColors(source, png.Bitmap()));
    Reload(png, back);
    EXPECT_EQ(back.Bitmap().PixelFormat(), png.Bitmap().PixelFormat());
    EXPECT_TRUE(test::SameColors(source, back.Bitmap()));
    EXPECT_FALSE(back.Transparent());
    EXPECT_FALSE(back.Modified());
  }
}

TEST(PngImage, Alpha_Should_BeKept_When_Defined) {
  TBitmap source = test::GradientBitmap(pf32bit, 37, 23);
  source.SetAlphaFormat(afDefined);
  TPngImage png, back;
  png.Assign(&source);
  EXPECT_TRUE(test::SamePixels(source, png.Bitmap()));
  Reload(png, back);
  EXPECT_TRUE(test::SamePixels(source, back.Bitmap()));
  EXPECT_EQ(back.Bitmap().AlphaFormat(), afDefined);
  EXPECT_TRUE(back.Transparent()) << "an alpha channel counts as transparent, with white";
  EXPECT_EQ(back.TransparentColor(), clWhite);
  TBitmap bitmap;
  bitmap.Assign(&back);
  EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
  EXPECT_EQ(bitmap.AlphaFormat(), afDefined);
  EXPECT_TRUE(bitmap.Transparent());
}

TEST(PngImage, Alpha_Should_BeDropped_When_Ignored) {
  for (const TPixelFormat format : {pf32bit, pfDevice}) {
    TBitmap source = test::GradientBitmap(pf32bit, 37, 23);
    source.SetPixelFormat(format);
    TPngImage png, back;
    png.Assign(&source);
    EXPECT_EQ(png.Bitmap().PixelFormat(), pf24bit);
    Reload(png, back);
    EXPECT_EQ(back.Bitmap().PixelFormat(), pf24bit);
    EXPECT_FALSE(back.Transparent());
    EXPECT_TRUE(test::SameColors(source, back.Bitmap()));
  }
}

TEST(PngImage, TransparentColor_Should_TravelAsTrns) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    TBitmap source = test::GradientBitmap(format, 37, 23);
    source.SetTransparent(true);
    source.SetTransparentColor(source.PixelColor(20, 11));
    TPngImage png, back;
    png.Assign(&source);
    Reload(png, back);
    EXPECT_TRUE(back.Transparent()) << format;
    EXPECT_EQ(back.TransparentMode(), tmFixed);
    EXPECT_EQ(back.TransparentColor(), source.PixelColor(20, 11));
  }
}

TEST(PngImage, Transparency_Should_BeForgotten_When_AnOpaqueFileIsLoaded) {
  const TBitmap source = test::GradientBitmap(pf24bit, 7, 5);
  TPngImage png, back;
  png.Assign(&source);
  back.SetTransparent(true);
  back.SetTransparentColor(RGB(1, 2, 3));
  Reload(png, back);
  EXPECT_FALSE(back.Transparent());
  EXPECT_EQ(back.TransparentMode(), tmAuto);
}

TEST(PngImage, FailedLoad_Should_ChangeNothing) {
  const TBitmap source = test::GradientBitmap(pf24bit, 7, 5);
  TPngImage png;
  png.Assign(&source);
  TMemoryStream broken(std::vector<uint8_t>{1, 2, 3, 4});
  EXPECT_THROW(png.LoadFromStream(broken), FormatError);
  EXPECT_TRUE(test::SamePixels(source, png.Bitmap()));
}

TEST(PngImage, Draw_Should_ShowTheBackground_When_TransparentByColor) {
  TBitmap source = test::GradientBitmap(pf24bit, 7, 5);
  source.SetTransparent(true);
  TPngImage png;
  png.Assign(&source);
  TBitmap target;
  target.SetPixelFormat(pf24bit);
  target.SetSize(7, 5);
  target.Canvas().Draw(0, 0, png);
  EXPECT_EQ(target.PixelColor(0, 4), clWhite);
  EXPECT_EQ(target.PixelColor(6, 0), source.PixelColor(6, 0));
}

TEST(PngImage, Properties_Should_Travel) {
  TBitmap source = test::GradientBitmap(pf24bit, 7, 5);
  source.SetDpi({300, 150});
  TPngImage png, back;
  png.Assign(&source);
  Reload(png, back);
  EXPECT_NEAR(back.Bitmap().Dpi().x, 300, 0.02);
  EXPECT_NEAR(back.Bitmap().Dpi().y, 150, 0.02);
}

}  // namespace
}  // namespace rasterkit
