#include <gtest/gtest.h>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

TEST(DeviceShapes, Should_FrameTheBoxInside_When_ARectangleIsDrawnInCompatibleMode) {
  DrawingPaper paper(7, 6);
  paper.Brush(RGB(0, 255, 0));
  paper.Dc().Rectangle({1, 1, 6, 5});
  EXPECT_EQ(paper.Picture(), R"(
.......
.#####.
.#ggg#.
.#ggg#.
.#####.
.......
)");
}

TEST(DeviceShapes, Should_DrawTheFarEdgeToo_When_InAdvancedMode) {
  DrawingPaper paper(7, 6);
  paper.NoBrush();
  paper.Dc().SetGraphicsMode(GraphicsMode::advanced);
  paper.Dc().Rectangle({1, 1, 5, 4});
  EXPECT_EQ(paper.Picture(), R"(
.......
.#####.
.#...#.
.#...#.
.#####.
.......
)");
}

TEST(DeviceShapes, Should_FillWithoutAFrame_When_ThePenIsNull) {
  DrawingPaper paper(5, 4);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Rectangle({4, 3, 1, 1});
  EXPECT_EQ(paper.Picture(), "\n.....\n.###.\n.###.\n.....\n");
}

TEST(DeviceShapes, Should_KeepOnePixel_When_ARectangleIsThinnerThanThat) {
  DrawingPaper paper(5, 3, PlaneAffine::Scaling(0.1, 0.1));
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Rectangle({10, 12, 40, 14});
  EXPECT_EQ(paper.Picture(), "\n.....\n.###.\n.....\n");
}

TEST(DeviceShapes, Should_StayInsideTheBox_When_ThePenIsInsideItsFrame) {
  DrawingPaper paper(9, 9);
  paper.NoBrush();
  paper.Pen(clBlack, 2, pen_style::kInsideFrame | pen_style::kGeometric | pen_style::kMiterJoin);
  paper.Dc().Rectangle({1, 1, 8, 8});
  EXPECT_EQ(paper.At(1, 1), clBlack);
  EXPECT_EQ(paper.At(2, 2), clBlack);
  EXPECT_EQ(paper.At(3, 3), clWhite);
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(paper.At(i, 0), clWhite);
    EXPECT_EQ(paper.At(0, i), clWhite);
    EXPECT_EQ(paper.At(i, 8), clWhite);
  }
}

// The five corners of a star; its center is enclosed twice.
constexpr PointD kStar[] = {{20, 1}, {32, 38}, {1, 15}, {39, 15}, {8, 38}};

TEST(DeviceShapes, Should_LeaveTheMiddleOfAStarFree_When_FilledInAlternation) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Polygon(kStar);
  EXPECT_EQ(paper.At(20, 22), clWhite);
  EXPECT_EQ(paper.At(20, 8), clBlack);
}

TEST(DeviceShapes, Should_FillTheMiddleOfAStar_When_FilledByWinding) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().SetPolyFillMode(PolygonFill::winding);
  paper.Dc().Polygon(kStar);
  EXPECT_EQ(paper.At(20, 22), clBlack);
}

TEST(DeviceShapes, Should_CutAHole_When_APolyPolygonHasTwoFigures) {
  DrawingPaper paper(7, 7);
  paper.NoPen();
  paper.Brush(clBlack);
  const PointD points[] = {{1, 1}, {6, 1}, {6, 6}, {1, 6}, {3, 3}, {5, 3}, {5, 5}, {3, 5}};
  const uint32_t counts[] = {4, 4};
  paper.Dc().PolyPolygon(points, counts);
  EXPECT_EQ(paper.Picture(), R"(
.......
.#####.
.#####.
.##..#.
.##..#.
.#####.
.......
)");
}

TEST(DeviceShapes, Should_TouchTheBoxAndBeRound_When_AnEllipseIsFilled) {
  DrawingPaper paper(22, 12);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Ellipse({1, 1, 21, 11});
  EXPECT_EQ(paper.At(11, 6), clBlack);
  EXPECT_EQ(paper.At(2, 2), clWhite);
  EXPECT_EQ(paper.At(19, 9), clWhite);
  EXPECT_NE(paper.At(1, 6), clWhite);
  EXPECT_NE(paper.At(20, 6), clWhite);
  EXPECT_NE(paper.At(11, 1), clWhite);
  EXPECT_EQ(paper.At(0, 6), clWhite);
  EXPECT_EQ(paper.At(11, 11), clWhite);
}

// Quarters of a circle with the center (20, 20): right, top, left, bottom.
struct Quarter {
  PointD inside;
  const char* name;
};
constexpr Quarter kUpperRight{{27, 13}, "upper right"}, kUpperLeft{{13, 13}, "upper left"},
    kLowerLeft{{13, 27}, "lower left"}, kLowerRight{{27, 27}, "lower right"};

TEST(DeviceShapes, Should_RunAgainstTheClock_When_APieGoesFromRightToTop) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Pie({0, 0, 40, 40}, {{40, 20}, {20, 0}});
  const auto at = [&](const Quarter& q) {
    return paper.At(static_cast<int>(q.inside.x), static_cast<int>(q.inside.y));
  };
  EXPECT_EQ(at(kUpperRight), clBlack);
  for (const Quarter& other : {kUpperLeft, kLowerLeft, kLowerRight}) {
    EXPECT_EQ(at(other), clWhite) << other.name;
  }
}

TEST(DeviceShapes, Should_RunWithTheClock_When_TheArcDirectionSaysSo) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().SetArcDirection(ArcDirection::clockwise);
  paper.Dc().Pie({0, 0, 40, 40}, {{40, 20}, {20, 0}});
  EXPECT_EQ(paper.At(27, 13), clWhite);
  EXPECT_EQ(paper.At(13, 13), clBlack);
  EXPECT_EQ(paper.At(27, 27), clBlack);
}

TEST(DeviceShapes, Should_RunAgainstTheClockAsSeen_When_TheYAxisPointsUp) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().SetMapMode(MapMode::anisotropic);
  paper.Dc().SetWindowExt({40, 40});
  paper.Dc().SetViewportExt({40, -40});
  paper.Dc().SetViewportOrg({0, 40});
  paper.Dc().Pie({0, 40, 40, 0}, {{40, 20}, {20, 40}});
  EXPECT_EQ(paper.At(27, 13), clBlack);
  EXPECT_EQ(paper.At(13, 13), clWhite);
  EXPECT_EQ(paper.At(27, 27), clWhite);
}

TEST(DeviceShapes, Should_BeAllOfIt_When_APieEndsWhereItBegins) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Pie({0, 0, 40, 40}, {{40, 20}, {40, 20}});
  EXPECT_EQ(paper.At(27, 13), clBlack);
  EXPECT_EQ(paper.At(13, 27), clBlack);
}

TEST(DeviceShapes, Should_BeAllOfIt_When_AnArcEndsWhereItBegins_InBothDirections) {
  for (const ArcDirection direction : {ArcDirection::clockwise, ArcDirection::counterclockwise}) {
    DrawingPaper paper(40, 40);
    paper.Pen(clBlack);
    paper.Dc().SetArcDirection(direction);
    paper.Dc().Arc({0, 0, 40, 40}, {{40, 20}, {40, 20}});
    EXPECT_NE(paper.At(20, 0), clWhite);
    EXPECT_NE(paper.At(0, 20), clWhite);
    EXPECT_NE(paper.At(20, 38), clWhite);
  }
}

TEST(DeviceShapes, Should_LeaveTheCenterOut_When_AChordIsCut) {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().Chord({0, 0, 40, 40}, {{40, 20}, {20, 0}});
  EXPECT_EQ(paper.At(32, 8), clBlack);
  EXPECT_EQ(paper.At(24, 16), clWhite);
}

TEST(DeviceShapes, Should_RoundTheCorners_When_ARoundRectIsFilled) {
  DrawingPaper paper(20, 20);
  paper.NoPen();
  paper.Brush(clBlack);
  paper.Dc().RoundRect({0, 0, 20, 20}, {10, 10});
  EXPECT_EQ(paper.At(0, 0), clWhite);
  EXPECT_EQ(paper.At(19, 19), clWhite);
  EXPECT_EQ(paper.At(10, 0), clBlack);
  EXPECT_EQ(paper.At(0, 10), clBlack);
}

TEST(DeviceShapes, Should_StartWithALine_When_AnArcIsDrawnFromTheCurrentPosition) {
  DrawingPaper paper(40, 40);
  paper.Dc().MoveTo({39, 35});
  paper.Dc().ArcTo({0, 0, 40, 40}, {{40, 20}, {20, 0}});
  EXPECT_EQ(paper.At(39, 28), clBlack);
  EXPECT_NEAR(paper.Dc().CurrentPosition().x, 19.5, 0.6);
  EXPECT_NEAR(paper.Dc().CurrentPosition().y, 0, 0.6);
}

TEST(DeviceShapes, Should_GoAgainstTheClockInDegrees_When_AnAngleArcIsDrawn) {
  DrawingPaper paper(40, 40);
  paper.Dc().MoveTo({30, 20});
  paper.Dc().AngleArc({20, 20}, 10, 0, 90);
  EXPECT_NEAR(paper.Dc().CurrentPosition().x, 20, 1e-9);
  EXPECT_NEAR(paper.Dc().CurrentPosition().y, 10, 1e-9);
  EXPECT_NE(paper.At(27, 12), clWhite);
  EXPECT_EQ(paper.At(12, 12), clWhite);
}

TEST(DevicePixels, Should_SetOnePixel_When_ScaledToOne) {
  DrawingPaper paper(3, 3);
  paper.Dc().SetPixel({1, 2}, RGB(255, 0, 0));
  EXPECT_EQ(paper.Picture(), "\n...\n...\n.r.\n");
}

TEST(DevicePixels, Should_SetABlock_When_ThePictureIsLarger) {
  DrawingPaper paper(6, 6, PlaneAffine::Scaling(2, 2));
  paper.Dc().SetPixel({1, 2}, RGB(255, 0, 0));
  EXPECT_EQ(paper.Picture(), "\n......\n......\n......\n......\n..rr..\n..rr..\n");
}

TEST(DeviceRegions, Should_FillFrameAndInvert_When_Asked) {
  DrawingPaper paper(7, 6);
  const RectD region[] = {{1, 1, 6, 5}};
  LogicalBrush brush;
  brush.color = RGB(0, 0, 255);
  paper.Dc().FillRgn(region, RegionUnit::logical, brush);
  brush.color = RGB(255, 0, 0);
  paper.Dc().FrameRgn(region, RegionUnit::logical, brush, {1, 1});
  EXPECT_EQ(paper.Picture(), R"(
.......
.rrrrr.
.rbbbr.
.rbbbr.
.rrrrr.
.......
)");
  paper.Dc().InvertRgn(region, RegionUnit::device);
  EXPECT_EQ(paper.At(0, 0), clWhite);
  EXPECT_EQ(paper.At(1, 1), RGB(0, 255, 255));
  EXPECT_EQ(paper.At(2, 2), RGB(255, 255, 0));
}

TEST(DeviceFlood, Should_FillUpToTheBorder_When_TheBorderColorIsNamed) {
  DrawingPaper paper(7, 6);
  paper.NoBrush();
  paper.Dc().Rectangle({1, 1, 6, 5});
  paper.Brush(RGB(255, 0, 0));
  paper.Dc().ExtFloodFill({3, 3}, clBlack, FloodFill::toBorder);
  EXPECT_EQ(paper.Picture(), R"(
.......
.#####.
.#rrr#.
.#rrr#.
.#####.
.......
)");
}

TEST(DeviceFlood, Should_FillTheSurfaceAround_When_TheSurfaceColorIsNamed) {
  DrawingPaper paper(7, 6);
  paper.NoBrush();
  paper.Dc().Rectangle({1, 1, 6, 5});
  paper.Brush(RGB(255, 0, 0));
  paper.Dc().ExtFloodFill({0, 0}, clWhite, FloodFill::overSurface);
  EXPECT_EQ(paper.At(6, 5), RGB(255, 0, 0));
  EXPECT_EQ(paper.At(3, 3), clWhite);
  paper.Dc().ExtFloodFill({1, 1}, clWhite, FloodFill::overSurface);
  EXPECT_EQ(paper.At(1, 1), clBlack);
}

TEST(DeviceGradients, Should_GoFromColorToColor_When_ARectangleIsShaded) {
  DrawingPaper paper(256, 2);
  const GradientVertex vertices[] = {{{0, 0}, 0, 0, 0, 0}, {{256, 2}, 0xFF00, 0xFF00, 0xFF00, 0}};
  const std::pair<uint32_t, uint32_t> rects[] = {{0, 1}, {0, 7}};
  paper.Dc().GradientRects(vertices, rects, false);
  for (int x = 0; x < 256; ++x) EXPECT_NEAR(paper.At(x, 1) & 255, x, 1) << x;
}

TEST(DeviceGradients, Should_GoDownward_When_Vertical) {
  DrawingPaper paper(2, 4);
  const GradientVertex vertices[] = {{{0, 0}, 0, 0, 0, 0}, {{2, 4}, 0x8000, 0, 0, 0}};
  const std::pair<uint32_t, uint32_t> rects[] = {{0, 1}};
  paper.Dc().GradientRects(vertices, rects, true);
  EXPECT_EQ(paper.At(0, 0), RGB(16, 0, 0));
  EXPECT_EQ(paper.At(1, 3), RGB(112, 0, 0));
}

TEST(DeviceGradients, Should_TurnWithThePage_When_TheWorldIsTurned) {
  const GradientVertex vertices[] = {{{0, 0}, 0, 0, 0, 0}, {{8, 4}, 0x8000, 0, 0, 0}};
  const std::pair<uint32_t, uint32_t> rects[] = {{0, 1}};
  const auto shaded = [&](const PlaneAffine& world, bool isVertical) {
    DrawingPaper paper(8, 8);
    paper.Dc().SetWorldTransform(world);
    paper.Dc().GradientRects(vertices, rects, isVertical);
    paper.context.reset();
    return std::move(paper.raster);
  };
  // x runs down the paper, y to the right.
  const PlaneAffine turned{0, 1, 1, 0, 0, 0};
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(shaded(turned, false).PixelColor(0, i), RGB(8 + 16 * i, 0, 0)) << i;
    EXPECT_EQ(shaded(turned, false).PixelColor(3, i), RGB(8 + 16 * i, 0, 0)) << i;
    EXPECT_EQ(shaded(PlaneAffine(), false).PixelColor(i, 3), RGB(8 + 16 * i, 0, 0)) << i;
    EXPECT_EQ(shaded({-1, 0, 0, 1, 8, 0}, false).PixelColor(7 - i, 3), RGB(8 + 16 * i, 0, 0)) << i;
  }
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(shaded(turned, true).PixelColor(i, 7), RGB(16 + 32 * i, 0, 0)) << i;
  }
  EXPECT_EQ(shaded(turned, true).PixelColor(4, 0), clWhite);
  // In a slanted shape every pixel is tested, and those outside stay unchanged.
  const Raster aslant = shaded({0.5, 0.5, -0.5, 0.5, 4, 0}, false);
  EXPECT_EQ(aslant.PixelColor(0, 0), clWhite);
  EXPECT_EQ(aslant.PixelColor(7, 0), clWhite);
  EXPECT_NEAR(aslant.PixelColor(5, 3) & 255, 72, 10);
}

TEST(DeviceGradients, Should_RaiseLimitError_When_OneRecordCoversThePictureWithoutEnd) {
  const detail::DrawingWorkScope work(1e7);
  DrawingPaper paper(100, 100);
  const GradientVertex vertices[] = {{{0, 0}, 0, 0, 0, 0}, {{100, 100}, 0x8000, 0, 0, 0}};
  std::vector<std::pair<uint32_t, uint32_t>> rects(50, {0, 1});
  EXPECT_NO_THROW(paper.Dc().GradientRects(vertices, rects, false));
  rects.resize(500, {0, 1});
  EXPECT_THROW(paper.Dc().GradientRects(vertices, rects, false), LimitError);
}

TEST(DeviceGradients, Should_MixThreeColors_When_ATriangleIsShaded) {
  DrawingPaper paper(31, 31);
  const GradientVertex vertices[] = {
      {{0, 0}, 0xFF00, 0, 0, 0}, {{31, 0}, 0, 0xFF00, 0, 0}, {{0, 31}, 0, 0, 0xFF00, 0}};
  const std::array<uint32_t, 3> triangles[] = {{0, 1, 2}};
  paper.Dc().GradientTriangles(vertices, triangles);
  EXPECT_EQ(paper.At(30, 30), clWhite);
  EXPECT_GT(paper.At(1, 1) & 255, 220);
  EXPECT_GT(paper.At(28, 0) >> 8 & 255, 220);
  EXPECT_GT(paper.At(0, 28) >> 16 & 255, 220);
}

/// Counts pixels in which the blue of an area is mixed with the white outside: its outline does not
/// cover them.
int Slivers(const DrawingPaper& paper) {
  int count = 0;
  for (int y = 0; y < paper.raster.Height(); ++y) {
    for (int x = 0; x < paper.raster.Width(); ++x) {
      const TColor at = paper.At(x, y);
      const int red = at & 255, blue = at >> 16 & 255;
      count += red > 20 && blue > red + 20;
    }
  }
  return count;
}

DrawingPaper Magnified() {
  DrawingPaper paper(160, 160, PlaneAffine::Scaling(16, 16));
  paper.Brush(RGB(0, 0, 255));
  paper.Pen(clBlack);
  return paper;
}

TEST(DeviceShapes, Should_FillUpToTheirLines_When_PixelsOfTheDeviceAreLarge) {
  const PointD corners[] = {{5, 1}, {8, 5}, {5, 8}, {1, 5}};
  DrawingPaper polygon = Magnified(), ellipse = Magnified(), path = Magnified();
  polygon.Dc().Polygon(corners);
  ellipse.Dc().Ellipse({1, 1, 9, 9});
  path.Dc().BeginPath();
  path.Dc().Polygon(corners);
  path.Dc().EndPath();
  path.Dc().StrokeAndFillPath();
  for (const DrawingPaper* paper : {&polygon, &ellipse, &path}) {
    EXPECT_EQ(paper->At(80, 80), RGB(0, 0, 255));
    EXPECT_EQ(Slivers(*paper), 0);
  }
}

TEST(DeviceShapes, Should_ReachTheBoxesEdge_When_ThePenIsThinnerThanAPixelOfTheDevice) {
  DrawingPaper paper(160, 160, PlaneAffine::Scaling(16, 16));
  paper.Dc().SetMapMode(MapMode::anisotropic);
  paper.Dc().SetWindowExt({16, 16});
  paper.Dc().SetViewportExt({1, 1});
  paper.Brush(RGB(0, 0, 255));
  paper.Pen(clBlack, 2);
  paper.Dc().Rectangle({32, 32, 96, 96});
  for (const int at : {32, 33, 94, 95}) {
    EXPECT_EQ(paper.At(at, 64), clBlack) << at;
    EXPECT_EQ(paper.At(64, at), clBlack) << at;
  }
  for (const int at : {31, 96}) EXPECT_EQ(paper.At(at, 64), clWhite) << at;
  for (const int at : {34, 93}) EXPECT_EQ(paper.At(at, 64), RGB(0, 0, 255)) << at;
}

/// Returns how far the reddest pixel is from blue, for two areas that touch on white paper.
int MostRed(const DrawingPaper& paper) {
  int most = 0;
  for (int y = 4; y < 34; ++y) {
    for (int x = 4; x < 36; ++x) most = std::max(most, static_cast<int>(paper.At(x, y) & 255));
  }
  return most;
}

DrawingPaper BlueAreas() {
  DrawingPaper paper(40, 40);
  paper.NoPen();
  paper.Brush(RGB(0, 0, 255));
  return paper;
}

constexpr PointD kUpper[] = {{4, 4}, {36, 4}, {36, 35}}, kLower[] = {{4, 4}, {36, 35}, {4, 36}};

TEST(DeviceShapes, Should_ShowNoBackground_When_AreasMeetAtASlantedEdge) {
  DrawingPaper polygons = BlueAreas(), turned = BlueAreas(), paths = BlueAreas();
  polygons.Dc().Polygon(kUpper);
  polygons.Dc().Polygon(kLower);
  const PointD backward[] = {kLower[2], kLower[1], kLower[0]};
  turned.Dc().Polygon(kUpper);
  turned.Dc().Polygon(backward);
  for (const auto& corners : {kUpper, kLower}) {
    paths.Dc().BeginPath();
    paths.Dc().Polygon({corners, 3});
    paths.Dc().EndPath();
    paths.Dc().FillPath();
  }
  for (const DrawingPaper* paper : {&polygons, &turned, &paths}) EXPECT_LT(MostRed(*paper), 16);
}

TEST(DeviceShapes, Should_ShowNoBackground_When_AreasAreMany) {
  // A sheet of slanted squares, row by row: each touches one of the previous row.
  constexpr int kAcross = 40;
  DrawingPaper paper(200, 200);
  paper.NoPen();
  paper.Brush(RGB(0, 0, 255));
  const auto at = [](int x, int y) { return PointD{x * 5.0 + y % 2 * 1.3, y * 5.0 + x % 2 * 1.7}; };
  for (int y = 0; y < kAcross; ++y) {
    for (int x = 0; x < kAcross; ++x) {
      const PointD corners[] = {at(x, y), at(x + 1, y), at(x + 1, y + 1), at(x, y + 1)};
      paper.Dc().Polygon(corners);
    }
  }
  int shining = 0;
  for (int y = 5; y < 195; ++y) {
    for (int x = 5; x < 195; ++x) shining += (paper.At(x, y) & 255) > 24;
  }
  EXPECT_EQ(shining, 0);
}

TEST(DeviceShapes, Should_NotGrow_When_TheyLieOnEachOther) {
  DrawingPaper once = BlueAreas(), over = BlueAreas(), apart = BlueAreas();
  once.Dc().Polygon(kUpper);
  over.Dc().Polygon(kUpper);
  over.Dc().Polygon(kUpper);
  // Below the edge, where a line along it would show.
  for (int i = 8; i < 34; ++i) EXPECT_EQ(over.At(i, i + 1), once.At(i, i + 1)) << i;
  const PointD far[] = {{4, 4.25}, {36, 35.25}, {4, 36}};
  apart.Dc().Polygon(kUpper);
  apart.Dc().Polygon(far);
  EXPECT_GT(MostRed(apart), 30) << "areas that do not touch keep their gap";
}

TEST(DeviceShapes, Should_NotDrawAlongEdges_When_TheOperationLooksAtThePicture) {
  DrawingPaper paper = BlueAreas(), alone = BlueAreas();
  paper.Dc().SetRop2(Rop2::xorPen);
  paper.Dc().Polygon(kUpper);
  paper.Dc().Polygon(kLower);
  alone.Dc().SetRop2(Rop2::xorPen);
  alone.Dc().Polygon(kUpper);
  // Outside the second area, the first one is unchanged.
  for (int i = 8; i < 34; ++i) EXPECT_EQ(paper.At(i + 2, i), alone.At(i + 2, i)) << i;
}

}  // namespace
}  // namespace rasterkit
