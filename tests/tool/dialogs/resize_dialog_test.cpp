#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliDialogResize : public DialogTest {};

TEST_F(CliDialogResize, SizeThatIsTyped_Should_BeThatOfTheOutput) {
  const Raster raster = GradientRaster(pf24bit, 60, 40);
  const Raster small = Confirmed("resize", raster, "type FlEdW 30; click ButtonOK");
  EXPECT_EQ(small.Height(), 20) << "proportional";
  EXPECT_TRUE(SamePixels(WithoutDialog("resize", raster, {"--size", "30x20"}), small));
}

TEST_F(CliDialogResize, SizeOfTheCommandLine_Should_BeWhereTheWindowBegins) {
  const Raster raster = GradientRaster(pf24bit, 60, 40);
  EXPECT_TRUE(SamePixels(WithoutDialog("resize", raster, {"--size", "x10"}),
                         Confirmed("resize", raster, "key Return", {"--size", "x10"})));
}

TEST_F(CliDialogResize, OptionsAndResolution_Should_ActAsWithoutAWindow) {
  Raster raster = GradientRaster(pf4bit, 60, 40);
  raster.resolution = {300, 200};
  const Raster small = Confirmed("resize", raster, "click CheckProp; type FlEdW 30; click ButtonOK",
                                 {"--filter", "area"});
  EXPECT_TRUE(
      SamePixels(WithoutDialog("resize", raster, {"--size", "30x40", "--filter", "area"}), small));
  EXPECT_NEAR(small.resolution.x, 150, 0.1);
  EXPECT_NEAR(small.resolution.y, 200, 0.1);
}

TEST_F(CliDialogResize, Cancel_Should_Exit1AndWriteNothing) {
  for (const char* script : {"click ButtonExit", "type FlEdW 7; key Escape", "close"}) {
    const ToolResult result = RunVerb("resize", GradientRaster(pf24bit, 6, 4), script);
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_EQ(result.err, "rasterkit: " + (folder_ / "in.png") + ": canceled\n") << script;
    EXPECT_FALSE(HasOutput()) << script;
  }
}

TEST_F(CliDialogResize, SizeThatCannotBe_Should_Exit4) {
  for (const char* script :
       {"type FlEdW 0; click ButtonOK", "click CheckProp; type FlEdH 1000001; click ButtonOK"}) {
    const ToolResult result = RunVerb("resize", GradientRaster(pf24bit, 6, 4), script);
    EXPECT_EQ(result.code, 4) << script;
    EXPECT_THAT(result.err, HasSubstr("from 1 to 1000000"));
    EXPECT_FALSE(HasOutput()) << script;
  }
}

TEST_F(CliDialogResize, EachOfSeveralPictures_Should_HaveItsWindow) {
  for (const char* name : {"a.png", "b.png", "c.png"})
    SavePngFile(folder_ / name, GradientRaster(pf24bit, 60, 40));
  const ToolResult result =
      Run({"resize", "--dialog", "--continue", "--json", "--out-dir", folder_ / "d",
           folder_ / "a.png", folder_ / "b.png", folder_ / "c.png"},
          "type FlEdW 30; click ButtonOK | key Escape | type FlEdW 15; click ButtonOK");
  EXPECT_EQ(result.code, 1);
  const auto lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0]["width"], 30);
  EXPECT_EQ(lines[1]["ok"], false);
  EXPECT_THAT(lines[1]["error"].get<std::string>(), HasSubstr("canceled"));
  EXPECT_EQ(lines[2]["width"], 15);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "d/b.png"));
}

TEST_F(CliDialogResize, Cancel_Should_EndTheBatch_When_ItIsNotToContinue) {
  for (const char* name : {"a.png", "b.png"})
    SavePngFile(folder_ / name, GradientRaster(pf24bit, 6, 4));
  const ToolResult result =
      Run({"resize", "--dialog", "--out-dir", folder_ / "d", folder_ / "a.png", folder_ / "b.png"},
          "key Escape | click ButtonOK");
  EXPECT_EQ(result.code, 1);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "d/b.png"));
}

}  // namespace
}  // namespace rasterkit::test
