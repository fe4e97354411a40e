#include <gtest/gtest.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/test_pictures.h"

/// A bitmap that is released before its successor is made.
namespace rasterkit::test {
namespace {

class CutRelease : public testing::Test {
 protected:
  CutRelease() { it.model.SetOrgBitmap(&bitmap); }

  TBitmap bitmap = GradientBitmap(pf24bit, 40, 30);
  TBitmap next = GradientBitmap(pf24bit, 40, 30);
  TBitmap twice = GradientBitmap(pf24bit, 80, 60);
  ModelAndView it;
};

TEST_F(CutRelease, ReleaseBitmap_Should_ShowNothing) {
  it.view.calls.clear();
  it.model.ReleaseBitmap();
  EXPECT_EQ(it.model.OrgBitmap(), nullptr);
  EXPECT_EQ(it.view.calls, std::vector<std::string>{"repaint"});
  EXPECT_EQ(it.model.GetMouseTarget(200, 150), doNone);
  EXPECT_EQ(it.model.GetCutBitmap(), nullptr);
}

TEST_F(CutRelease, SetOrgBitmap_Should_FindPlaceAndCut_When_TheSizeIsTheSame) {
  it.model.SetBmpCutRect({5, 4, 25, 14});
  it.model.CalculateBmpPaintRect(false);
  it.model.ReleaseBitmap();
  it.model.SetOrgBitmap(&next);
  EXPECT_EQ(it.model.StretchFactor(), 1);
  ASSERT_TRUE(it.model.GetCutRectExists());
  EXPECT_TRUE(AlmostEqual(it.model.BmpCutRect(), RDRect(5, 4, 25, 14), 1e-9));
}

TEST_F(CutRelease, SetOrgBitmap_Should_ScaleTheCut_When_TheSizeIsAnother) {
  it.model.SetBmpCutRect({5, 4, 25, 14});
  it.model.ReleaseBitmap();
  it.model.SetOrgBitmap(&twice);
  EXPECT_TRUE(AlmostEqual(it.model.BmpCutRect(), RDRect(10, 8, 50, 28), 1e-9));
  EXPECT_EQ(it.model.StretchFactor(), 5);
}

TEST_F(CutRelease, SetOrgBitmap_Should_FitAnew_When_TheBoxWasResizedMeanwhile) {
  it.model.ReleaseBitmap();
  it.view.client = {0, 0, 80, 300};
  it.model.OnResize();
  it.model.SetOrgBitmap(&next);
  EXPECT_EQ(it.model.StretchFactor(), 2);
  it.model.CalculateBmpPaintRect(false);
  it.model.SetOrgBitmap(&bitmap);
  EXPECT_EQ(it.model.StretchFactor(), 1) << "once";
}

TEST_F(CutRelease, SetOrgBitmap_Should_ForgetThePlace_When_NoneFollows) {
  it.model.SetBmpCutRect({5, 4, 25, 14});
  it.model.CalculateBmpPaintRect(false);
  it.model.ReleaseBitmap();
  it.model.SetOrgBitmap(nullptr);
  EXPECT_FALSE(it.model.GetCutRectExists());
  it.model.SetOrgBitmap(&next);
  EXPECT_EQ(it.model.StretchFactor(), 10);
}

TEST_F(CutRelease, ReleaseBitmap_Should_GiveUpADrag) {
  it.Press(100, 100);
  it.MoveTo(200, 200);
  it.model.ReleaseBitmap();
  EXPECT_FALSE(it.model.DragIsActive());
}

TEST_F(CutRelease, ReleaseBitmap_Should_DoNothing_When_ThereIsNone) {
  it.model.SetOrgBitmap(nullptr);
  it.view.calls.clear();
  it.model.ReleaseBitmap();
  EXPECT_TRUE(it.view.calls.empty());
}

TEST_F(CutRelease, ForgetCutHistory_Should_EndUndoingHere) {
  it.model.SetBmpCutRect({5, 4, 25, 14});
  it.model.ForgetCutHistory();
  EXPECT_FALSE(it.model.CanUndo());
  EXPECT_FALSE(it.model.UndoCutRect());
  EXPECT_TRUE(it.model.GetCutRectExists());
}

}  // namespace
}  // namespace rasterkit::test
