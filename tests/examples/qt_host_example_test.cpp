#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

class QtHostExample : public DialogTest {
 protected:
  void SetUp() override { SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40)); }

  /// Opens in.png, does what the script says, and quits; returns the picture saved as out.png.
  Raster Saved(const std::string& script) const {
    const ToolResult result =
        Run({folder_ / "in.png"},
            script + "action Save | type EditName out.png; click SaveButton | quit");
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, "");
    return HasOutput() ? LoadFile(folder_ / "out.png") : Raster();
  }
};

TEST_F(QtHostExample, Picture_Should_ComeBackAsItWas_When_NothingIsChanged) {
  EXPECT_TRUE(SameColors(GradientRaster(pf24bit, 60, 40), Saved("")));
}

TEST_F(QtHostExample, Windows_Should_ChangeThePicture) {
  const Raster changed = Saved(
      "action Size | type FlEdWidth 30; click ButtonOK |"
      "action Crop | type FieldLeft 5; type FieldTop 3; type FieldWidth 17; type FieldHeight 11; "
      "click nbPost |"
      "action Values | type SpEdRed -100; click nbPost |");
  ASSERT_EQ(changed.Width(), 17);
  ASSERT_EQ(changed.Height(), 11);
  for (int x = 0; x < 17; ++x) EXPECT_EQ(changed.PixelColor(x, 4) & 0xFF, 0) << "no red";
}

TEST_F(QtHostExample, Undo_Should_TakeTheLastStepBack) {
  const Raster changed = Saved(
      "action Size | type FlEdWidth 30; click ButtonOK |"
      "action Black and white | click nbPost | action Undo |");
  EXPECT_EQ(changed.Width(), 30);
  EXPECT_EQ(changed.Format(), pf24bit);
}

TEST_F(QtHostExample, CanceledWindows_Should_LeaveThePicture) {
  EXPECT_TRUE(SameColors(GradientRaster(pf24bit, 60, 40),
                         Saved("action Size | type FlEdWidth 7; key Escape |"
                               "action Crop | type FieldLeft 9; click nbCancel |"
                               "action Values | click nbCancel |"
                               "action Edit | click nbCancel |")));
}

TEST_F(QtHostExample, Editor_Should_WriteByItself) {
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  const ToolResult result =
      Run({folder_ / "in.png"},
          "action Edit | click ToolTurnLeft; click nbPost | click ButtonYes | quit");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_NE(ReadBytes(folder_ / "in.png"), before);
  EXPECT_EQ(LoadFile(folder_ / "in.png").Width(), 40);
}

TEST_F(QtHostExample, FileThatIsNoPicture_Should_BeSaid) {
  WriteText(folder_ / "in.png", "no picture");
  // A message, and the program continues.
  const ToolResult result = Run({folder_ / "in.png"}, "key Return | quit");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
}

}  // namespace
}  // namespace rasterkit::test
