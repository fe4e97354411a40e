// The crop tool with the rules of the windows for people, beside those of the exported entries.

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::Not;

/// A bitmap of 600 x 400 in a box of 300 x 300: at half its size it lies at (0, 50) to (300, 250).
class ToolOf {
 public:
  explicit ToolOf(const CropRules& rules, int width = 300, int height = 300)
      : view(width, height), model(view, rules) {
    model.SetOrgBitmap(&bitmap);
    model.OnChanged = [this](BmpCutModel&) { view.calls.push_back("changed"); };
    model.OnStateChanged = [this](BmpCutModel&) { view.calls.push_back("state"); };
    view.calls.clear();
  }
  void Press(int x, int y, CutButtons held = {true}) {
    model.MouseDown(CutButton::left, held, x, y);
  }
  void MoveTo(int x, int y, CutButtons held = {true}) { model.MouseMove(held, x, y); }
  void Release(int x, int y) { model.MouseUp(CutButton::left, x, y); }
  void Drag(int fromX, int fromY, int toX, int toY, CutButtons held = {true}) {
    Press(fromX, fromY, held);
    MoveTo(toX, toY, held);
    Release(toX, toY);
  }
  void ExpectCut(int left, int top, int right, int bottom) {
    ASSERT_TRUE(model.CutRectExists());
    const RDRect expected(left, top, right, bottom);
    EXPECT_EQ(model.BmpCutRect(), expected)
        << model.BmpCutRect().Left << " " << model.BmpCutRect().Top << " "
        << model.BmpCutRect().Right << " " << model.BmpCutRect().Bottom;
  }

  TBitmap bitmap = GradientBitmap(pf24bit, 600, 400);
  RecordingView view;
  BmpCutModel model;
};

constexpr CutButtons kWithShift{true, false, true, true, false};
constexpr CutButtons kWithControl{true, false, true, false, true};

TEST(CropRulesOfEntries, Should_BeThoseOfAModelWithoutRules) {
  RecordingView view;
  EXPECT_EQ(BmpCutModel(view).Rules(), kEntryCropRules);
  EXPECT_EQ(kEntryCropRules, CropRules{});
  EXPECT_NE(kEditorCropRules, kEntryCropRules);
}

TEST(CropRules, Drag_Should_ChangeTheCutAtEachStep_OnlyWhen_Live) {
  ToolOf entry(kEntryCropRules), editor(kEditorCropRules);
  for (ToolOf* tool : {&entry, &editor}) {
    tool->Press(50, 100);
    tool->MoveTo(100, 150);
  }
  EXPECT_FALSE(entry.model.CutRectExists());
  EXPECT_THAT(entry.view.calls, Not(Contains("state")));
  EXPECT_TRUE(entry.model.OutlineIsShown());
  editor.ExpectCut(100, 100, 200, 200);
  EXPECT_THAT(editor.view.calls, Contains("state"));
  EXPECT_FALSE(editor.model.OutlineIsShown());
  EXPECT_EQ(editor.view.sizeText, "100 * 100 px (30 [kB])");
  editor.MoveTo(110, 160);
  editor.ExpectCut(100, 100, 220, 220);
  editor.Release(110, 160);
  editor.ExpectCut(100, 100, 220, 220);
  EXPECT_THAT(editor.view.calls, Contains("changed"));
}

TEST(CropRules, Resizing_Should_BeLive) {
  ToolOf tool(kEditorCropRules);
  tool.model.SetBmpCutRect({200, 100, 400, 300});
  tool.Press(200, 150);
  EXPECT_EQ(tool.model.DraggedObject(), doRight);
  tool.MoveTo(230, 150);
  tool.ExpectCut(200, 100, 460, 300);
  tool.Release(230, 150);
  tool.Drag(150, 130, 100, 120);
  tool.ExpectCut(100, 80, 360, 280);
}

TEST(CropRules, CanceledDrag_Should_RestoreTheCutOfBefore) {
  ToolOf tool(kEditorCropRules);
  tool.Press(50, 100);
  tool.MoveTo(100, 150);
  EXPECT_TRUE(tool.model.CancelDrag());
  EXPECT_FALSE(tool.model.CutRectExists());
  EXPECT_FALSE(tool.model.CanUndo());
  tool.model.SetBmpCutRect({200, 100, 400, 300});
  tool.Press(150, 130);
  tool.MoveTo(120, 130);
  EXPECT_TRUE(tool.model.CancelDrag());
  tool.ExpectCut(200, 100, 400, 300);
  EXPECT_FALSE(tool.model.CancelDrag());
}

TEST(CropRules, ALostRelease_Should_EndTheDrag_When_TheNextOneStarts) {
  ToolOf tool(kEditorCropRules);
  tool.model.SetBmpCutRect({200, 100, 400, 300});
  tool.Press(150, 130);
  tool.MoveTo(100, 120);
  tool.Drag(100, 120, 120, 120);
  EXPECT_TRUE(tool.model.UndoCutRect());
  tool.ExpectCut(100, 80, 300, 280);
  EXPECT_TRUE(tool.model.UndoCutRect());
  tool.ExpectCut(200, 100, 400, 300);
}

TEST(CropRules, SmallMovement_Should_BeAClick) {
  ToolOf tool(kEditorCropRules);
  tool.model.SetBmpCutRect({200, 100, 400, 300});
  tool.Drag(150, 130, 152, 131);
  tool.ExpectCut(200, 100, 400, 300);
  tool.Drag(30, 80, 32, 82);
  EXPECT_FALSE(tool.model.CutRectExists()) << "a click beside the cut removes it";
  EXPECT_TRUE(tool.model.UndoCutRect());
  tool.ExpectCut(200, 100, 400, 300);
}

TEST(CropRules, Shift_Should_KeepTheRatio_OnlyWhen_KeysShape) {
  ToolOf entry(kEntryCropRules), editor(kEditorCropRules);
  for (ToolOf* tool : {&entry, &editor}) {
    tool->model.SetBmpCutRect({200, 100, 400, 200});
    tool->Press(200, 150, kWithShift);
    tool->MoveTo(240, 150, kWithShift);
  }
  EXPECT_FALSE(entry.model.DragIsActive());
  editor.ExpectCut(200, 100, 480, 240);
  // The key counts as it is held, not as it was at the start.
  editor.MoveTo(240, 150);
  editor.ExpectCut(200, 100, 480, 200);
}

TEST(CropRules, Shift_Should_KeepTheRatioOfThePicture_When_TheCutIsNew) {
  ToolOf tool(kEditorCropRules);
  tool.Drag(50, 100, 110, 105, kWithShift);
  tool.ExpectCut(100, 100, 220, 180);
}

TEST(CropRules, Control_Should_KeepTheCenter) {
  ToolOf tool(kEditorCropRules);
  tool.model.SetBmpCutRect({200, 100, 400, 300});
  tool.Drag(200, 150, 220, 150, kWithControl);
  tool.ExpectCut(160, 100, 440, 300);
  tool.model.DelCutRect();
  tool.Drag(100, 130, 120, 140, kWithControl);
  tool.ExpectCut(160, 140, 240, 180);
}

TEST(CropRules, Edges_Should_SnapToThePicture_OnlyWhen_TheRulesSay) {
  CropRules loose = kEditorCropRules;
  loose.snapDistance = 0;
  ToolOf snapping(kEditorCropRules), free(loose);
  for (ToolOf* tool : {&snapping, &free}) tool->Drag(3, 100, 146, 246);
  snapping.ExpectCut(0, 100, 300, 400);
  free.ExpectCut(6, 100, 292, 392);
  for (ToolOf* tool : {&snapping, &free}) {
    tool->model.SetBmpCutRect({200, 100, 400, 300});
    // 5 pixels before the left edge.
    tool->Drag(150, 130, 55, 120);
  }
  snapping.ExpectCut(0, 80, 200, 280);
  free.ExpectCut(10, 80, 210, 280);
}

TEST(CropRules, Press_Should_TakeAHandleFromBothSides_When_FingersMay) {
  ToolOf entry(kEntryCropRules), editor(kEditorCropRules);
  for (ToolOf* tool : {&entry, &editor}) tool->model.SetBmpCutRect({200, 100, 400, 300});
  EXPECT_EQ(entry.model.GetMouseTarget(212, 212), doFrame);
  EXPECT_EQ(editor.model.GetMouseTarget(212, 212), doRightBottom);
  EXPECT_EQ(editor.model.GetMouseTarget(188, 188), doRightBottom);
  EXPECT_EQ(editor.model.GetMouseTarget(150, 150), doMove);
  EXPECT_EQ(editor.model.GetMouseTarget(240, 150), doFrame);
  // Also from beyond the picture.
  editor.model.SetBmpCutRect({0, 0, 600, 400});
  EXPECT_EQ(editor.model.GetMouseTarget(150, 40), doTop);
  EXPECT_EQ(editor.model.GetMouseTarget(150, 20), doNone);
}

TEST(CropRules, Redo_Should_RestoreWhatWasUndone_OnlyWhen_ItIsKept) {
  ToolOf entry(kEntryCropRules), editor(kEditorCropRules);
  for (ToolOf* tool : {&entry, &editor}) {
    tool->model.SetBmpCutRect({10, 10, 100, 100});
    tool->model.SetBmpCutRect({20, 20, 200, 200});
    tool->model.UndoCutRect();
    tool->model.UndoCutRect();
    EXPECT_FALSE(tool->model.CutRectExists());
  }
  EXPECT_FALSE(entry.model.CanRedo());
  EXPECT_FALSE(entry.model.RedoCutRect());
  EXPECT_TRUE(editor.model.RedoCutRect());
  editor.ExpectCut(10, 10, 100, 100);
  EXPECT_TRUE(editor.model.RedoCutRect());
  editor.ExpectCut(20, 20, 200, 200);
  EXPECT_FALSE(editor.model.RedoCutRect());
  editor.model.UndoCutRect();
  editor.ExpectCut(10, 10, 100, 100);
  editor.model.SetBmpCutRect({1, 1, 2, 2});
  EXPECT_FALSE(editor.model.CanRedo()) << "another change ends it";
}

TEST(CropRules, RedoOfNothing_Should_LeaveADragAlone) {
  for (const CropRules& rules : {kEntryCropRules, kEditorCropRules}) {
    ToolOf tool(rules);
    tool.Press(50, 100);
    tool.MoveTo(150, 200);
    ASSERT_TRUE(tool.model.DragIsActive());
    EXPECT_FALSE(tool.model.RedoCutRect());
    EXPECT_TRUE(tool.model.DragIsActive());
    tool.MoveTo(200, 250);
    tool.Release(200, 250);
    tool.ExpectCut(100, 100, 400, 400);
  }
}

TEST(CropRules, Zoom_Should_StayWhenTheBoxChanges_OnlyWhen_ItIsKept) {
  ToolOf entry(kEntryCropRules), editor(kEditorCropRules);
  for (ToolOf* tool : {&entry, &editor}) {
    bool handled = false;
    for (int i = 0; i < 20; ++i) tool->model.OnMouseWheel(120, {150, 150}, handled);
    const double zoomed = tool->model.StretchFactor();
    ASSERT_GT(zoomed, 1);
    tool->view.client = {0, 0, 400, 340};
    tool->model.OnResize();
    tool->model.OnResize();
    if (tool == &editor) {
      EXPECT_EQ(tool->model.StretchFactor(), zoomed);
      EXPECT_EQ(tool->model.PixelCornerAt(200, 170)->X, 300) << "the middle stays in the middle";
      EXPECT_EQ(tool->model.PixelCornerAt(200, 170)->Y, 200);
    } else {
      EXPECT_DOUBLE_EQ(tool->model.StretchFactor(), 400 / 600.0);
    }
    // Fitted again, it follows the box.
    tool->model.SetFitInOrgBmp(true);
    tool->view.client = {0, 0, 600, 600};
    tool->model.OnResize();
    EXPECT_DOUBLE_EQ(tool->model.StretchFactor(), 1);
  }
}

TEST(CropRules, Zooming_Should_NotMoveTheCut_DuringADragEither) {
  ToolOf tool(kEditorCropRules);
  tool.model.SetBmpCutRect({200, 100, 400, 300});
  bool handled = false;
  tool.model.OnMouseWheel(120, {10, 60}, handled);
  tool.ExpectCut(200, 100, 400, 300);
  tool.Press(150, 130);
  tool.MoveTo(160, 130);
  const RDRect before = tool.model.BmpCutRect();
  for (int i = 0; i < 5; ++i) tool.model.OnMouseWheel(-120, {160, 130}, handled);
  EXPECT_EQ(tool.model.BmpCutRect(), before);
}

TEST(CropRules, Keys_Should_KeepTheRatio_When_ThereIsOne) {
  ToolOf tool(kEditorCropRules);
  tool.model.SetShape({2, 0, 0});
  tool.model.SetBmpCutRect({100, 100, 300, 200});
  EXPECT_TRUE(tool.model.ResizeCutRect(10, 0));
  tool.ExpectCut(100, 100, 310, 205);
  EXPECT_TRUE(tool.model.ResizeCutRect(0, -5));
  tool.ExpectCut(100, 100, 300, 200);
  EXPECT_TRUE(tool.model.MoveCutRect(1, 0));
  tool.ExpectCut(101, 100, 301, 200);
  tool.model.SetShape({2, 200, 100});
  EXPECT_TRUE(tool.model.ResizeCutRect(10, 10));
  tool.ExpectCut(101, 100, 301, 200);
}

TEST(CropRules, PixelCornerAt_Should_BeTheNearest) {
  ToolOf tool(kEditorCropRules);
  EXPECT_EQ(tool.model.PixelCornerAt(0, 50)->X, 0);
  EXPECT_EQ(tool.model.PixelCornerAt(300, 250)->X, 600);
  EXPECT_EQ(tool.model.PixelCornerAt(300, 250)->Y, 400);
  EXPECT_EQ(tool.model.PixelCornerAt(100, 100)->X, 200);
  EXPECT_FALSE(tool.model.PixelCornerAt(100, 49));
  tool.model.SetOrgBitmap(nullptr);
  EXPECT_FALSE(tool.model.PixelCornerAt(100, 100));
}

TEST(CropRules, AnySeriesOfEvents_Should_KeepTheCutInsideThePicture) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  ToolOf tool(kEditorCropRules);
  for (int i = 0; i < 3000; ++i) {
    const CutButtons held{true, false, false, pick(0, 3) == 0, pick(0, 3) == 0};
    bool handled = false;
    switch (pick(0, 9)) {
      case 0:
        tool.model.OnMouseWheel(pick(0, 1) == 0 ? 120 : -120, {pick(0, 300), pick(0, 300)},
                                handled);
        break;
      case 1:
        tool.model.SetShape({pick(0, 2) == 0 ? 0 : pick(1, 400) / 100.0, 0, 0});
        break;
      case 2:
        tool.model.UndoCutRect();
        break;
      case 3:
        tool.model.ResizeCutRect(pick(-20, 20), pick(-20, 20));
        break;
      default:
        tool.Drag(pick(-20, 320), pick(-20, 320), pick(-20, 320), pick(-20, 320), held);
    }
    if (!tool.model.CutRectExists()) continue;
    const RDRect& cut = tool.model.BmpCutRect();
    ASSERT_GE(cut.Left, 0);
    ASSERT_GE(cut.Top, 0);
    ASSERT_LE(cut.Right, 600);
    ASSERT_LE(cut.Bottom, 400);
    ASSERT_GE(cut.Width(), 1);
    ASSERT_GE(cut.Height(), 1);
    ASSERT_EQ(cut, RDRect(tool.model.CutPixels())) << "whole pixels";
  }
}

}  // namespace
}  // namespace rasterkit::test
