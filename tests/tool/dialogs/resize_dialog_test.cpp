#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliDialogResize : public DialogTest {};

TEST_F(CliDialogResize, SizeThatIsTyped_Should_BeThatOfTheOutput) {
  const Raster raster = GradientRaster(pf24bit, 60, 40);
  const Raster small =
      Confirmed("resize", raster, "type UnitBox pixels; type FlEdWidth 30; click ButtonOK");
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
  const Raster small =
      Confirmed("resize", raster,
                "type UnitBox pixels; press CheckKeep Space; type FlEdWidth 30; click ButtonOK",
                {"--filter", "area"});
  EXPECT_TRUE(
      SamePixels(WithoutDialog("resize", raster, {"--size", "30x40", "--filter", "area"}), small));
  EXPECT_NEAR(small.resolution.x, 150, 0.1);
  EXPECT_NEAR(small.resolution.y, 200, 0.1);
}

TEST_F(CliDialogResize, Cancel_Should_Exit1AndWriteNothing) {
  for (const char* script :
       {"click ButtonExit", "type UnitBox pixels; type FlEdWidth 7; key Escape", "close"}) {
    const ToolResult result = RunVerb("resize", GradientRaster(pf24bit, 6, 4), script);
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_EQ(result.err, "rasterkit: " + (folder_ / "in.png") + ": canceled\n") << script;
    EXPECT_FALSE(HasOutput()) << script;
  }
}

TEST_F(CliDialogResize, SizeThatCannotBe_Should_NotBeConfirmed) {
  for (const char* script : {"type UnitBox pixels; type FlEdWidth 0; key Return; key Escape",
                             "type FlEdHeight 999999999; key Return; key Escape"}) {
    const ToolResult result = RunVerb("resize", GradientRaster(pf24bit, 6, 4), script);
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_FALSE(HasOutput()) << script;
  }
}

/// The answer of the window is a step in the unit that the user chose.
TEST_F(CliDialogResize, Recipe_Should_GiveTheSameBytes_InTheUnitOfTheUser) {
  const std::string recipe = folder_ / "r.json";
  const ToolResult result =
      RunVerb("resize", GradientRaster(pf24bit, 61, 41),
              "type UnitBox percent; type FlEdWidth 30; click ButtonOK", {"--record", recipe});
  ASSERT_EQ(result.code, 0) << result.err;
  const std::vector<uint8_t> text = ReadBytes(recipe);
  const auto step = nlohmann::json::parse(text.begin(), text.end()).at("steps").at(0);
  EXPECT_EQ(step.at("unit"), "percent");
  EXPECT_EQ(step.at("width"), 30);
  ASSERT_EQ(RunTool({"apply", recipe, folder_ / "in.png", folder_ / "same.png"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "out.png"), ReadBytes(folder_ / "same.png"));
}

TEST_F(CliDialogResize, EachOfSeveralPictures_Should_HaveItsWindow) {
  for (const char* name : {"a.png", "b.png", "c.png"})
    SavePngFile(folder_ / name, GradientRaster(pf24bit, 60, 40));
  const ToolResult result =
      Run({"resize", "--dialog", "--continue", "--json", "--out-dir", folder_ / "d",
           folder_ / "a.png", folder_ / "b.png", folder_ / "c.png"},
          "type UnitBox pixels; type FlEdWidth 30; click ButtonOK | key Escape | type UnitBox "
          "pixels; type FlEdWidth 15; click ButtonOK");
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
