#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliDialogMono : public DialogTest {
 protected:
  nlohmann::json StepOfRecipe() const {
    const std::vector<uint8_t> text = ReadBytes(folder_ / "r.json");
    return nlohmann::json::parse(text.begin(), text.end()).at("steps").back();
  }
};

TEST_F(CliDialogMono, ThresholdOfTheCommandLine_Should_BeWhereTheWindowBegins) {
  const Raster raster = GrayRaster(41, 23);
  for (const std::vector<std::string>& threshold :
       {std::vector<std::string>{}, {"--threshold", "60"}, {"--threshold", "otsu"}}) {
    EXPECT_TRUE(SamePixels(WithoutDialog("mono", raster, threshold),
                           Confirmed("mono", raster, "click nbPost", threshold)))
        << testing::PrintToString(threshold);
  }
}

TEST_F(CliDialogMono, ThresholdThatIsTyped_Should_BeThatOfTheOutput_AndOfTheRecipe) {
  const Raster raster = GrayRaster(41, 23);
  const Raster changed = Confirmed("mono", raster, "type SpEdThreshold 200; click nbPost",
                                   {"--dark", "003080", "--record", folder_ / "r.json"});
  EXPECT_TRUE(SamePixels(WithoutDialog("mono", raster, {"--threshold", "200", "--dark", "003080"}),
                         changed));
  EXPECT_EQ(changed.Format(), pf1bit);
  EXPECT_EQ(StepOfRecipe().at("step"), "mono");
  EXPECT_EQ(StepOfRecipe().at("threshold"), 200);
  ASSERT_EQ(RunTool({"apply", folder_ / "r.json", folder_ / "in.png", folder_ / "same.png"}).code,
            0);
  EXPECT_EQ(ReadBytes(folder_ / "out.png"), ReadBytes(folder_ / "same.png"));
}

TEST_F(CliDialogMono, RuleThatIsChosen_Should_BeThatOfTheRecipe) {
  const Raster raster = GrayRaster(41, 23);
  const Raster changed = Confirmed("mono", raster, "press CheckAutomatic Space; click nbPost",
                                   {"--record", folder_ / "r.json"});
  EXPECT_TRUE(SamePixels(WithoutDialog("mono", raster, {"--threshold", "otsu"}), changed));
  EXPECT_EQ(StepOfRecipe().at("threshold"), "otsu");
}

TEST_F(CliDialogMono, Cancel_Should_Exit1AndWriteNothing) {
  for (const char* script : {"click nbCancel", "key Escape", "close"}) {
    const ToolResult result =
        RunVerb("mono", GrayRaster(41, 23), script, {"--record", folder_ / "r.json"});
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_THAT(result.err, HasSubstr("canceled")) << script;
    EXPECT_FALSE(HasOutput()) << script;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "r.json")) << script;
  }
}

}  // namespace
}  // namespace rasterkit::test
