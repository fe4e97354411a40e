#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/raster/convert.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliCompare : public testing::Test {
 protected:
  ToolResult Compare(const Raster& a, const Raster& b, std::vector<std::string> options = {}) {
    SavePngFile(folder_ / "a.png", a);
    SavePngFile(folder_ / "b.png", b);
    options.insert(options.begin(), {"compare", folder_ / "a.png", folder_ / "b.png"});
    return RunTool(options);
  }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 31, 18);
};

TEST_F(CliCompare, SamePictures_Should_Exit0) {
  const ToolResult result = Compare(picture_, picture_);
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "same\n");
  EXPECT_EQ(Compare(picture_, picture_, {"--exact"}).code, 0);
}

TEST_F(CliCompare, OneChangedChannel_Should_Exit1AndBeLocated) {
  Raster changed = picture_.Clone();
  changed.Row(17)[30 * 3] ^= 0x10;
  changed.Row(4)[5 * 3 + 2] ^= 0x01;
  const ToolResult result = Compare(picture_, changed);
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "different: 2 pixels of 31 x 18, by up to 16 of 255, the first at 5,4\n");
}

TEST_F(CliCompare, Tolerance_Should_BeTheLargestDifferenceThatCountsAsNone) {
  Raster changed = picture_.Clone();
  changed.Row(3)[9] = static_cast<uint8_t>(changed.Row(3)[9] + 7);
  EXPECT_EQ(Compare(picture_, changed, {"--tolerance", "6"}).code, 1);
  const ToolResult result = Compare(picture_, changed, {"--tolerance", "7"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "same: no pixel differs by more than 7 of 255\n");
}

TEST_F(CliCompare, Sizes_Should_Count) {
  const ToolResult result = Compare(picture_, GradientRaster(pf24bit, 31, 19));
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "different: 31 x 18 and 31 x 19 pixels\n");
}

TEST_F(CliCompare, Depth_Should_CountOnlyWhenExact) {
  const Raster indexed = GradientRaster(pf8bit, 31, 18);
  const Raster colors = ConvertRaster(indexed, pf24bit);
  const ToolResult loose = Compare(indexed, colors);
  EXPECT_EQ(loose.code, 0);
  EXPECT_EQ(loose.out, "same; different as stored (8-bit and 24-bit), the pixels look the same\n");
  EXPECT_EQ(Compare(indexed, colors, {"--exact"}).code, 1);
}

TEST_F(CliCompare, Resolution_Should_CountOnlyWhenExact) {
  Raster fine = picture_.Clone();
  fine.resolution = {300, 300};
  EXPECT_EQ(Compare(picture_, fine).code, 0);
  EXPECT_EQ(Compare(picture_, fine, {"--exact"}).code, 1);
}

TEST_F(CliCompare, Opacity_Should_CountAndColorsBehindFullTransparencyNot) {
  Raster clear = GradientRaster(pf32bit, 9, 5);
  clear.alphaFormat = afDefined;
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x) clear.Row(y)[x * 4 + 3] = x == 4 ? 0 : 255;
  Raster recolored = clear.Clone();
  for (int y = 0; y < 5; ++y) recolored.Row(y)[4 * 4] ^= 0xFF;
  EXPECT_EQ(Compare(clear, recolored).code, 0);
  recolored.Row(2)[7 * 4 + 3] = 254;
  EXPECT_EQ(Compare(clear, recolored).code, 1);
}

TEST_F(CliCompare, TransparentColor_Should_EqualAnAlphaChannelOfTheSameLook) {
  Raster keyed = GradientRaster(pf24bit, 9, 5);
  keyed.transparentColor = keyed.PixelColor(4, 2);
  Raster clear = ConvertRaster(keyed, pf32bit);
  clear.alphaFormat = afDefined;
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x)
      clear.Row(y)[x * 4 + 3] = keyed.PixelColor(x, y) == *keyed.transparentColor ? 0 : 255;
  clear.transparentColor.reset();
  EXPECT_EQ(Compare(keyed, clear).code, 0);
  EXPECT_EQ(Compare(keyed, GradientRaster(pf24bit, 9, 5)).code, 1);
}

TEST_F(CliCompare, Photographs_Should_BeComparedUpright) {
  SaveJpegFile(folder_ / "lying.jpg", picture_, 3);
  ASSERT_EQ(RunTool({"convert", folder_ / "lying.jpg", folder_ / "upright.png"}).code, 0);
  EXPECT_EQ(RunTool({"compare", folder_ / "lying.jpg", folder_ / "upright.png"}).code, 0);
}

TEST_F(CliCompare, Json_Should_SayAllThatIsKnown) {
  Raster changed = picture_.Clone();
  changed.Row(4)[5 * 3 + 2] ^= 0x01;
  const auto line = JsonLines(Compare(picture_, changed, {"--json"}).out).at(0);
  EXPECT_EQ(line["same"], false);
  EXPECT_EQ(line["exact"], false);
  EXPECT_EQ(line["differing_pixels"], 1);
  EXPECT_EQ(line["greatest_difference"], 1);
  EXPECT_EQ(line["first"], (std::vector<int>{5, 4}));
  const auto sizes =
      JsonLines(Compare(picture_, GradientRaster(pf24bit, 3, 3), {"--json"}).out).at(0);
  EXPECT_EQ(sizes["sizes_differ"], true);
  EXPECT_TRUE(sizes["differing_pixels"].is_null());
}

TEST_F(CliCompare, UnreadableFile_Should_Exit3) {
  SavePngFile(folder_ / "a.png", picture_);
  const ToolResult result =
      RunTool({"compare", folder_ / "a.png", folder_ / "missing.png", "--json"});
  EXPECT_EQ(result.code, 3);
  EXPECT_FALSE(result.err.empty());
  EXPECT_EQ(JsonLines(result.out).at(0)["ok"], false);
}

TEST_F(CliCompare, OneOrThreeFiles_Should_BeWrongUsage) {
  EXPECT_EQ(RunTool({"compare", "a.png"}).code, 2);
  EXPECT_EQ(RunTool({"compare", "a.png", "b.png", "c.png"}).code, 2);
}

}  // namespace
}  // namespace rasterkit::test
