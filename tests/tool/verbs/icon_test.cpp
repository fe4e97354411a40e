#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/graphics/icon.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliIcon : public VerbTest {
 protected:
  /// The icon written by the verb as 32-bit rows.
  Raster Icon(const Raster& raster, const std::vector<std::string>& options) {
    const ToolResult result = RunVerb("icon", raster, options, "out.ico");
    EXPECT_EQ(result.code, 0) << result.err;
    TIcon icon;
    icon.LoadFromFile(folder_ / "out.ico");
    return icon.ColorBitmap().Content().Clone();
  }

  static int Alpha(const Raster& icon, int x, int y) { return icon.Row(y)[x * 4 + 3]; }
};

TEST_F(CliIcon, ColorOfTheTopLeftPixel_Should_BecomeTransparentEverywhere) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 48, 32);
    const Raster icon = Icon(raster, {});
    ASSERT_EQ(icon.Width(), 48);
    ASSERT_EQ(icon.Height(), 32);
    for (int y = 0; y < 32; ++y)
      for (int x = 0; x < 48; ++x) {
        const bool isKey = raster.PixelColor(x, y) == raster.PixelColor(0, 0);
        ASSERT_EQ(Alpha(icon, x, y), isKey ? 0 : 255) << x << "," << y;
        if (!isKey) {
          ASSERT_EQ(icon.PixelColor(x, y), raster.PixelColor(x, y));
        }
      }
  }
}

TEST_F(CliIcon, NoColor_Should_BecomeTransparent_When_Solid) {
  const Raster raster = GradientRaster(pf8bit, 16, 16);
  const Raster icon = Icon(raster, {"--solid"});
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) {
      ASSERT_EQ(Alpha(icon, x, y), 255);
      ASSERT_EQ(icon.PixelColor(x, y), raster.PixelColor(x, y));
    }
}

TEST_F(CliIcon, AlphaChannel_Should_StayAsItIs) {
  Raster raster = GradientRaster(pf32bit, 20, 10);
  raster.alphaFormat = afDefined;
  const Raster icon = Icon(raster, {});
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 20; ++x) ASSERT_EQ(Alpha(icon, x, y), raster.Row(y)[x * 4 + 3]);
}

TEST_F(CliIcon, LeftHalf_Should_BeTheFirstPictureOfAStrip) {
  const Raster raster = GradientRaster(pf24bit, 65, 32);
  const Raster icon = Icon(raster, {"--left-half", "--solid"});
  ASSERT_EQ(icon.Width(), 32);
  EXPECT_EQ(icon.PixelColor(31, 31), raster.PixelColor(31, 31));
  EXPECT_EQ(RunVerb("icon", GradientRaster(pf24bit, 1, 5), {"--left-half"}, "out.ico").code, 4);
}

TEST_F(CliIcon, Size_Should_ShrinkWithoutMixingTheKeyColorIn) {
  Raster raster(pf24bit, 64, 64);
  for (int y = 0; y < 64; ++y)
    for (int x = 0; x < 64; ++x)
      for (int c = 0; c < 3; ++c)
        raster.Row(y)[x * 3 + c] = x < 31 ? static_cast<uint8_t>(c == 1 ? 0 : 255) : 80;
  const Raster icon = Icon(raster, {"--size", "16x"});
  ASSERT_EQ(icon.Width(), 16);
  ASSERT_EQ(icon.Height(), 16);
  EXPECT_EQ(Alpha(icon, 0, 0), 0);
  EXPECT_EQ(Alpha(icon, 7, 5), 64) << "one column of four";
  EXPECT_EQ(icon.PixelColor(7, 5), RGB(80, 80, 80));
  EXPECT_EQ(Alpha(icon, 8, 5), 255);
}

TEST_F(CliIcon, LargerThan256_Should_BeRefusedWithoutAFile) {
  const ToolResult result = RunVerb("icon", GradientRaster(pf24bit, 257, 10), {}, "out.ico");
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("--size"));
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"in.png"});
  EXPECT_EQ(Icon(GradientRaster(pf24bit, 257, 10), {"--size", "256x"}).Width(), 256);
}

TEST_F(CliIcon, ManyPictures_Should_BecomeIconsOfTheirNames) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 16, 16));
  SavePngFile(folder_ / "b.png", GradientRaster(pf24bit, 16, 16));
  const ToolResult result = RunTool(
      {"icon", "--out-dir", folder_ / "out", "--json", folder_ / "a.png", folder_ / "b.png"});
  ASSERT_EQ(result.code, 0) << result.err;
  const auto lines = JsonLines(result.out);
  EXPECT_EQ(lines.at(1)["output"], folder_ / "out/b.ico");
  EXPECT_EQ(lines.at(1)["type"], "ico");
  EXPECT_EQ(lines.at(1)["bits"], 32);
}

TEST_F(CliIcon, ExistingIcon_Should_StayUnlessOverwritten) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 16, 16));
  WriteText(folder_ / "a.ico", "precious");
  EXPECT_EQ(RunTool({"icon", folder_ / "a.png", folder_ / "a.ico"}).code, 4);
  EXPECT_EQ(ReadBytes(folder_ / "a.ico").size(), 8u);
}

TEST_F(CliIcon, OtherExtensions_Should_BeWrongUsage) {
  for (const char* out : {"out.png", "out", "out.cur"})
    EXPECT_EQ(RunVerb("icon", GradientRaster(pf24bit, 16, 16), {}, out).code, 2) << out;
  EXPECT_EQ(RunVerb("convert", GradientRaster(pf24bit, 16, 16), {}, "out.ico").code, 2);
}

}  // namespace
}  // namespace rasterkit::test
