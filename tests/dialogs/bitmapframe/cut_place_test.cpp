#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;

constexpr double kRounding = 1e-9;

void ExpectRect(const RDRect& actual, const RDRect& expected) {
  EXPECT_TRUE(AlmostEqual(actual, expected, kRounding))
      << actual.Left << " " << actual.Top << " " << actual.Right << " " << actual.Bottom;
}

class CutPlace : public testing::Test {
 protected:
  void Show(int width, int height) {
    bitmap = GradientBitmap(pf24bit, width, height);
    it.model.SetOrgBitmap(&bitmap);
    it.view.calls.clear();
  }

  TBitmap bitmap;
  ModelAndView it;
};

TEST_F(CutPlace, Defaults_Should_HaveTheirValues) {
  const BmpCutModel& model = it.model;
  EXPECT_EQ(model.FrameColor(), 255);
  EXPECT_EQ(model.FrameWidth(), 2);
  EXPECT_EQ(model.MarkWidth(), 10);
  EXPECT_EQ(model.StepSize(), 0.05);
  EXPECT_EQ(model.EntryMode(), emGraphic);
  EXPECT_TRUE(model.CutRectEnabled());
  EXPECT_FALSE(model.GetCutRectExists());
  EXPECT_FALSE(model.DragIsActive());
  EXPECT_EQ(model.OrgBitmap(), nullptr);
}

TEST_F(CutPlace, EDragObjectType_Should_KeepItsOrder) {
  EXPECT_THAT((std::vector<int>{doNone, doMove, doFrame, doLeft, doTop, doRight, doBottom,
                                doLeftTop, doRightTop, doLeftBottom, doRightBottom}),
              ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
  EXPECT_THAT((std::vector<int>{emGraphic, emLine, emCoord}), ElementsAre(0, 1, 2));
}

TEST_F(CutPlace, SetOrgBitmap_Should_FitAndCenter_When_TheBitmapIsNew) {
  Show(800, 400);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.5);
  ExpectRect(it.model.PaintRect(), {0, 50, 400, 250});
}

TEST_F(CutPlace, SetOrgBitmap_Should_KeepTheZoom_When_TheSizeIsTheSame) {
  Show(800, 400);
  bool handled = false;
  it.model.OnMouseWheel(120, {0, 0}, handled);
  const RDRect before = it.model.PaintRect();
  TBitmap other = GradientBitmap(pf8bit, 800, 400);
  it.model.SetOrgBitmap(&other);
  ExpectRect(it.model.PaintRect(), before);
}

TEST_F(CutPlace, SetOrgBitmap_Should_ScaleTheCutByTheWidths_When_TheSizeChanged) {
  Show(800, 400);
  it.model.SetBmpCutRect({100, 40, 300, 200});
  TBitmap half = GradientBitmap(pf24bit, 400, 300);
  it.model.SetOrgBitmap(&half);
  ExpectRect(it.model.BmpCutRect(), {50, 20, 150, 100});
  EXPECT_TRUE(it.model.GetCutRectExists());
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 1);
  ExpectRect(it.model.CutRect(), {50, 20, 150, 100});
  EXPECT_TRUE(it.model.Darkening()->IsLit(149, 99));
  EXPECT_FALSE(it.model.Darkening()->IsLit(150, 99));
}

TEST_F(CutPlace, SetOrgBitmap_Should_FitAgainAndKeepTheCut_When_OnlyTheHeightChanged) {
  Show(800, 400);
  it.model.SetBmpCutRect({100, 40, 300, 200});
  TBitmap higher = GradientBitmap(pf24bit, 800, 1200);
  it.model.SetOrgBitmap(&higher);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.25);
  ExpectRect(it.model.BmpCutRect(), {100, 40, 300, 200});
}

TEST_F(CutPlace, SetOrgBitmap_Should_WriteTheSizeThenTellItsChange) {
  bitmap = GradientBitmap(pf24bit, 100, 100);
  it.model.SetOrgBitmap(&bitmap);
  EXPECT_THAT(it.view.calls, ElementsAre("size", "info", "repaint"));
  EXPECT_EQ(it.view.sizeText, "100 * 100 px (30 [kB])");
}

TEST_F(CutPlace, SetOrgBitmap_Should_EndTheCut_When_ThereIsNoBitmapAnyMore) {
  Show(800, 400);
  it.model.SetBmpCutRect({100, 40, 300, 200});
  it.model.SetOrgBitmap(nullptr);
  EXPECT_FALSE(it.model.GetCutRectExists());
  EXPECT_EQ(it.model.GetMouseTarget(0, 0), doNone);
  EXPECT_TRUE(it.model.MarkRects().empty());
}

TEST_F(CutPlace, CalculateBmpPaintRect_Should_CenterAtFactorOne_When_NotFitted) {
  Show(200, 100);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 2);
  it.model.SetFitInOrgBmp(false);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 1);
  EXPECT_TRUE(it.model.IsUnscaled());
  ExpectRect(it.model.PaintRect(), {100, 100, 300, 200});
}

TEST_F(CutPlace, CalculateBmpPaintRect_Should_DoNothing_When_ThereIsNoBitmap) {
  it.model.CalculateBmpPaintRect(true);
  ExpectRect(it.model.PaintRect(), {});
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 1);
}

TEST_F(CutPlace, CenterInPaintBox_Should_StayAtZero_When_TheBitmapIsLarger) {
  Show(900, 100);
  it.model.CalculateBmpPaintRect(false);
  ExpectRect(it.model.PaintRect(), {0, 100, 900, 200});
}

TEST_F(CutPlace, CenterInPaintBox_Should_CenterByHalves_When_TheRestIsOdd) {
  Show(399, 100);
  it.model.CalculateBmpPaintRect(false);
  ExpectRect(it.model.PaintRect(), {0.5, 100, 399.5, 200});
}

/// Moves the picture by the middle button.
void Pan(BmpCutModel& model, int dx, int dy) {
  model.MouseDown(CutButton::middle, {false, true}, 50, 50);
  model.MouseMove({false, true}, 50 + dx, 50 + dy);
  model.MouseUp(CutButton::middle, 50 + dx, 50 + dy);
}

TEST_F(CutPlace, CenterInPaintBox_Should_ShiftBackToTheStart_When_ALargerBitmapBeginsInside) {
  Show(900, 700);
  it.model.CalculateBmpPaintRect(false);
  Pan(it.model, 30, 40);
  it.model.CenterInPaintBox();
  ExpectRect(it.model.PaintRect(), {0, 0, 900, 700});
}

TEST_F(CutPlace, CenterInPaintBox_Should_ShiftToTheEnd_When_ALargerBitmapEndsInside) {
  Show(900, 700);
  it.model.CalculateBmpPaintRect(false);
  Pan(it.model, -600, -700);
  it.model.CenterInPaintBox();
  ExpectRect(it.model.PaintRect(), {-500, -400, 400, 300});
}

TEST_F(CutPlace, CenterInPaintBox_Should_ChangeNothing_When_ALargerBitmapCoversTheBox) {
  Show(900, 700);
  it.model.CalculateBmpPaintRect(false);
  Pan(it.model, -100, -200);
  it.model.CenterInPaintBox();
  ExpectRect(it.model.PaintRect(), {-100, -200, 800, 500});
}

TEST_F(CutPlace, Invariant_Should_Hold_When_FittedZoomedAndPanned) {
  Show(800, 400);
  it.model.SetBmpCutRect({100, 40, 300, 200});
  const auto expectInvariant = [&] {
    RDRect expected = it.model.BmpCutRect();
    expected.Scale(it.model.StretchFactor());
    expected.Move(it.model.PaintRect().Left, it.model.PaintRect().Top);
    ExpectRect(it.model.CutRect(), expected);
    EXPECT_EQ(it.model.MarkRects().size(), 12u);
    EXPECT_EQ(it.model.MarkRects()[0].RectData.Left, expected.ToRect().Left - 5);
  };
  expectInvariant();
  bool handled = false;
  it.model.OnMouseWheel(120, {33, 44}, handled);
  expectInvariant();
  Pan(it.model, -17, 9);
  expectInvariant();
  it.model.CalculateBmpPaintRect(false);
  expectInvariant();
}

TEST_F(CutPlace, OnMouseWheel_Should_EnlargeByOneStepAboutTheMouse_When_TurnedUp) {
  Show(800, 400);
  bool handled = false;
  it.model.OnMouseWheel(120, {100, 150}, handled);
  EXPECT_TRUE(handled);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.525);
  ExpectRect(it.model.PaintRect(), {-5, 45, 415, 255});
  EXPECT_THAT(it.view.calls, ElementsAre("repaint"));
}

TEST_F(CutPlace, OnMouseWheel_Should_Shrink_When_TurnedDown) {
  Show(800, 400);
  bool handled = false;
  it.model.OnMouseWheel(-120, {100, 150}, handled);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.475);
  ExpectRect(it.model.PaintRect(), {5, 55, 385, 245});
}

TEST_F(CutPlace, OnMouseWheel_Should_TakeOneStep_When_TheDeltaIsZeroOrLarge) {
  Show(800, 400);
  bool handled = false;
  it.model.OnMouseWheel(0, {0, 0}, handled);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.525);
  it.model.OnMouseWheel(1200, {0, 0}, handled);
  EXPECT_NEAR(it.model.StretchFactor(), 0.55125, 1e-12);
}

TEST_F(CutPlace, OnMouseWheel_Should_MeasureTheHeight_When_TheBitmapIsNotWiderThanHigh) {
  Show(300, 600);
  bool handled = false;
  it.model.OnMouseWheel(120, {0, 0}, handled);
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), it.model.PaintRect().Height() / 600);
}

TEST_F(CutPlace, OnMouseWheel_Should_BeHandledAndHarmless_When_ThereIsNoBitmap) {
  bool handled = false;
  it.model.OnMouseWheel(120, {0, 0}, handled);
  EXPECT_TRUE(handled);
  const TBitmap& none = bitmap;
  EXPECT_EQ(none.Width(), 0);
  it.model.SetOrgBitmap(&bitmap);
  it.model.OnMouseWheel(-120, {5, 5}, handled);
  it.model.OnMouseWheel(120, {5, 5}, handled);
  EXPECT_GE(it.model.StretchFactor(), 0);
}

TEST_F(CutPlace, OnMouseWheel_Should_Stop_When_NothingOrTooMuchWouldBeLeft) {
  Show(30, 20);
  bool handled = false;
  for (int i = 0; i < 2000; ++i) it.model.OnMouseWheel(-120, {7, 7}, handled);
  EXPECT_GE(it.model.PaintRect().Width(), 1);
  for (int i = 0; i < 4000; ++i) it.model.OnMouseWheel(120, {7, 7}, handled);
  EXPECT_LE(it.model.PaintRect().Width(), 1 << 27);
  EXPECT_GT(it.model.PaintRect().Width(), 1 << 26);
  it.model.SetBmpCutRect({3, 4, 10, 12});
  EXPECT_NEAR(it.model.CutRect().Width(), 7 * it.model.StretchFactor(), 1);
}

TEST_F(CutPlace, OnResize_Should_FitAgain) {
  Show(800, 400);
  it.view.client = {0, 0, 200, 300};
  it.model.OnResize();
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.25);
  EXPECT_THAT(it.view.calls, ElementsAre("repaint"));
}

TEST_F(CutPlace, OnResize_Should_ComeBack_When_TheBoxHadNoSize) {
  Show(800, 400);
  it.model.SetBmpCutRect({100, 40, 300, 200});
  it.view.client = {};
  it.model.OnResize();
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0);
  it.model.CalculateBmpCutRect();
  ExpectRect(it.model.BmpCutRect(), {100, 40, 300, 200});
  it.Drag(0, 0, 0, 0);
  it.view.client = {0, 0, 400, 300};
  it.model.OnResize();
  EXPECT_DOUBLE_EQ(it.model.StretchFactor(), 0.5);
}

TEST_F(CutPlace, MiddleButton_Should_PanThePictureAndItsCut) {
  Show(800, 400);
  it.model.SetBmpCutRect({100, 40, 300, 200});
  it.view.calls.clear();
  it.model.MouseDown(CutButton::middle, {false, true}, 50, 50);
  EXPECT_EQ(it.view.cursor, CutCursor::pan);
  EXPECT_FALSE(it.model.DragIsActive());
  it.model.MouseMove({false, true}, 55, 48);
  it.model.MouseMove({false, true}, 60, 45);
  ExpectRect(it.model.PaintRect(), {10, 45, 410, 245});
  ExpectRect(it.model.CutRect(), {60, 65, 160, 145});
  EXPECT_THAT(it.view.calls, ElementsAre("repaint", "repaint"));
  it.model.MouseUp(CutButton::middle, 60, 45);
  EXPECT_EQ(it.view.cursor, CutCursor::standard);
}

TEST_F(CutPlace, Sizes_Should_BeSafe_When_TheBitmapIsEmptyOrTiny) {
  for (const auto& [width, height] : {std::pair{0, 0}, {0, 5}, {1, 1}, {1, 9}}) {
    Show(width, height);
    it.model.SetBmpCutRect({0, 0, 1, 1});
    it.Drag(200, 150, 240, 190);
    it.model.SwapBitmaps(true);
    it.model.CalculateBmpPaintRect(false);
    EXPECT_TRUE(it.model.MoveCutRect(1, 1) == it.model.GetCutRectExists());
    it.model.SetOrgBitmap(nullptr);
  }
}

}  // namespace
}  // namespace rasterkit::test
