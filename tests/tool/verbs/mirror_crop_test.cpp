#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

constexpr TPixelFormat kPngFormats[] = {pf1bit, pf4bit, pf8bit, pf24bit};

/// A TIFF file whose top left corner is at 1000,2000, with pixels of 2 x 4 map units.
void SaveGeoTiff(const std::string& file, const Raster& raster) {
  TMemoryStream stream;
  TiffWriteOptions options;
  options.geo = TiffGeoTags{{2, 4, 0}, {0, 0, 0, 1000, 2000, 0}};
  EncodeTiff(raster, stream, options);
  WriteBytes(file, stream.TakeBytes());
}

/// The six numbers A D B E C F of the first position in `info`.
std::vector<double> PositionOf(const std::string& file) {
  const auto facts = JsonLines(RunTool({"info", "--json", file}).out).at(0);
  if (facts["geo"].empty()) return {};
  return facts["geo"][0]["affine"].get<std::vector<double>>();
}

class CliMirror : public VerbTest {
 protected:
  /// The six numbers of a file's position.
  nlohmann::json Geo(const std::string& name) {
    const auto facts = JsonLines(RunTool({"info", "--json", folder_ / name}).out).at(0);
    return facts["geo"][0]["affine"];
  }
};

TEST_F(CliMirror, Horizontal_Should_ExchangeLeftAndRightOfEveryRowAndColumn) {
  for (const TPixelFormat format : kPngFormats) {
    const Raster raster = GradientRaster(format, 31, 18);
    const Raster mirrored = Changed("mirror", raster, {"--horizontal"});
    ASSERT_EQ(mirrored.Format(), format);
    for (int y = 0; y < 18; ++y)
      for (int x = 0; x < 31; ++x)
        ASSERT_EQ(mirrored.PixelColor(x, y), raster.PixelColor(30 - x, y)) << x << "," << y;
  }
}

TEST_F(CliMirror, Vertical_Should_ExchangeTopAndBottomOfEveryRowAndColumn) {
  for (const TPixelFormat format : kPngFormats) {
    const Raster raster = GradientRaster(format, 31, 18);
    const Raster mirrored = Changed("mirror", raster, {"--vertical"});
    for (int y = 0; y < 18; ++y)
      for (int x = 0; x < 31; ++x)
        ASSERT_EQ(mirrored.PixelColor(x, y), raster.PixelColor(x, 17 - y)) << x << "," << y;
  }
}

TEST_F(CliMirror, BothSides_Should_BeAHalfTurn) {
  const Raster raster = GradientRaster(pf24bit, 13, 7);
  const Raster mirrored = Changed("mirror", raster, {"--horizontal", "--vertical"});
  EXPECT_EQ(mirrored.PixelColor(0, 0), raster.PixelColor(12, 6));
  EXPECT_EQ(mirrored.PixelColor(12, 0), raster.PixelColor(0, 6));
}

TEST_F(CliMirror, Photograph_Should_BeSetUprightFirst) {
  SaveJpegFile(folder_ / "a.jpg", GradientRaster(pf24bit, 40, 24), 6);
  ASSERT_EQ(RunTool({"convert", folder_ / "a.jpg", folder_ / "upright.bmp"}).code, 0);
  ASSERT_EQ(
      RunTool({"mirror", folder_ / "upright.bmp", folder_ / "expected.bmp", "--vertical"}).code, 0);
  ASSERT_EQ(RunTool({"mirror", folder_ / "a.jpg", folder_ / "b.bmp", "--vertical"}).code, 0);
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "expected.bmp"), LoadFile(folder_ / "b.bmp")));
}

TEST_F(CliMirror, Sides_Should_BeNamed) {
  const ToolResult result = RunVerb("mirror", GradientRaster(pf24bit, 3, 3), {});
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("--horizontal"));
}

TEST_F(CliMirror, MapPosition_Should_FollowThePixels) {
  SaveGeoTiff(folder_ / "a.tif", GradientRaster(pf24bit, 10, 8));
  const ToolResult result =
      RunTool({"mirror", folder_ / "a.tif", folder_ / "b.tif", "--vertical", "--strict"});
  EXPECT_EQ(result.code, 0) << result.err;
  const auto before = Geo("a.tif"), after = Geo("b.tif");
  EXPECT_EQ(after[0], before[0]);
  EXPECT_EQ(after[3].get<double>(), -before[3].get<double>()) << "rows run north";
  EXPECT_EQ(after[4], before[4]);
  EXPECT_EQ(after[5].get<double>(), before[5].get<double>() + 7 * before[3].get<double>());
}

class CliCrop : public VerbTest {};

TEST_F(CliCrop, Rectangle_Should_KeepDepthPaletteAndEveryPixelInside_When_AtAnyBit) {
  for (const TPixelFormat format : kPngFormats) {
    const Raster raster = GradientRaster(format, 37, 20);
    for (int left = 0; left <= 9; ++left) {
      const int width = 37 - left - (left % 3) * 4;
      const Raster cut = Changed(
          "crop", raster, {"--rect", std::to_string(left) + ",3," + std::to_string(width) + ",11"});
      ASSERT_EQ(cut.Format(), format);
      ASSERT_EQ(cut.Width(), width);
      ASSERT_EQ(cut.Height(), 11);
      for (int y = 0; y < 11; ++y)
        for (int x = 0; x < width; ++x)
          ASSERT_EQ(cut.PixelColor(x, y), raster.PixelColor(left + x, 3 + y)) << left;
    }
  }
}

TEST_F(CliCrop, WholePicture_Should_StayAsItIs) {
  const Raster raster = GradientRaster(pf8bit, 9, 5);
  EXPECT_TRUE(SamePixels(raster, Changed("crop", raster, {"--rect", "0,0,9,5"})));
}

TEST_F(CliCrop, AlphaChannel_Should_ComeAlong) {
  Raster raster = GradientRaster(pf32bit, 9, 5);
  raster.alphaFormat = afDefined;
  const Raster cut = Changed("crop", raster, {"--rect", "2,1,5,3"});
  ASSERT_EQ(cut.Format(), pf32bit);
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 5; ++x)
      EXPECT_EQ(cut.Row(y)[x * 4 + 3], raster.Row(y + 1)[(x + 2) * 4 + 3]);
}

TEST_F(CliCrop, TransparentColor_Should_StayTheColorThatItWas) {
  Raster raster = GradientRaster(pf8bit, 9, 5);
  raster.transparentColor = raster.PixelColor(4, 2);
  const Raster cut = Changed("crop", raster, {"--rect", "3,1,4,3"});
  EXPECT_EQ(cut.transparentColor, raster.transparentColor);
}

TEST_F(CliCrop, RectangleOutside_Should_BeRefused) {
  for (const char* rect : {"0,0,10,5", "0,0,9,6", "9,0,1,1", "0,5,1,1", "2147483647,0,1,1",
                           "1,0,2147483647,1", "0,2147483647,1,2147483647"}) {
    const ToolResult result = RunVerb("crop", GradientRaster(pf24bit, 9, 5), {"--rect", rect});
    EXPECT_EQ(result.code, 4) << rect;
    EXPECT_THAT(result.err, HasSubstr("9 x 5"));
  }
}

TEST_F(CliCrop, NoRectangle_Should_BeWrongUsage) {
  for (const char* rect : {"", "1,2,3", "1,2,3,4,5", "1,2,3,4 ", "-1,2,3,4", "1,2,0,4", "1,2,3,0",
                           "a,b,c,d", "1.5,2,3,4", "1,2,3,99999999999"})
    EXPECT_EQ(RunVerb("crop", GradientRaster(pf24bit, 9, 5), {"--rect", rect}).code, 2) << rect;
  EXPECT_EQ(RunVerb("crop", GradientRaster(pf24bit, 9, 5), {}).code, 2);
}

TEST_F(CliCrop, MapPosition_Should_MoveWithTheCorner) {
  SaveGeoTiff(folder_ / "a.tif", GradientRaster(pf24bit, 10, 8));
  const ToolResult result =
      RunTool({"crop", folder_ / "a.tif", folder_ / "b.tif", "--rect", "3,2,4,5", "--strict"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(PositionOf(folder_ / "b.tif"),
            (std::vector<double>{2, 0, 0, -4, 1000 + 3 * 2 + 1, 2000 - 2 * 4 - 2}));
}

}  // namespace
}  // namespace rasterkit::test
