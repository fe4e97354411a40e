#include "tests/dialogs/editpdfbitmap/model_fixture.h"

namespace rasterkit::test {
namespace {

class EditControlsTest : public testing::Test {
 protected:
  RecordingEditView view;
  EditControls controls{view};
};

TEST_F(EditControlsTest, Should_TellTheViewHowItStarts) {
  EXPECT_EQ(view.Of(CoBoResolution).text, "150");
  EXPECT_EQ(view.Of(CoBoRotation).text, "0");
  EXPECT_EQ(view.page, 1);
  EXPECT_EQ(view.lastPage, 1000);
  EXPECT_TRUE(view.Of(SpeedButtonEdit).visible);
  EXPECT_FALSE(view.Of(SpeedButtonCut).visible);
  EXPECT_FALSE(view.Of(SpeedButtonCut).enabled);
  EXPECT_TRUE(view.Of(SpeedButtonOpen).enabled);
  for (const EditControl toggle : kToggles) EXPECT_FALSE(view.Of(toggle).down);
}

TEST_F(EditControlsTest, SetBusy_Should_DisableAllButCancel_ForAWhile) {
  controls.SetBusy(true);
  for (int i = 0; i < kEditControls; ++i) {
    const auto control = static_cast<EditControl>(i);
    EXPECT_EQ(view.Of(control).enabled, control == NaviResultCancel) << i;
  }
  controls.SetEnabled(SpeedButtonEdit, false);
  controls.SetEnabled(SpeedButtonCut, true);
  EXPECT_FALSE(view.Of(SpeedButtonCut).enabled);
  controls.SetBusy(false);
  EXPECT_TRUE(view.Of(SpeedButtonOpen).enabled);
  EXPECT_FALSE(view.Of(SpeedButtonEdit).enabled);
  EXPECT_TRUE(view.Of(SpeedButtonCut).enabled);
}

TEST_F(EditControlsTest, Click_Should_LeaveAtMostOneDown) {
  controls.Click(SpeedButtonMirror);
  EXPECT_TRUE(view.Of(SpeedButtonMirror).down);
  controls.Click(SpeedButtonGrayScale);
  EXPECT_FALSE(controls.Down(SpeedButtonMirror));
  EXPECT_FALSE(view.Of(SpeedButtonMirror).down);
  EXPECT_TRUE(view.Of(SpeedButtonGrayScale).down);
}

TEST_F(EditControlsTest, Click_Should_LiftTheOneThatIsDown) {
  for (const EditControl toggle : kToggles) {
    controls.Click(toggle);
    controls.Click(toggle);
    for (const EditControl every : kToggles) EXPECT_FALSE(view.Of(every).down);
  }
}

TEST_F(EditControlsTest, TakeText_Should_NotHandItBack) {
  controls.TakeText(CoBoResolution, "72");
  EXPECT_EQ(controls.Text(CoBoResolution), "72");
  EXPECT_EQ(view.Of(CoBoResolution).text, "150");
  controls.TakePage(7);
  EXPECT_EQ(controls.Page(), 7);
  EXPECT_EQ(view.page, 1);
}

TEST_F(EditControlsTest, ShowDown_Should_SayItAgain) {
  view.Of(SpeedButtonMirror).down = true;
  controls.ShowDown();
  EXPECT_FALSE(view.Of(SpeedButtonMirror).down);
}

}  // namespace
}  // namespace rasterkit::test
