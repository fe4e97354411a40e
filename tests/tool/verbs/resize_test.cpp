#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

class CliResize : public VerbTest {};

Raster ByLibrary(const Raster& raster, int width, int height) {
  auto bitmap = std::make_unique<TBitmap>(raster.Clone());
  ResizeBitmap(bitmap, width, height, true);
  return bitmap->Content().Clone();
}

TEST_F(CliResize, TrueColor_Should_BeAveragedAsInTheLibrary) {
  const Raster raster = GradientRaster(pf24bit, 61, 47);
  for (const auto& [width, height] : {std::pair{20, 13}, {122, 94}, {61, 10}, {1, 1}})
    EXPECT_TRUE(
        SamePixels(ByLibrary(raster, width, height),
                   Changed("resize", raster,
                           {"--size", std::to_string(width) + "x" + std::to_string(height)})))
        << width << " x " << height;
}

TEST_F(CliResize, Palettes_Should_BeKeptByNearestPixels) {
  for (const TPixelFormat format : {pf4bit, pf8bit}) {
    const Raster raster = GradientRaster(format, 61, 47);
    EXPECT_TRUE(
        SamePixels(ByLibrary(raster, 30, 60), Changed("resize", raster, {"--size", "30x60"})));
  }
}

TEST_F(CliResize, BlackAndWhite_Should_BecomeGray_UnlessOtherwiseAsked) {
  const Raster raster = GradientRaster(pf1bit, 61, 47);
  const Raster gray = Changed("resize", raster, {"--size", "30x20"});
  EXPECT_EQ(gray.Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(gray.palette));
  EXPECT_EQ(Changed("resize", raster, {"--size", "30x20", "--bits", "1"}).Format(), pf1bit);
  EXPECT_TRUE(SamePixels(ByLibrary(raster, 30, 20),
                         Changed("resize", raster, {"--size", "30x20", "--filter", "nearest"})));
}

TEST_F(CliResize, Palettes_Should_BeAveraged_When_TheFilterSaysSo) {
  const Raster raster = GradientRaster(pf4bit, 61, 47);
  EXPECT_TRUE(SamePixels(ByLibrary(ConvertRaster(raster, pf24bit), 30, 20),
                         Changed("resize", raster, {"--size", "30x20", "--filter", "area"})));
  const ToolResult old = RunVerb("resize", raster, {"--size", "30x20", "--smooth"}, "old.png");
  EXPECT_EQ(old.code, 0);
  EXPECT_NE(old.err.find("--filter"), std::string::npos) << old.err;
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "out.png"), LoadFile(folder_ / "old.png")));
}

TEST_F(CliResize, Grays_Should_BeAveragedAndStay8Bit) {
  const Raster raster = GrayRaster(61, 47);
  const Raster small = Changed("resize", raster, {"--size", "30x20"});
  EXPECT_EQ(small.Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(small.palette));
  EXPECT_TRUE(SameColors(ByLibrary(ConvertRaster(raster, pf24bit), 30, 20), small));
}

TEST_F(CliResize, OneSideAlone_Should_KeepTheProportions) {
  const Raster raster = GradientRaster(pf24bit, 61, 47);
  const Raster wide = Changed("resize", raster, {"--size", "30x"});
  EXPECT_EQ(wide.Width(), 30);
  EXPECT_EQ(wide.Height(), 23) << "47 * 30 / 61 = 23.1";
  const Raster high = Changed("resize", raster, {"--size", "x94"});
  EXPECT_EQ(high.Width(), 122);
  EXPECT_EQ(Changed("resize", GradientRaster(pf24bit, 90, 2), {"--size", "3x"}).Height(), 1);
}

TEST_F(CliResize, Paper_Should_StayAsLarge) {
  Raster raster = GradientRaster(pf24bit, 60, 40);
  raster.resolution = {300, 200};
  const Raster small = Changed("resize", raster, {"--size", "30x10"});
  EXPECT_NEAR(small.resolution.x, 150, 0.1);
  EXPECT_NEAR(small.resolution.y, 50, 0.1);
}

TEST_F(CliResize, TransparentColor_Should_NotBleedIntoItsNeighbors) {
  Raster raster(pf24bit, 40, 4);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 40; ++x)
      for (int c = 0; c < 3; ++c)
        raster.Row(y)[x * 3 + c] = x < 21 ? 200 : static_cast<uint8_t>(c == 1 ? 0 : 255);
  raster.ClearPadding();
  raster.transparentColor = RGB(255, 0, 255);
  const Raster small = Changed("resize", raster, {"--size", "10x4"});
  ASSERT_EQ(small.alphaFormat, afDefined);
  for (int x = 0; x < 10; ++x)
    if (small.Row(0)[x * 4 + 3] != 0) {
      EXPECT_EQ(small.PixelColor(x, 0), RGB(200, 200, 200)) << x;
    }
  EXPECT_EQ(small.Row(0)[4 * 4 + 3], 255);
  EXPECT_EQ(small.Row(0)[5 * 4 + 3], 64) << "one of four";
  EXPECT_EQ(small.Row(0)[6 * 4 + 3], 0);
}

TEST_F(CliResize, TransparentEntry_Should_StayAnEntryOfThePalette) {
  Raster raster = GradientRaster(pf8bit, 40, 20);
  const Raster plain = ByLibrary(raster, 20, 30);
  raster.transparentColor = raster.PixelColor(9, 9);
  const Raster resized = Changed("resize", raster, {"--size", "20x30"});
  EXPECT_TRUE(SameColors(plain, resized));
  EXPECT_EQ(resized.transparentColor, raster.transparentColor);
}

TEST_F(CliResize, MapPosition_Should_CoverTheSameGround) {
  TMemoryStream stream;
  TiffWriteOptions options;
  options.geo = TiffGeoTags{{2, 4, 0}, {0, 0, 0, 1000, 2000, 0}};
  EncodeTiff(GradientRaster(pf24bit, 60, 40), stream, options);
  WriteBytes(folder_ / "a.tif", stream.TakeBytes());
  const ToolResult result =
      RunTool({"resize", folder_ / "a.tif", folder_ / "b.tif", "--size", "30x10", "--strict"});
  ASSERT_EQ(result.code, 0) << result.err;
  const auto facts = JsonLines(RunTool({"info", "--json", folder_ / "b.tif"}).out).at(0);
  EXPECT_EQ(facts["geo"][0]["affine"], (std::vector<double>{4, 0, 0, -16, 1002, 1992}));
}

TEST_F(CliResize, WrongSizes_Should_BeWrongUsage) {
  for (const char* size : {"", "x", "0x10", "10x0", "10", "-1x5", "5x-1", "10 x 10", "10x10x10",
                           "1000001x1", "axb", "1.5x2"})
    EXPECT_EQ(RunVerb("resize", GradientRaster(pf24bit, 3, 3), {"--size", size}).code, 2) << size;
  EXPECT_EQ(RunVerb("resize", GradientRaster(pf24bit, 3, 3), {}).code, 2);
}

TEST_F(CliResize, MorePixelsThanMemoryOrTheFileTypeMayHold_Should_Exit4) {
  // Rows go straight into the file, so that the memory of a few rows decides, not that of the
  // picture.
  EXPECT_EQ(RunVerb("resize", GradientRaster(pf24bit, 3, 3),
                    {"--size", "1000000x1000000", "--max-memory", "1M"})
                .code,
            4);
  EXPECT_EQ(
      RunVerb("resize", GradientRaster(pf24bit, 3, 3), {"--size", "1000000x1000000"}, "out.bmp")
          .code,
      4);
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"in.png"});
}

}  // namespace
}  // namespace rasterkit::test
