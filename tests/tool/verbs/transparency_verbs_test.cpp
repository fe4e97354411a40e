#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

/// 32-bit with an alpha channel of these values, column by column.
Raster WithAlphas(std::vector<uint8_t> alphas, int height = 7) {
  Raster raster = GradientRaster(pf32bit, static_cast<int>(alphas.size()), height);
  raster.alphaFormat = afDefined;
  for (int y = 0; y < height; ++y)
    for (size_t x = 0; x < alphas.size(); ++x) raster.Row(y)[x * 4 + 3] = alphas[x];
  return raster;
}

class CliOpaque : public VerbTest {};

TEST_F(CliOpaque, ClearPixels_Should_BecomeWhiteAndOthersStay) {
  const Raster raster = WithAlphas({0, 255, 0, 255, 255});
  const Raster opaque = Changed("opaque", raster, {"--strict"});
  EXPECT_EQ(opaque.Format(), pf24bit);
  for (int x = 0; x < 5; ++x)
    EXPECT_EQ(opaque.PixelColor(x, 3), x == 0 || x == 2 ? clWhite : raster.PixelColor(x, 3));
}

TEST_F(CliOpaque, ClearAndOpaquePixels_Should_BeTheLibrarysRoutine) {
  const Raster raster = WithAlphas({0, 255, 0, 255, 255});
  TBitmap expected(raster.Clone());
  expected.SetTransparent(true);
  ResetTransparent(expected);
  EXPECT_TRUE(SameColors(expected.Content(), Changed("opaque", raster, {})));
}

TEST_F(CliOpaque, PartlyTransparentPixels_Should_BeBlendedWithTheBackground) {
  Raster raster = WithAlphas({128});
  for (int c = 0; c < 3; ++c) raster.Row(0)[c] = 100;
  const Raster opaque = Changed("opaque", raster, {"--background", "000000"});
  EXPECT_EQ(opaque.PixelColor(0, 0), RGB(50, 50, 50));
}

TEST_F(CliOpaque, Background_Should_ShowBehindClearPixels) {
  const Raster opaque = Changed("opaque", WithAlphas({0, 255}), {"--background", "102030"});
  EXPECT_EQ(opaque.PixelColor(0, 0), RGB(0x10, 0x20, 0x30));
}

TEST_F(CliOpaque, TransparentEntry_Should_GetTheBackground_When_ThePictureHasAPalette) {
  Raster raster = GradientRaster(pf4bit, 9, 5);
  raster.transparentColor = raster.PixelColor(4, 2);
  const Raster opaque = Changed("opaque", raster, {"--background", "102030"});
  EXPECT_EQ(opaque.Format(), pf4bit);
  EXPECT_FALSE(opaque.transparentColor.has_value());
  EXPECT_EQ(opaque.PixelColor(4, 2), RGB(0x10, 0x20, 0x30));
  EXPECT_EQ(opaque.PixelColor(0, 0), raster.PixelColor(0, 0));
}

TEST_F(CliOpaque, TransparentColor_Should_BecomeTheBackground_When_InTrueColor) {
  Raster raster = GradientRaster(pf24bit, 9, 5);
  raster.transparentColor = raster.PixelColor(4, 2);
  const Raster opaque = Changed("opaque", raster, {});
  EXPECT_FALSE(opaque.transparentColor.has_value());
  EXPECT_EQ(opaque.PixelColor(4, 2), clWhite);
  EXPECT_EQ(opaque.PixelColor(0, 0), raster.PixelColor(0, 0));
}

TEST_F(CliOpaque, OpaquePicture_Should_StayAsItIs) {
  const Raster raster = GradientRaster(pf8bit, 9, 5);
  EXPECT_TRUE(SamePixels(raster, Changed("opaque", raster, {})));
}

class CliSwapAlpha : public VerbTest {};

TEST_F(CliSwapAlpha, ClearPixels_Should_BecomeVisibleAndAllOthersClear) {
  const Raster raster = WithAlphas({0, 1, 128, 254, 255});
  const Raster swapped = Changed("swap-alpha", raster, {});
  ASSERT_EQ(swapped.alphaFormat, afDefined);
  for (int x = 0; x < 5; ++x) {
    EXPECT_EQ(swapped.Row(2)[x * 4 + 3], x == 0 ? 255 : 0) << x;
    EXPECT_EQ(swapped.PixelColor(x, 2), raster.PixelColor(x, 2));
  }
}

TEST_F(CliSwapAlpha, TransparentColor_Should_BecomeTheOnlyVisibleOne) {
  Raster raster = GradientRaster(pf8bit, 9, 5);
  raster.transparentColor = raster.PixelColor(4, 2);
  const Raster swapped = Changed("swap-alpha", raster, {});
  ASSERT_EQ(swapped.Format(), pf32bit);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x)
      EXPECT_EQ(swapped.Row(y)[x * 4 + 3],
                raster.PixelColor(x, y) == *raster.transparentColor ? 255 : 0);
}

TEST_F(CliSwapAlpha, PictureWithoutTransparency_Should_BeRefused) {
  const ToolResult result = RunVerb("swap-alpha", GradientRaster(pf24bit, 9, 5), {});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("no transparency"));
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"in.png"});
}

TEST_F(CliSwapAlpha, JpegOutput_Should_BePaintedAndReported) {
  const ToolResult result = RunVerb("swap-alpha", WithAlphas({0, 255}), {"--strict"}, "out.jpg");
  EXPECT_EQ(result.code, 5);
  EXPECT_THAT(result.err, HasSubstr("lost: the alpha channel"));
}

}  // namespace
}  // namespace rasterkit::test
