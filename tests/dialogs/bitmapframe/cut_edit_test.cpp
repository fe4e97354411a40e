#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CutEdit : public testing::Test {
 protected:
  CutEdit() : bitmap(GradientBitmap(pf24bit, 60, 40)), it(300, 300) {
    it.model.SetOrgBitmap(&bitmap);
    it.view.calls.clear();
  }

  void SetCut(const RDRect& rect) {
    it.model.SetBmpCutRect(rect);
    it.view.calls.clear();
  }
  void ExpectCut(double left, double top, double right, double bottom) {
    const RDRect& rect = it.model.BmpCutRect();
    EXPECT_TRUE(AlmostEqual(rect, {left, top, right, bottom}, 1e-9))
        << rect.Left << " " << rect.Top << " " << rect.Right << " " << rect.Bottom;
  }

  TBitmap bitmap;
  ModelAndView it;
};

TEST_F(CutEdit, SetBmpCutRect_Should_MakeACut_TellItAndRepaint) {
  it.model.SetBmpCutRect({10, 5, 30, 25});
  EXPECT_TRUE(it.model.CutRectExists());
  ExpectCut(10, 5, 30, 25);
  EXPECT_EQ(it.model.MarkRects().size(), 12u);
  EXPECT_TRUE(it.model.Darkening()->IsLit(10, 5));
  EXPECT_FALSE(it.model.Darkening()->IsLit(9, 5));
  EXPECT_THAT(it.view.calls, ElementsAre("info", "repaint"));
}

TEST_F(CutEdit, SetBmpCutRect_Should_TakeTheRectangleAsItIs_When_ItReachesBeyondTheBitmap) {
  SetCut({-10, -5, 600, 25});
  ExpectCut(-10, -5, 600, 25);
  const auto cut = it.model.GetCutBitmap();
  EXPECT_EQ(cut->Width(), 60);
  EXPECT_EQ(cut->Height(), 25);
}

TEST_F(CutEdit, DelCutRect_Should_EndTheCutAndTellIt) {
  SetCut({10, 5, 30, 25});
  it.model.DelCutRect();
  EXPECT_FALSE(it.model.CutRectExists());
  EXPECT_TRUE(it.model.MarkRects().empty());
  EXPECT_THAT(it.view.calls, ElementsAre("info"));
}

TEST_F(CutEdit, SwapBitmaps_Should_MirrorCutAndPicture_When_Horizontal) {
  SetCut({10, 5, 30, 25});
  TBitmap expected = GradientBitmap(pf24bit, 60, 40);
  SwapBitmap(true, &expected);
  it.model.SwapBitmaps(true);
  EXPECT_TRUE(SamePixels(expected, bitmap));
  ExpectCut(30, 5, 50, 25);
  EXPECT_DOUBLE_EQ(it.model.CutRect().Left, 30 * 5);
  EXPECT_THAT(it.view.calls, ElementsAre("repaint"));
}

TEST_F(CutEdit, SwapBitmaps_Should_MirrorTheCutLeftToRight_When_ThePictureIsTurnedUpsideDown) {
  SetCut({10, 5, 30, 25});
  TBitmap expected = GradientBitmap(pf24bit, 60, 40);
  SwapBitmap(false, &expected);
  it.model.SwapBitmaps(false);
  EXPECT_TRUE(SamePixels(expected, bitmap));
  ExpectCut(30, 5, 50, 25);
}

TEST_F(CutEdit, SwapBitmaps_Should_MirrorTheDarkenedPicture) {
  SetCut({10, 5, 30, 25});
  for (const bool horizontal : {true, false}) {
    const auto expected = it.model.DarkedBmp();
    SwapBitmap(horizontal, expected.get());
    it.model.SwapBitmaps(horizontal);
    EXPECT_TRUE(SamePixels(*expected, *it.model.DarkedBmp()));
  }
}

TEST_F(CutEdit, SwapBitmaps_Should_MirrorThePictureAlone_When_ThereIsNoCut) {
  TBitmap expected = GradientBitmap(pf24bit, 60, 40);
  SwapBitmap(true, &expected);
  it.model.SwapBitmaps(true);
  EXPECT_TRUE(SamePixels(expected, bitmap));
  EXPECT_FALSE(it.model.CutRectExists());
}

TEST_F(CutEdit, PictureVersion_Should_Change_When_ThePictureDoes) {
  const unsigned first = it.model.PictureVersion();
  it.model.SwapBitmaps(true);
  const unsigned second = it.model.PictureVersion();
  EXPECT_NE(first, second);
  it.model.SetOrgBitmap(&bitmap);
  EXPECT_NE(second, it.model.PictureVersion());
}

TEST_F(CutEdit, CutPixels_Should_RoundTheCorners) {
  SetCut({9.6, 5.4, 30.5, 25.51});
  const TRect cut = it.model.CutPixels();
  EXPECT_EQ(cut.Left, 10);
  EXPECT_EQ(cut.Top, 5);
  EXPECT_EQ(cut.Right, 30);
  EXPECT_EQ(cut.Bottom, 26);
}

TEST_F(CutEdit, CutPixels_Should_BeThePixelAround_When_TheCutIsSmallerThanOne) {
  SetCut({9.6, 5.9, 10.2, 6.1});
  const TRect cut = it.model.CutPixels();
  EXPECT_EQ(cut.Left, 9);
  EXPECT_EQ(cut.Right, 10);
  EXPECT_EQ(cut.Top, 6);
  EXPECT_EQ(cut.Bottom, 7);
  SetCut({60, 40, 60, 40});
  EXPECT_EQ(it.model.CutPixels().Left, 59) << "the last one at the very end";
  EXPECT_EQ(it.model.GetCutBitmap()->Height(), 1);
}

TEST_F(CutEdit, MoveCutRect_Should_MoveByWholePixelsInsideTheBitmap) {
  SetCut({9.6, 5.4, 30.4, 25.4});
  EXPECT_TRUE(it.model.MoveCutRect(1, 0));
  ExpectCut(11, 5, 31, 25);
  it.model.MoveCutRect(0, -10);
  ExpectCut(11, 0, 31, 20);
  it.model.MoveCutRect(100, 100);
  ExpectCut(40, 20, 60, 40);
}

TEST_F(CutEdit, Keys_Should_RaiseEventsLikeADrag) {
  SetCut({10, 5, 30, 25});
  it.model.MoveCutRect(1, 0);
  EXPECT_THAT(it.view.calls, ElementsAre("size", "info", "changed", "repaint"));
}

TEST_F(CutEdit, ResizeCutRect_Should_MoveRightAndBottomBetweenOnePixelAndTheEnd) {
  SetCut({10, 5, 30, 25});
  EXPECT_TRUE(it.model.ResizeCutRect(-1, 10));
  ExpectCut(10, 5, 29, 35);
  it.model.ResizeCutRect(-100, 100);
  ExpectCut(10, 5, 11, 40);
  it.model.ResizeCutRect(100, -100);
  ExpectCut(10, 5, 60, 6);
}

TEST_F(CutEdit, Keys_Should_DoNothing_When_ThereIsNoCut) {
  EXPECT_FALSE(it.model.MoveCutRect(1, 1));
  EXPECT_FALSE(it.model.ResizeCutRect(1, 1));
  EXPECT_FALSE(it.model.UndoCutRect());
  EXPECT_THAT(it.view.calls, IsEmpty());
}

TEST_F(CutEdit, UndoCutRect_Should_TakeBackOneChangeAfterTheOther) {
  it.model.SetBmpCutRect({10, 5, 30, 25});
  it.model.MoveCutRect(1, 0);
  it.Drag(100, 120, 110, 140);  // moves by 2 and 4 pixels
  ExpectCut(13, 9, 33, 29);
  it.model.DelCutRect();
  it.view.calls.clear();
  EXPECT_TRUE(it.model.UndoCutRect());
  ExpectCut(13, 9, 33, 29);
  EXPECT_TRUE(it.model.CutRectExists());
  EXPECT_THAT(it.view.calls, ElementsAre("size", "info", "changed", "repaint"));
  EXPECT_TRUE(it.model.UndoCutRect());
  ExpectCut(11, 5, 31, 25);
  EXPECT_TRUE(it.model.UndoCutRect());
  ExpectCut(10, 5, 30, 25);
  EXPECT_TRUE(it.model.UndoCutRect());
  EXPECT_FALSE(it.model.CutRectExists());
  EXPECT_FALSE(it.model.UndoCutRect());
}

TEST_F(CutEdit, UndoCutRect_Should_BringBackACut_When_AClickRemovedIt) {
  it.model.SetBmpCutRect({10, 5, 30, 25});
  it.Drag(5, 60, 5, 60);
  ASSERT_FALSE(it.model.CutRectExists());
  it.model.UndoCutRect();
  ExpectCut(10, 5, 30, 25);
  EXPECT_TRUE(it.model.CutRectExists());
}

TEST_F(CutEdit, UndoCutRect_Should_SkipClicksThatChangedNothing) {
  it.model.SetBmpCutRect({10, 5, 30, 25});
  it.Drag(120, 120, 120, 120);
  it.model.UndoCutRect();
  EXPECT_FALSE(it.model.CutRectExists());
}

TEST_F(CutEdit, UndoCutRect_Should_Forget_When_AnotherSizeOrMirroringCame) {
  it.model.SetBmpCutRect({10, 5, 30, 25});
  TBitmap other = GradientBitmap(pf24bit, 30, 40);
  it.model.SetOrgBitmap(&other);
  EXPECT_FALSE(it.model.UndoCutRect());
  it.model.SetBmpCutRect({1, 5, 3, 25});
  it.model.SwapBitmaps(true);
  EXPECT_FALSE(it.model.UndoCutRect());
  it.model.SetOrgBitmap(nullptr);
}

TEST_F(CutEdit, UndoCutRect_Should_BeBounded_When_KeysAreHeldDown) {
  SetCut({0, 0, 5, 5});
  for (int i = 0; i < 1000; ++i) it.model.MoveCutRect(i % 2 == 0 ? 1 : -1, 0);
  int steps = 0;
  while (it.model.UndoCutRect()) ++steps;
  EXPECT_EQ(steps, 256);
}

TEST_F(CutEdit, OnStateChanged_Should_TellEveryChange) {
  int told = 0;
  it.model.OnStateChanged = [&](BmpCutModel&) { ++told; };
  it.model.SetBmpCutRect({10, 5, 30, 25});
  EXPECT_EQ(told, 1);
  it.Drag(5, 60, 5, 60);
  EXPECT_EQ(told, 2) << "a click that removes the cut";
  it.model.UndoCutRect();
  it.model.MoveCutRect(1, 1);
  it.model.DelCutRect();
  it.model.SwapBitmaps(true);
  it.model.SetOrgBitmap(nullptr);
  EXPECT_EQ(told, 7);
}

}  // namespace
}  // namespace rasterkit::test
