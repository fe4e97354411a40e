#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// A bitmap of 600 x 400 in a box of 300 x 300: at half its size it lies at (0, 50) to (300, 250).
class CutDrag : public testing::Test {
 protected:
  CutDrag() : bitmap(GradientBitmap(pf24bit, 600, 400)), it(300, 300) {
    it.model.SetOrgBitmap(&bitmap);
    it.view.calls.clear();
  }

  void ExpectCutRect(double left, double top, double right, double bottom) {
    const RDRect& rect = it.model.CutRect();
    EXPECT_TRUE(AlmostEqual(rect, {left, top, right, bottom}, 1e-9))
        << rect.Left << " " << rect.Top << " " << rect.Right << " " << rect.Bottom;
  }
  void ExpectBmpCutRect(double left, double top, double right, double bottom) {
    const RDRect& rect = it.model.BmpCutRect();
    EXPECT_TRUE(AlmostEqual(rect, {left, top, right, bottom}, 1e-9))
        << rect.Left << " " << rect.Top << " " << rect.Right << " " << rect.Bottom;
  }
  /// A cut at (100, 100) to (200, 200) of the box.
  void MakeCut() {
    it.model.SetBmpCutRect({200, 100, 400, 300});
    it.view.calls.clear();
  }

  TBitmap bitmap;
  ModelAndView it;
};

TEST_F(CutDrag, GetMouseTarget_Should_BeNone_When_DisabledOrOutsideThePicture) {
  MakeCut();
  EXPECT_EQ(it.model.GetMouseTarget(150, 49), doNone);
  EXPECT_EQ(it.model.GetMouseTarget(301, 100), doNone);
  EXPECT_EQ(it.model.GetMouseTarget(300, 250), doFrame) << "the edges belong to the picture";
  it.model.SetCutRectEnabled(false);
  EXPECT_EQ(it.model.GetMouseTarget(150, 150), doNone);
}

TEST_F(CutDrag, GetMouseTarget_Should_BeFrame_When_ThereIsNoCutOrThePointLiesOutside) {
  EXPECT_EQ(it.model.GetMouseTarget(150, 150), doFrame);
  MakeCut();
  EXPECT_EQ(it.model.GetMouseTarget(99, 150), doFrame) << "also on the outer half of a handle";
  EXPECT_EQ(it.model.GetMouseTarget(201, 201), doFrame);
}

TEST_F(CutDrag, GetMouseTarget_Should_BeTheHandleOrMove_When_ThePointLiesInTheCut) {
  MakeCut();
  EXPECT_EQ(it.model.GetMouseTarget(130, 130), doMove);
  EXPECT_EQ(it.model.GetMouseTarget(100, 150), doLeft);
  EXPECT_EQ(it.model.GetMouseTarget(150, 104), doTop);
  EXPECT_EQ(it.model.GetMouseTarget(196, 146), doRight);
  EXPECT_EQ(it.model.GetMouseTarget(150, 200), doBottom);
  EXPECT_EQ(it.model.GetMouseTarget(100, 100), doLeftTop);
  EXPECT_EQ(it.model.GetMouseTarget(200, 105), doRightTop);
  EXPECT_EQ(it.model.GetMouseTarget(101, 193), doLeftBottom);
  EXPECT_EQ(it.model.GetMouseTarget(200, 200), doRightBottom);
  EXPECT_EQ(it.model.GetMouseTarget(108, 108), doMove) << "inside the angle of the L";
}

TEST_F(CutDrag, Cursor_Should_ShowTheTarget_When_PressedOrMovedWithoutAButton) {
  MakeCut();
  const std::pair<TPoint, CutCursor> places[] = {
      {{150, 20}, CutCursor::standard},
      {{50, 60}, CutCursor::cross},
      {{130, 130}, CutCursor::sizeAll},
      {{100, 150}, CutCursor::westEast},
      {{200, 150}, CutCursor::westEast},
      {{150, 100}, CutCursor::northSouth},
      {{150, 200}, CutCursor::northSouth},
      {{100, 100}, CutCursor::northWestSouthEast},
      {{200, 200}, CutCursor::northWestSouthEast},
      {{200, 100}, CutCursor::northEastSouthWest},
      {{100, 200}, CutCursor::northEastSouthWest},
  };
  for (const auto& [point, cursor] : places) {
    it.view.cursor = CutCursor::pan;
    it.model.MouseMove({}, point.X, point.Y);
    EXPECT_EQ(it.view.cursor, cursor) << point.X << "," << point.Y;
    it.view.cursor = CutCursor::pan;
    it.Press(point.X, point.Y);
    EXPECT_EQ(it.view.cursor, cursor) << point.X << "," << point.Y;
    it.model.CancelDrag();
  }
}

TEST_F(CutDrag, MouseLeave_Should_ShowTheDefaultCursor_AndNothingElse) {
  it.model.MouseMove({}, 50, 60);
  it.model.MouseLeave();
  EXPECT_EQ(it.view.cursor, CutCursor::standard);
  EXPECT_THAT(it.view.calls, IsEmpty());
}

TEST_F(CutDrag, Press_Should_StartAnEmptyRectangleAndShowThePlainPicture_When_OnThePicture) {
  it.Press(60, 70);
  EXPECT_TRUE(it.model.DragIsActive());
  EXPECT_EQ(it.model.DraggedObject(), doFrame);
  ExpectCutRect(60, 70, 60, 70);
  EXPECT_FALSE(it.model.OutlineIsShown());
  EXPECT_EQ(it.model.DragStartPosition().X, 60);
  EXPECT_EQ(it.model.DragStartPosition().Y, 70);
  EXPECT_THAT(it.view.calls, ElementsAre("repaint"));
}

TEST_F(CutDrag, Press_Should_ShowTheOutline_When_TheTargetIsTheCut) {
  MakeCut();
  it.Press(150, 130);
  EXPECT_TRUE(it.model.OutlineIsShown());
  ExpectCutRect(100, 100, 200, 200);
}

TEST_F(CutDrag, Press_Should_DoNothing_When_OutsideThePicture) {
  MakeCut();
  it.Drag(150, 20, 200, 30);
  EXPECT_FALSE(it.model.DragIsActive());
  EXPECT_TRUE(it.model.GetCutRectExists());
  EXPECT_THAT(it.view.calls, IsEmpty());
}

TEST_F(CutDrag, Press_Should_StartNoDrag_When_TheCutIsDisabled) {
  it.model.SetCutRectEnabled(false);
  it.Drag(60, 70, 160, 170);
  EXPECT_FALSE(it.model.GetCutRectExists());
  EXPECT_THAT(it.view.calls, IsEmpty());
}

TEST_F(CutDrag, Press_Should_StartNoDrag_When_AnotherKeyOrButtonIsHeld) {
  it.model.MouseDown(CutButton::left, {true, false, true}, 60, 70);
  EXPECT_FALSE(it.model.DragIsActive());
  it.model.MouseDown(CutButton::right, {false, false, true}, 60, 70);
  EXPECT_FALSE(it.model.DragIsActive());
  it.model.MouseDown(CutButton::left, {true, true, false}, 60, 70);
  EXPECT_FALSE(it.model.DragIsActive()) << "with the middle button held it pans";
  EXPECT_EQ(it.view.cursor, CutCursor::pan);
  EXPECT_EQ(it.model.DragStartPosition().Y, 70);
}

TEST_F(CutDrag, LeftClick_Should_OnlyReportItsPoint_When_TheEntryModeIsLineOrCoord) {
  for (const TEntryMode mode : {emLine, emCoord}) {
    it.view.calls.clear();
    it.model.SetEntryMode(mode);
    it.Drag(60, 70, 160, 170);
    EXPECT_THAT(it.view.calls, ElementsAre("point 60,70"));
    EXPECT_FALSE(it.model.GetCutRectExists());
  }
  it.model.OnBmpRefPointChanged = nullptr;
  it.Press(60, 70);
  EXPECT_FALSE(it.model.DragIsActive());
}

TEST_F(CutDrag, MiddleButton_Should_StillPan_When_TheEntryModeIsLine) {
  it.model.SetEntryMode(emLine);
  it.model.MouseDown(CutButton::middle, {false, true}, 60, 70);
  it.model.MouseMove({false, true}, 61, 72);
  EXPECT_EQ(it.model.PaintRect().Top, 52);
}

TEST_F(CutDrag, MiddleButton_Should_ChangeNothing_When_ADragIsActive) {
  it.Press(60, 70);
  it.model.MouseDown(CutButton::middle, {true, true}, 80, 80);
  EXPECT_EQ(it.model.DragStartPosition().X, 60);
  it.model.MouseMove({true, true}, 100, 120);
  ExpectCutRect(60, 70, 100, 120);
  it.model.MouseUp(CutButton::middle, 100, 120);
  EXPECT_TRUE(it.model.DragIsActive());
  EXPECT_EQ(it.view.cursor, CutCursor::cross);
}

TEST_F(CutDrag, MiddleButton_Should_NotMakeThePictureJump_When_ItIsStillHeldAfterADrag) {
  it.Press(60, 70);
  it.model.MouseDown(CutButton::middle, {true, true}, 80, 80);
  it.model.MouseMove({true, true}, 160, 170);
  it.Release(160, 170);
  it.model.MouseMove({false, true}, 161, 170);
  EXPECT_EQ(it.model.PaintRect().Left, 0);
  it.model.MouseUp(CutButton::middle, 161, 170);
  it.model.MouseDown(CutButton::middle, {false, true}, 161, 170);
  it.model.MouseMove({false, true}, 163, 170);
  EXPECT_EQ(it.model.PaintRect().Left, 2);
}

TEST_F(CutDrag, Frame_Should_FollowTheMouse_When_DrawnInAnyDirection) {
  it.Drag(60, 70, 160, 170);
  ExpectCutRect(60, 70, 160, 170);
  ExpectBmpCutRect(120, 40, 320, 240);
  it.model.DelCutRect();
  it.Drag(160, 170, 60, 70);
  ExpectCutRect(60, 70, 160, 170);
  it.model.DelCutRect();
  it.Drag(160, 70, 60, 170);
  ExpectCutRect(60, 70, 160, 170);
}

TEST_F(CutDrag, Frame_Should_LeaveTheEarlierFarEdge_When_DrawnBackOverItsStart) {
  it.Press(100, 100);
  it.MoveTo(140, 150);
  ExpectCutRect(100, 100, 140, 150);
  it.MoveTo(80, 160);
  ExpectCutRect(80, 100, 140, 160);
  it.MoveTo(90, 70);
  ExpectCutRect(90, 70, 140, 160);
  it.MoveTo(120, 120);
  ExpectCutRect(90, 70, 120, 120);
  EXPECT_EQ(it.model.DragStartPosition().X, 100) << "it stays where the button went down";
  it.Release(120, 120);
  ExpectBmpCutRect(180, 40, 240, 140);
}

TEST_F(CutDrag, Frame_Should_MoveRightAndBottom_When_TheMouseIsBackAtTheStart) {
  it.Press(100, 100);
  it.MoveTo(140, 150);
  it.MoveTo(100, 150);
  ExpectCutRect(100, 100, 100, 150);
  it.MoveTo(140, 100);
  ExpectCutRect(100, 100, 140, 100);
}

TEST_F(CutDrag, Frame_Should_BeClippedToThePicture_When_TheMouseLeavesIt) {
  it.Drag(60, 70, 900, -900);
  ExpectCutRect(60, 50, 300, 70);
  ExpectBmpCutRect(120, 0, 600, 40);
}

TEST_F(CutDrag, Move_Should_AccumulateAndStayInside) {
  MakeCut();
  it.Press(130, 130);
  it.MoveTo(140, 120);
  ExpectCutRect(110, 90, 210, 190);
  EXPECT_EQ(it.model.DragStartPosition().X, 140) << "steps accumulate";
  it.MoveTo(40, 120);
  ExpectCutRect(10, 90, 110, 190);
  it.MoveTo(-1000, 130);
  ExpectCutRect(0, 100, 100, 200);
  it.MoveTo(-990, 130);
  ExpectCutRect(10, 100, 110, 200);
  it.Release(-990, 130);
  ExpectBmpCutRect(20, 100, 220, 300);
}

TEST_F(CutDrag, CutBeyondTheBitmap_Should_BeClipped_When_ADragEnds) {
  it.model.SetBmpCutRect({-100, 50, 700, 250});
  it.Press(100, 100);
  ASSERT_EQ(it.model.DraggedObject(), doMove);
  it.Release(100, 100);
  ExpectBmpCutRect(0, 50, 600, 250);
}

TEST_F(CutDrag, Handles_Should_MoveTheirEdges_When_Dragged) {
  struct Case {
    TPoint from, to;
    RDRect result;
  };
  const Case cases[] = {
      {{100, 150}, {90, 10}, {90, 100, 200, 200}},     // left
      {{150, 100}, {10, 80}, {100, 80, 200, 200}},     // top
      {{200, 150}, {230, 10}, {100, 100, 230, 200}},   // right
      {{150, 200}, {10, 190}, {100, 100, 200, 190}},   // bottom
      {{100, 100}, {70, 60}, {70, 60, 200, 200}},      // left top
      {{200, 100}, {220, 110}, {100, 110, 220, 200}},  // right top
      {{100, 200}, {120, 240}, {120, 100, 200, 240}},  // left bottom
      {{200, 200}, {140, 150}, {100, 100, 140, 150}},  // right bottom
  };
  for (const Case& c : cases) {
    MakeCut();
    it.Drag(c.from.X, c.from.Y, c.to.X, c.to.Y);
    ExpectCutRect(c.result.Left, c.result.Top, c.result.Right, c.result.Bottom);
  }
}

TEST_F(CutDrag, Handles_Should_KeepTwiceTheirSize_When_DraggedOverTheOppositeEdge) {
  MakeCut();
  it.Drag(100, 100, 290, 290);
  ExpectCutRect(180, 180, 200, 200);
  MakeCut();
  it.Drag(200, 200, 10, 60);
  ExpectCutRect(100, 100, 120, 120);
}

TEST_F(CutDrag, Handles_Should_StayInsideThePicture) {
  MakeCut();
  it.Drag(100, 100, -500, -500);
  ExpectCutRect(0, 50, 200, 200);
  it.Drag(200, 200, 5000, 5000);
  ExpectCutRect(0, 50, 300, 250);
}

TEST_F(CutDrag, Handles_Should_StayInsideThePicture_When_ThereIsNoRoomForTheSmallestSize) {
  it.model.SetBmpCutRect({0, 0, 24, 24});
  it.Press(12, 62);
  ASSERT_NE(it.model.DraggedObject(), doFrame);
  it.MoveTo(-50, -50);
  EXPECT_GE(it.model.CutRect().Left, 0);
  EXPECT_GE(it.model.CutRect().Top, 50);
}

TEST_F(CutDrag, Release_Should_RaiseEventsInOrder_When_ACutWasDrawn) {
  it.Press(60, 70);
  it.MoveTo(160, 170);
  EXPECT_TRUE(it.model.OutlineIsShown());
  it.view.calls.clear();
  it.Release(160, 170);
  EXPECT_THAT(it.view.calls, ElementsAre("size", "info", "changed", "repaint"));
  EXPECT_TRUE(it.model.GetCutRectExists());
  EXPECT_FALSE(it.model.DragIsActive());
  EXPECT_FALSE(it.model.OutlineIsShown());
  EXPECT_EQ(it.model.DraggedObject(), doNone);
  EXPECT_EQ(it.model.MarkRects().size(), 12u);
  EXPECT_EQ(it.view.sizeText, "200 * 200 px (120 [kB])");
  EXPECT_TRUE(it.model.Darkening()->IsLit(120, 40));
  EXPECT_FALSE(it.model.Darkening()->IsLit(119, 40));
}

TEST_F(CutDrag, Release_Should_HaveEndedTheDrag_When_ItsEventsAreRaised) {
  int raised = 0;
  it.model.OnInfoChanged = [&](BmpCutModel& model) {
    ++raised;
    EXPECT_FALSE(model.DragIsActive());
    EXPECT_EQ(model.DraggedObject(), doFrame);
  };
  it.model.OnChanged = [&](BmpCutModel& model) {
    ++raised;
    EXPECT_EQ(model.DraggedObject(), doNone);
  };
  it.Drag(60, 70, 160, 170);
  EXPECT_EQ(raised, 2);
}

TEST_F(CutDrag, Click_Should_RemoveTheCutWithoutEvents_When_OnThePictureOutsideOfIt) {
  MakeCut();
  it.Drag(40, 70, 40, 70);
  EXPECT_FALSE(it.model.GetCutRectExists());
  EXPECT_EQ(it.model.DraggedObject(), doNone);
  EXPECT_THAT(it.view.calls, Not(Contains("changed")));
  EXPECT_THAT(it.view.calls, Not(Contains("info")));
  EXPECT_THAT(it.view.calls, Not(Contains("size")));
  EXPECT_TRUE(it.model.MarkRects().empty());
}

TEST_F(CutDrag, Click_Should_KeepTheCut_When_InsideOfIt) {
  MakeCut();
  it.Drag(130, 130, 130, 130);
  EXPECT_TRUE(it.model.GetCutRectExists());
  ExpectBmpCutRect(200, 100, 400, 300);
}

TEST_F(CutDrag, SmallFrame_Should_RemoveTheCut_Unless_OneSideIsAboveTen) {
  it.Drag(60, 70, 70, 80);
  EXPECT_FALSE(it.model.GetCutRectExists()) << "10 x 10";
  it.Drag(60, 70, 71, 70);
  EXPECT_TRUE(it.model.GetCutRectExists()) << "11 x 0";
  const TRect cut = it.model.CutPixels();
  EXPECT_EQ(cut.Bottom - cut.Top, 1) << "a line is one pixel high";
}

TEST_F(CutDrag, SmallCut_Should_Stay_When_ItIsClicked) {
  it.model.SetBmpCutRect({200, 100, 216, 112});  // 8 x 6 in the box
  it.Press(104, 103);
  it.Release(104, 103);
  EXPECT_TRUE(it.model.GetCutRectExists());
  ExpectBmpCutRect(200, 100, 216, 112);
}

TEST_F(CutDrag, OtherButtons_Should_NotEndADrag) {
  it.Press(60, 70);
  it.model.MouseUp(CutButton::right, 60, 70);
  EXPECT_TRUE(it.model.DragIsActive());
}

TEST_F(CutDrag, Move_Should_DoNothing_When_TheDragStartedNowhere) {
  it.Press(60, 20);
  it.model.MouseMove({true}, 100, 100);
  EXPECT_THAT(it.view.calls, IsEmpty());
}

TEST_F(CutDrag, Wheel_Should_KeepTheDraggedPixels_When_TurnedDuringADrag) {
  it.Press(60, 70);
  it.MoveTo(160, 170);
  bool handled = false;
  it.model.OnMouseWheel(120, {160, 170}, handled);
  ExpectCutRect(55, 65, 160, 170);
  EXPECT_EQ(it.model.DragStartPosition().X, 55);
  it.Release(160, 170);
  ExpectBmpCutRect(120, 40, 320, 240);
}

TEST_F(CutDrag, CancelDrag_Should_BringTheCutBack) {
  MakeCut();
  it.Press(130, 130);
  it.MoveTo(10, 10);
  EXPECT_TRUE(it.model.CancelDrag());
  EXPECT_FALSE(it.model.CancelDrag());
  ExpectCutRect(100, 100, 200, 200);
  it.Release(10, 10);
  ExpectBmpCutRect(200, 100, 400, 300);
}

TEST_F(CutDrag, Drag_Should_End_When_TheBitmapOrTheCutGoes) {
  MakeCut();
  it.Press(130, 130);
  it.model.DelCutRect();
  it.Release(140, 140);
  EXPECT_FALSE(it.model.GetCutRectExists());
  it.Press(130, 130);
  it.model.SetOrgBitmap(nullptr);
  it.MoveTo(200, 200);
  it.Release(200, 200);
  EXPECT_FALSE(it.model.GetCutRectExists());
}

TEST_F(CutDrag, Everything_Should_BeSafe_When_ThereIsNoBitmap) {
  it.model.SetOrgBitmap(nullptr);
  it.view.calls.clear();
  it.Drag(0, 0, 100, 100);
  it.model.MouseMove({false, true}, 5, 5);
  it.model.CalculateCutRect();
  it.model.CalculateBmpCutRect();
  it.model.SetBmpCutRect({1, 1, 5, 5});
  it.model.SwapBitmaps(true);
  it.model.ShowCutBmpSize();
  EXPECT_FALSE(it.model.GetCutRectExists());
  EXPECT_EQ(it.model.GetCutBitmap(), nullptr);
  EXPECT_EQ(it.model.DarkedBmp(), nullptr);
}

}  // namespace
}  // namespace rasterkit::test
