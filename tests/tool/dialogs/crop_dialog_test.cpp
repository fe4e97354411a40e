#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliDialogCrop : public DialogTest {};

TEST_F(CliDialogCrop, RectangleOfTheCommandLine_Should_BeWhereTheWindowBegins) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 37, 20);
    const std::vector<std::string> rect = {"--rect", "5,3,17,11"};
    EXPECT_TRUE(SamePixels(WithoutDialog("crop", raster, rect),
                           Confirmed("crop", raster, "click nbPost", rect)));
  }
}

TEST_F(CliDialogCrop, NumbersThatAreTyped_Should_BeThoseOfTheOutput) {
  const Raster raster = GradientRaster(pf8bit, 37, 20);
  const Raster cut = Confirmed("crop", raster,
                               "type SpEdLeft 5; type SpEdTop 3; type SpEdWidth 17; type "
                               "SpEdHeight 11; click nbPost");
  EXPECT_TRUE(SamePixels(WithoutDialog("crop", raster, {"--rect", "5,3,17,11"}), cut));
}

TEST_F(CliDialogCrop, RectangleThatIsDrawn_Should_BePartOfThePicture) {
  const Raster raster = GradientRaster(pf24bit, 400, 300);
  const Raster cut = Confirmed("crop", raster, "drag PaintBox 200,150 260,190; click nbPost");
  ASSERT_GT(cut.Width(), 1);
  ASSERT_GT(cut.Height(), 1);
  EXPECT_LT(cut.Width(), 400);
  EXPECT_LT(cut.Height(), 300);
  bool isPart = false;
  for (int top = 0; top <= 300 - cut.Height() && !isPart; ++top)
    for (int left = 0; left <= 400 - cut.Width() && !isPart; ++left)
      isPart = raster.PixelColor(left, top) == cut.PixelColor(0, 0) &&
               raster.PixelColor(left + cut.Width() - 1, top + cut.Height() - 1) ==
                   cut.PixelColor(cut.Width() - 1, cut.Height() - 1);
  EXPECT_TRUE(isPart);
}

TEST_F(CliDialogCrop, NoRectangle_Should_KeepTheWhole) {
  const Raster raster = GradientRaster(pf24bit, 37, 20);
  EXPECT_TRUE(SamePixels(raster, Confirmed("crop", raster, "click nbPost")));
}

TEST_F(CliDialogCrop, AlphaChannel_Should_ComeAlong) {
  Raster raster = GradientRaster(pf32bit, 37, 20);
  raster.alphaFormat = afDefined;
  const std::vector<std::string> rect = {"--rect", "5,3,17,11"};
  EXPECT_TRUE(SamePixels(WithoutDialog("crop", raster, rect),
                         Confirmed("crop", raster, "click nbPost", rect)));
}

TEST_F(CliDialogCrop, Photograph_Should_StandUprightAndSayWhatIsLost) {
  SaveJpegFile(folder_ / "a.jpg", GradientRaster(pf24bit, 40, 24), 6);
  const std::vector<std::string> rect = {"--rect", "2,1,20,30"};
  std::vector<std::string> line = {"crop", folder_ / "a.jpg", folder_ / "plain.bmp"};
  line.insert(line.end(), rect.begin(), rect.end());
  const ToolResult plain = RunTool(line);
  line[2] = folder_ / "asked.bmp";
  line.emplace_back("--dialog");
  const ToolResult asked = Run(line, "click nbPost");
  EXPECT_EQ(asked.code, 0);
  EXPECT_THAT(asked.err, HasSubstr("lost: "));
  EXPECT_THAT(plain.err, HasSubstr("lost: "));
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "plain.bmp"), LoadFile(folder_ / "asked.bmp")));
}

TEST_F(CliDialogCrop, Cancel_Should_Exit1AndWriteNothing) {
  for (const char* script :
       {"click nbCancel", "drag PaintBox 200,150 260,190; key Escape", "close"}) {
    const ToolResult result = RunVerb("crop", GradientRaster(pf24bit, 400, 300), script);
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_THAT(result.err, HasSubstr("canceled")) << script;
    EXPECT_FALSE(HasOutput()) << script;
  }
}

}  // namespace
}  // namespace rasterkit::test
