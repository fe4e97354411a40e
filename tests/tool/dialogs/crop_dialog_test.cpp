#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

#include <nlohmann/json.hpp>

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
                               "type FieldLeft 5; type FieldTop 3; type FieldWidth 17; type "
                               "FieldHeight 11; click nbPost");
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

TEST_F(CliDialogCrop, RectangleBesideThePicture_Should_BeginWithTheWhole) {
  const Raster raster = GradientRaster(pf24bit, 37, 20);
  const std::vector<std::string> rect = {"--rect", "5000,5000,100,100"};
  EXPECT_TRUE(SamePixels(raster, Confirmed("crop", raster, "click nbPost", rect)));
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

/// The answer of the window is a step in the unit that the user chose.
TEST_F(CliDialogCrop, Recipe_Should_GiveTheSameBytes_InTheUnitOfTheUser) {
  const Raster raster = GradientRaster(pf24bit, 400, 300);
  const std::string recipe = folder_ / "r.json";
  const std::string scripts[] = {"drag PaintBox 200,150 260,190; click nbPost",
                                 "type ComboUnit Percent; type FieldLeft 10; type FieldTop 20; "
                                 "type FieldWidth 50; type FieldHeight 40; click nbPost"};
  for (const std::string& script : scripts) {
    const ToolResult result = RunVerb("crop", raster, script, {"--record", recipe, "--overwrite"});
    ASSERT_EQ(result.code, 0) << result.err;
    ASSERT_EQ(
        RunTool({"apply", recipe, folder_ / "in.png", folder_ / "same.png", "--overwrite"}).code,
        0);
    EXPECT_EQ(ReadBytes(folder_ / "out.png"), ReadBytes(folder_ / "same.png")) << script;
  }
  const std::vector<uint8_t> text = ReadBytes(recipe);
  const auto step = nlohmann::json::parse(text.begin(), text.end()).at("steps").at(0);
  EXPECT_EQ(step.at("unit"), "percent");
  EXPECT_EQ(step.at("right"), 60);
}

TEST_F(CliDialogCrop, MapRectangle_Should_BeWhereTheWindowBegins) {
  const std::string placed = folder_ / "placed.tif";
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 40, 30));
  ASSERT_EQ(
      RunTool({"geotiff", folder_ / "in.png", placed, "--origin", "1000,2000", "--pixel-size", "2"})
          .code,
      0);
  std::vector<std::string> line = {"crop", placed, folder_ / "plain.tif", "--map-rect",
                                   "1010,1960,1050,1990"};
  ASSERT_EQ(RunTool(line).code, 0);
  line[2] = folder_ / "asked.tif";
  line.insert(line.end(), {"--dialog", "--record", folder_ / "r.json"});
  const ToolResult asked = Run(line, "click nbPost");
  EXPECT_EQ(asked.code, 0) << asked.err;
  EXPECT_EQ(ReadBytes(folder_ / "plain.tif"), ReadBytes(folder_ / "asked.tif"));
  const std::vector<uint8_t> text = ReadBytes(folder_ / "r.json");
  EXPECT_EQ(nlohmann::json::parse(text.begin(), text.end()).at("steps").at(0).at("unit"), "map");
}

TEST_F(CliDialogCrop, SeveralPictures_Should_NotBeRecorded) {
  for (const char* name : {"a.png", "b.png"}) {
    SavePngFile(folder_ / name, GradientRaster(pf24bit, 6, 4));
  }
  const ToolResult result = Run({"crop", "--dialog", folder_ / "a.png", folder_ / "b.png",
                                 "--out-dir", folder_ / "d", "--record", folder_ / "r.json"},
                                "");
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("--record"));
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
