#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliDialogAdjust : public DialogTest {};

Raster Colors() {
  return GradientRaster(pf24bit, 41, 23);
}

TEST_F(CliDialogAdjust, ValuesOfTheCommandLine_Should_ActFromTheStart) {
  for (const std::vector<std::string>& values :
       {std::vector<std::string>{"--contrast", "40"},
        {"--brightness", "10", "--contrast", "-20", "--sharpen", "30", "--red", "5"},
        {"--green", "-100"}})
    EXPECT_TRUE(SamePixels(WithoutDialog("adjust", Colors(), values),
                           Confirmed("adjust", Colors(), "click nbPost", values)))
        << testing::PrintToString(values);
}

TEST_F(CliDialogAdjust, ValuesThatAreTyped_Should_BeThoseOfTheOutput) {
  EXPECT_TRUE(SamePixels(
      WithoutDialog("adjust", Colors(), {"--brightness", "20", "--contrast", "-30", "--blue", "7"}),
      Confirmed("adjust", Colors(),
                "type SpEdBlue 7; type SpEdContrast -30; type SpEdBrightness 20; click nbPost")));
}

/// The answer of the window is a step.
TEST_F(CliDialogAdjust, Recipe_Should_GiveTheSameBytes) {
  const ToolResult result =
      RunVerb("adjust", Colors(), "type SpEdRed -20; type SpEdContrast 30; click nbPost",
              {"--brightness", "5", "--record", folder_ / "r.json"});
  ASSERT_EQ(result.code, 0) << result.err;
  ASSERT_EQ(RunTool({"apply", folder_ / "r.json", folder_ / "in.png", folder_ / "same.png"}).code,
            0);
  EXPECT_EQ(ReadBytes(folder_ / "out.png"), ReadBytes(folder_ / "same.png"));
  ASSERT_EQ(RunTool({"adjust", folder_ / "in.png", folder_ / "typed.png", "--brightness", "5",
                     "--red", "-20", "--contrast", "30"})
                .code,
            0);
  EXPECT_EQ(ReadBytes(folder_ / "out.png"), ReadBytes(folder_ / "typed.png"));
}

TEST_F(CliDialogAdjust, Palettes_Should_Stay_When_TheyCanSayTheSame) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    const Raster raster = GradientRaster(format, 41, 23);
    const std::vector<std::string> values = {"--red", "-30", "--blue", "20"};
    const Raster changed = Confirmed("adjust", raster, "click nbPost", values);
    EXPECT_EQ(changed.Format(), format);
    EXPECT_TRUE(SameColors(WithoutDialog("adjust", raster, values), changed));
  }
}

TEST_F(CliDialogAdjust, Palettes_Should_BecomeTrueColor_When_ThePictureIsSharpened) {
  const Raster raster = GradientRaster(pf4bit, 41, 23);
  const std::vector<std::string> values = {"--sharpen", "60"};
  const Raster changed = Confirmed("adjust", raster, "click nbPost", values);
  EXPECT_EQ(changed.Format(), pf24bit);
  EXPECT_TRUE(SamePixels(WithoutDialog("adjust", raster, values), changed));
}

TEST_F(CliDialogAdjust, Grays_Should_StayGrays) {
  const Raster changed =
      Confirmed("adjust", GrayRaster(41, 23), "click nbPost", {"--contrast", "-20"});
  EXPECT_EQ(changed.Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(changed.palette));
}

TEST_F(CliDialogAdjust, Transparency_Should_Stay) {
  Raster alpha = GradientRaster(pf32bit, 41, 23);
  alpha.alphaFormat = afDefined;
  const Raster changed = Confirmed("adjust", alpha, "click nbPost", {"--red", "30"});
  ASSERT_EQ(changed.alphaFormat, afDefined);
  for (int x = 0; x < 41; ++x) EXPECT_EQ(changed.Row(7)[x * 4 + 3], alpha.Row(7)[x * 4 + 3]);

  Raster keyed = GradientRaster(pf8bit, 41, 23);
  keyed.transparentColor = keyed.PixelColor(9, 9);
  const std::vector<std::string> values = {"--red", "-30"};
  const Raster plain = WithoutDialog("adjust", keyed, values);
  const Raster asked = Confirmed("adjust", keyed, "click nbPost", values);
  EXPECT_TRUE(SameColors(plain, asked));
  EXPECT_EQ(asked.transparentColor, plain.transparentColor);
}

TEST_F(CliDialogAdjust, Cancel_Should_Exit1AndWriteNothing) {
  for (const char* script : {"click nbCancel", "key Escape", "close"}) {
    const ToolResult result = RunVerb("adjust", Colors(), script);
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_THAT(result.err, HasSubstr("canceled")) << script;
    EXPECT_FALSE(HasOutput()) << script;
  }
}

}  // namespace
}  // namespace rasterkit::test
