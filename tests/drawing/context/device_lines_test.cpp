#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

TEST(DeviceLines, Should_CoverPixelsFromTheFirstToBeforeTheLast_When_ALineRunsAlongAnAxis) {
  DrawingPaper paper(6, 4);
  paper.Dc().MoveTo({1, 1});
  paper.Dc().LineTo({4, 1});
  paper.Dc().MoveTo({5, 0});
  paper.Dc().LineTo({5, 3});
  EXPECT_EQ(paper.Picture(), R"(
.....#
.###.#
.....#
......
)");
}

TEST(DeviceLines, Should_FillTheCorner_When_APolylineBends) {
  DrawingPaper paper(6, 5);
  const PointD points[] = {{1, 1}, {4, 1}, {4, 4}};
  paper.Dc().Polyline(points);
  EXPECT_EQ(paper.Picture(), R"(
......
.####.
....#.
....#.
......
)");
}

TEST(DeviceLines, Should_KeepSharp_When_LogicalUnitsFallBetweenPixels) {
  DrawingPaper paper(6, 4, PlaneAffine::Scaling(0.37, 0.37));
  paper.Dc().MoveTo({0, 5});
  paper.Dc().LineTo({30, 5});
  EXPECT_EQ(paper.Picture(), R"(
......
......
######
......
)");
}

TEST(DeviceLines, Should_BeSoft_When_ALineIsSlanted) {
  DrawingPaper paper(6, 6);
  paper.Dc().MoveTo({0, 0});
  paper.Dc().LineTo({6, 3});
  const std::string picture = paper.Picture();
  EXPECT_NE(picture.find('+'), std::string::npos);
  EXPECT_EQ(paper.At(0, 5), clWhite);
}

TEST(DeviceLines, Should_BeOnePixelOfTheTarget_When_TheTargetIsCoarser) {
  DrawingPaper paper(4, 3, PlaneAffine::Scaling(0.01, 0.01));
  paper.Dc().MoveTo({0, 110});
  paper.Dc().LineTo({400, 110});
  EXPECT_EQ(paper.Picture(), "\n....\n####\n....\n");
}

TEST(DeviceLines, Should_BeOnePixelOfTheDevice_When_TheTargetIsFiner) {
  DrawingPaper paper(6, 6, PlaneAffine::Scaling(2, 2));
  paper.Dc().MoveTo({0, 1});
  paper.Dc().LineTo({3, 1});
  EXPECT_EQ(paper.Picture(), "\n......\n......\n######\n######\n......\n......\n");
}

/// Sets units of half a device pixel; a device pixel is four pixels of the target wide.
void UseHalfPixels(DrawingPaper& paper) {
  paper.Dc().SetMapMode(MapMode::anisotropic);
  paper.Dc().SetWindowExt({2, 2});
  paper.Dc().SetViewportExt({1, 1});
}

TEST(DeviceLines, Should_BeAsThinAsMeant_When_ThePenIsThinnerThanAPixelOfTheDevice) {
  DrawingPaper paper(4, 10, PlaneAffine::Scaling(4, 4));
  UseHalfPixels(paper);
  paper.Pen(clBlack, 1);
  paper.Dc().MoveTo({0, 2});
  paper.Dc().LineTo({2, 2});
  // At the upper edge of the device's pixel, where an area would end.
  EXPECT_EQ(paper.Picture(), "\n....\n....\n....\n....\n####\n####\n....\n....\n....\n....\n");
}

TEST(DeviceLines, Should_BeOnePixelOfTheDevice_When_AThinPenNamesNoWidth) {
  DrawingPaper paper(4, 10, PlaneAffine::Scaling(4, 4));
  UseHalfPixels(paper);
  paper.Pen(clBlack, 0);
  paper.Dc().MoveTo({0, 2});
  paper.Dc().LineTo({2, 2});
  EXPECT_EQ(paper.Picture(), "\n....\n....\n....\n....\n####\n####\n####\n####\n....\n....\n");
}

TEST(DeviceLines, Should_BeOnePixelOfTheTarget_When_AThinPenIsThinnerThanThat) {
  DrawingPaper paper(4, 5, PlaneAffine::Scaling(1.5, 1.5));
  UseHalfPixels(paper);
  paper.Pen(clBlack, 0.1);
  paper.Dc().MoveTo({0, 4});
  paper.Dc().LineTo({8, 4});
  EXPECT_EQ(paper.Picture(), "\n....\n....\n....\n####\n....\n");
}

TEST(DeviceLines, Should_LieWhereAreasEnd_When_AThinPenFramesOne) {
  DrawingPaper filled(12, 12, PlaneAffine::Scaling(4, 4)),
      framed(12, 12, PlaneAffine::Scaling(4, 4));
  const PointD square[] = {{2, 2}, {4, 2}, {4, 4}, {2, 4}};
  for (DrawingPaper* paper : {&filled, &framed}) {
    UseHalfPixels(*paper);
    paper->Brush(clBlack);
    paper->NoPen();
  }
  framed.Pen(RGB(255, 0, 0), 0.25);
  filled.Dc().Polygon(square);
  framed.Dc().Polygon(square);
  EXPECT_EQ(filled.At(4, 4), clBlack);
  EXPECT_EQ(filled.At(7, 7), clBlack);
  for (int i = 4; i < 8; ++i) {
    EXPECT_EQ(framed.At(i, 4), RGB(255, 0, 0)) << i;
    EXPECT_EQ(framed.At(4, i), RGB(255, 0, 0)) << i;
    EXPECT_EQ(framed.At(i, 8), RGB(255, 0, 0)) << i;
    EXPECT_EQ(framed.At(8, i), RGB(255, 0, 0)) << i;
  }
  EXPECT_EQ(framed.At(3, 5), clWhite);
  EXPECT_EQ(framed.At(9, 5), clWhite);
}

TEST(DeviceLines, Should_PullALineInside_When_ItLiesOnTheFarEdge) {
  DrawingPaper paper(3, 3);
  paper.Dc().MoveTo({0, 3});
  paper.Dc().LineTo({3, 3});
  EXPECT_EQ(paper.Picture(), "\n...\n...\n###\n");
}

TEST(DeviceLines, Should_DrawWideLines_When_ThePenIsGeometric) {
  DrawingPaper paper(7, 5);
  paper.Pen(RGB(255, 0, 0), 3, pen_style::kGeometric | pen_style::kFlatCap);
  paper.Dc().MoveTo({0, 2});
  paper.Dc().LineTo({7, 2});
  EXPECT_EQ(paper.At(3, 0), clWhite);
  EXPECT_EQ(paper.At(3, 1), RGB(255, 0, 0));
  EXPECT_EQ(paper.At(3, 3), RGB(255, 0, 0));
  EXPECT_EQ(paper.At(3, 4), clWhite);
}

TEST(DeviceLines, Should_LeaveGaps_When_ThePenIsDottedAndTheBackgroundTransparent) {
  DrawingPaper paper(12, 1);
  paper.Dc().SetBkMode(BackgroundMode::transparent);
  paper.Pen(clBlack, 0, pen_style::kDot);
  paper.Dc().MoveTo({0, 0});
  paper.Dc().LineTo({12, 0});
  EXPECT_EQ(paper.Picture(), "\n###...###...\n");
}

TEST(DeviceLines, Should_FillGapsWithTheBackground_When_ThePenIsDottedAndTheBackgroundOpaque) {
  DrawingPaper paper(12, 1);
  paper.Dc().SetBkColor(RGB(0, 255, 0));
  paper.Pen(clBlack, 0, pen_style::kDot);
  paper.Dc().MoveTo({0, 0});
  paper.Dc().LineTo({12, 0});
  EXPECT_EQ(paper.Picture(), "\n###ggg###ggg\n");
}

TEST(DeviceLines, Should_UseOwnDashes_When_ThePenHasThem) {
  DrawingPaper paper(12, 1);
  LogicalPen pen;
  pen.style = pen_style::kUser;
  pen.dashes = {2, 1};
  paper.Dc().SelectPen(std::make_shared<LogicalPen>(pen));
  paper.Dc().SetBkMode(BackgroundMode::transparent);
  paper.Dc().MoveTo({0, 0});
  paper.Dc().LineTo({12, 0});
  EXPECT_EQ(paper.Picture(), "\n##.##.##.##.\n");
}

TEST(DeviceLines, Should_DrawNothing_When_ThePenIsNull) {
  DrawingPaper paper(3, 3);
  paper.NoPen();
  paper.Dc().LineTo({3, 3});
  EXPECT_EQ(paper.Picture(), "\n...\n...\n...\n");
  EXPECT_EQ(paper.Dc().CurrentPosition(), (PointD{3, 3}));
}

TEST(DeviceLines, Should_Survive_When_CoordinatesAreFarAwayOrNoNumbers) {
  const auto draw = [](DrawingPaper& paper, double far) {
    paper.Dc().MoveTo({far, 2});
    paper.Dc().LineTo({-far, far});
    const PointD points[] = {{far, far}, {0, far}, {far, 0}, {1, 1}};
    paper.Dc().Polygon(points);
    paper.Dc().PolyBezier(points);
    paper.Dc().Ellipse({far, far, -far, 2});
  };
  DrawingPaper zero(5, 5);
  draw(zero, 0);
  const double huge = 1e300, nan = std::nan("");
  for (const double far : {1e9, -1e9, huge, -huge, nan, HUGE_VAL}) {
    DrawingPaper paper(5, 5);
    draw(paper, far);
    if (!std::isfinite(far)) {
      EXPECT_EQ(paper.Picture(), zero.Picture()) << far;
    }
    // The context stays usable.
    FillRaster(paper.raster, {0, 0, 5, 5}, clWhite);
    paper.Dc().MoveTo({1, 1});
    paper.Dc().LineTo({4, 1});
    EXPECT_EQ(paper.Picture(), "\n.....\n.###.\n.....\n.....\n.....\n") << far;
  }
}

TEST(DeviceLines, Should_CrossThePicture_When_BothEndsAreFarAway) {
  DrawingPaper paper(5, 3);
  paper.Dc().MoveTo({-1e9, 1});
  paper.Dc().LineTo({1e9, 1});
  EXPECT_EQ(paper.Picture(), "\n.....\n#####\n.....\n");
}

TEST(DeviceLines, Should_DrawEveryRun_When_ThePointsAreManyPolylines) {
  DrawingPaper paper(5, 3);
  const PointD points[] = {{0, 0}, {3, 0}, {0, 2}, {2, 2}};
  const uint32_t counts[] = {2, 9};
  paper.Dc().PolyPolyline(points, counts);
  EXPECT_EQ(paper.Picture(), "\n###..\n.....\n##...\n");
}

TEST(DeviceLines, Should_CloseTheFigure_When_PolyDrawSaysSo) {
  DrawingPaper paper(6, 6);
  const PointD points[] = {{1, 1}, {4, 1}, {4, 4}, {1, 4}};
  const uint8_t types[] = {6, 2, 2, 3};
  paper.Dc().PolyDraw(points, types);
  EXPECT_EQ(paper.Picture(), R"(
......
.####.
.#..#.
.#..#.
.####.
......
)");
}

TEST(DeviceLines, Should_EndWhereTheLineEnds_When_DrawingFromTheCurrentPosition) {
  DrawingPaper paper(4, 4);
  const PointD line[] = {{1, 1}, {2, 3}}, curve[] = {{0, 0}, {1, 0}, {3, 0}, {9, 9}};
  paper.Dc().PolylineTo(line);
  EXPECT_EQ(paper.Dc().CurrentPosition(), (PointD{2, 3}));
  paper.Dc().PolyBezierTo(curve);
  EXPECT_EQ(paper.Dc().CurrentPosition(), (PointD{3, 0}));
}

}  // namespace
}  // namespace rasterkit
