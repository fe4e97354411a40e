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
    const ToolResult result = Run({folder_ / "in.png"}, script + SaveAndQuit());
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, "");
    return HasOutput() ? LoadFile(folder_ / "out.png") : Raster();
  }

  std::string SaveAndQuit() const {
    return "action Save | type fileNameEdit " + (folder_ / "out.png") +
           "; key Return | key Return | quit";
  }
};

TEST_F(QtHostExample, Picture_Should_ComeBackAsItWas_When_NothingIsChanged) {
  EXPECT_TRUE(SameColors(GradientRaster(pf24bit, 60, 40), Saved("")));
}

TEST_F(QtHostExample, Dialogs_Should_ChangeThePicture) {
  const Raster changed = Saved(
      "action Size | type FlEdW 30; click ButtonOK |"
      "action Crop | type SpEdLeft 5; type SpEdTop 3; type SpEdWidth 17; type SpEdHeight 11; "
      "click nbPost |"
      "action Values | click nbRefresh; type SpEdRed -100; click nbPost |");
  ASSERT_EQ(changed.Width(), 17);
  ASSERT_EQ(changed.Height(), 11);
  for (int x = 0; x < 17; ++x) EXPECT_EQ(changed.PixelColor(x, 4) & 0xFF, 0) << "no red";
}

TEST_F(QtHostExample, CanceledDialogs_Should_LeaveThePicture) {
  EXPECT_TRUE(SameColors(GradientRaster(pf24bit, 60, 40),
                         Saved("action Size | type FlEdW 7; key Escape |"
                               "action Crop | type SpEdLeft 9; click nbCancel |"
                               "action Values | click nbCancel |")));
}

TEST_F(QtHostExample, OtherPicture_Should_BeLaidOver) {
  SavePngFile(folder_ / "other.png", GradientRaster(pf24bit, 20, 13));
  const Raster mixed =
      Saved("action Lay over | type fileNameEdit " + (folder_ / "other.png") + "; key Return |");
  EXPECT_EQ(mixed.Width(), 60);
  EXPECT_FALSE(SameColors(GradientRaster(pf24bit, 60, 40), mixed));
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
