#include <gtest/gtest.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

void AddBox(DeviceContext& dc, double left, double top, double right, double bottom) {
  dc.MoveTo({left, top});
  dc.LineTo({right, top});
  dc.LineTo({right, bottom});
  dc.LineTo({left, bottom});
  dc.CloseFigure();
}

TEST(DevicePaths, Should_DrawNothing_When_ThePathIsOpen) {
  DrawingPaper paper(5, 5);
  paper.Dc().BeginPath();
  AddBox(paper.Dc(), 1, 1, 4, 4);
  paper.Dc().Rectangle({0, 0, 5, 5});
  paper.Dc().EndPath();
  EXPECT_EQ(paper.Picture().find('#'), std::string::npos);
  paper.Dc().AbortPath();
  paper.Dc().FillPath();
  EXPECT_EQ(paper.Picture().find('#'), std::string::npos);
}

TEST(DevicePaths, Should_FillAndDraw_When_BothAreAsked) {
  DrawingPaper paper(6, 5);
  paper.Brush(RGB(255, 0, 0));
  paper.Dc().BeginPath();
  AddBox(paper.Dc(), 1, 1, 4, 3);
  paper.Dc().EndPath();
  paper.Dc().StrokeAndFillPath();
  EXPECT_EQ(paper.Picture(), R"(
......
.####.
.#rr#.
.####.
......
)");
  // The path has been discarded.
  paper.Brush(clBlack);
  paper.Dc().StrokeAndFillPath();
  EXPECT_EQ(paper.At(2, 2), RGB(255, 0, 0));
}

TEST(DevicePaths, Should_FillBetweenFigures_When_FilledInAlternation) {
  DrawingPaper paper(7, 7);
  paper.Brush(clBlack);
  paper.Dc().BeginPath();
  AddBox(paper.Dc(), 0, 0, 7, 7);
  AddBox(paper.Dc(), 2, 2, 5, 5);
  paper.Dc().EndPath();
  paper.Dc().FillPath();
  EXPECT_EQ(paper.At(1, 1), clBlack);
  EXPECT_EQ(paper.At(3, 3), clWhite);
}

TEST(DevicePaths, Should_CloseOpenFigures_When_StrokedAndFilled) {
  DrawingPaper paper(6, 6);
  paper.NoBrush();
  paper.Dc().BeginPath();
  paper.Dc().MoveTo({1, 1});
  paper.Dc().LineTo({4, 1});
  paper.Dc().LineTo({4, 4});
  paper.Dc().LineTo({1, 4});
  paper.Dc().EndPath();
  paper.Dc().StrokeAndFillPath();
  EXPECT_EQ(paper.At(1, 2), clBlack);
}

TEST(DevicePaths, Should_LeaveOpenFiguresOpen_When_OnlyStroked) {
  DrawingPaper paper(6, 6);
  paper.Dc().BeginPath();
  paper.Dc().MoveTo({1, 1});
  paper.Dc().LineTo({4, 1});
  paper.Dc().LineTo({4, 4});
  paper.Dc().EndPath();
  paper.Dc().StrokePath();
  EXPECT_EQ(paper.At(4, 2), clBlack);
  EXPECT_EQ(paper.At(1, 2), clWhite);
}

TEST(DevicePaths, Should_KeepTheFirstPen_When_WidenedTwice) {
  DrawingPaper paper(9, 7);
  paper.Pen(clBlack, 3, pen_style::kGeometric | pen_style::kFlatCap);
  paper.Dc().BeginPath();
  paper.Dc().MoveTo({0, 3});
  paper.Dc().LineTo({9, 3});
  paper.Dc().EndPath();
  paper.Dc().WidenPath();
  paper.Pen(clBlack, 7, pen_style::kGeometric | pen_style::kFlatCap);
  paper.Dc().WidenPath();
  paper.Brush(RGB(255, 0, 0));
  paper.Dc().FillPath();
  EXPECT_EQ(paper.At(4, 1), clWhite);
  EXPECT_EQ(paper.At(4, 3), RGB(255, 0, 0));
}

TEST(DevicePaths, Should_FillWhatThePenCovers_When_Widened) {
  DrawingPaper paper(9, 7);
  paper.Pen(clBlack, 3, pen_style::kGeometric | pen_style::kFlatCap);
  paper.Dc().BeginPath();
  paper.Dc().MoveTo({0, 3});
  paper.Dc().LineTo({9, 3});
  paper.Dc().EndPath();
  paper.Dc().WidenPath();
  paper.Brush(RGB(255, 0, 0));
  paper.Dc().FillPath();
  EXPECT_EQ(paper.At(4, 1), clWhite);
  EXPECT_EQ(paper.At(4, 2), RGB(255, 0, 0));
  EXPECT_EQ(paper.At(4, 4), RGB(255, 0, 0));
  EXPECT_EQ(paper.At(4, 5), clWhite);
}

TEST(DevicePaths, Should_ClipToWhatThePenCovers_When_Widened) {
  DrawingPaper paper(9, 7);
  paper.Pen(clBlack, 3, pen_style::kGeometric | pen_style::kFlatCap);
  paper.Dc().BeginPath();
  paper.Dc().MoveTo({0, 3});
  paper.Dc().LineTo({9, 3});
  paper.Dc().EndPath();
  paper.Dc().WidenPath();
  paper.Dc().SelectClipPath(RegionMode::copy);
  paper.Dc().PatBlt({0, 0, 9, 7}, rop3::kBlackness);
  EXPECT_EQ(paper.At(4, 1), clWhite);
  EXPECT_EQ(paper.At(4, 3), clBlack);
}

TEST(DevicePaths, Should_LookTheSame_When_Flattened) {
  DrawingPaper curved(30, 30), flat(30, 30);
  for (DrawingPaper* paper : {&curved, &flat}) {
    paper->NoBrush();
    paper->Dc().BeginPath();
    paper->Dc().Ellipse({2, 2, 28, 28});
    paper->Dc().EndPath();
    if (paper == &flat) paper->Dc().FlattenPath();
    paper->Dc().StrokePath();
  }
  int different = 0;
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 30; ++x) {
      different += std::abs((curved.At(x, y) & 255) - (flat.At(x, y) & 255)) > 40;
    }
  }
  EXPECT_EQ(different, 0);
}

TEST(DevicePaths, Should_ContinueFromTheCurrentPosition_When_ALineHasNoMove) {
  DrawingPaper paper(6, 3);
  paper.Dc().MoveTo({1, 1});
  paper.Dc().BeginPath();
  paper.Dc().LineTo({4, 1});
  paper.Dc().EndPath();
  paper.Dc().StrokePath();
  EXPECT_EQ(paper.Picture(), "\n......\n.###..\n......\n");
}

}  // namespace
}  // namespace rasterkit
