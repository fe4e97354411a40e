#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

class CliDialogLanguage : public DialogTest {};

TEST_F(CliDialogLanguage, Windows_Should_SpeakTheUsersLanguage) {
  const Raster raster = GradientRaster(pf24bit, 60, 40);
  locale_ = "de_DE.UTF-8";
  const ToolResult canceled = RunVerb("resize", raster, "click Abbrechen");
  EXPECT_EQ(canceled.code, 1);
  EXPECT_EQ(canceled.err, "rasterkit: " + (folder_ / "in.png") + ": canceled\n");
  EXPECT_EQ(Confirmed("crop", raster,
                      "type FieldLeft 5; type FieldTop 5; type FieldWidth 30; type FieldHeight 25; "
                      "click OK")
                .Width(),
            30);
  locale_ = "fr_FR.UTF-8";
  EXPECT_EQ(RunVerb("resize", raster, "click Cancel").code, 1) << "no catalogue";
}

TEST_F(CliDialogLanguage, TheTerminal_Should_StayEnglish) {
  const ToolResult plain = Run({"resize", "--help"}, "");
  locale_ = "de_DE.UTF-8";
  const ToolResult german = Run({"resize", "--help"}, "");
  EXPECT_EQ(german.code, 0);
  EXPECT_EQ(german.out, plain.out);
  EXPECT_THAT(german.out, testing::HasSubstr("Usage"));
}

}  // namespace
}  // namespace rasterkit::test
