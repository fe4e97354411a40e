#include <gtest/gtest.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

LogicalBrush Hatched(int hatch) {
  LogicalBrush brush;
  brush.kind = LogicalBrush::hatched;
  brush.hatch = hatch;
  brush.color = clBlack;
  return brush;
}

std::string HatchedPaper(int hatch) {
  DrawingPaper paper(8, 8);
  paper.Dc().SetBkMode(BackgroundMode::transparent);
  const RectD all{0, 0, 8, 8};
  paper.Dc().FillRgn({&all, 1}, RegionUnit::logical, Hatched(hatch));
  return paper.Picture();
}

int Count(const std::string& text, char letter) {
  return static_cast<int>(std::count(text.begin(), text.end(), letter));
}

TEST(DeviceBrushes, Should_DrawLines_When_Hatched) {
  EXPECT_EQ(HatchedPaper(2), R"(
#.......
.#......
..#.....
...#....
....#...
.....#..
......#.
.......#
)");
  for (const int hatch : {0, 1, 2, 3}) EXPECT_EQ(Count(HatchedPaper(hatch), '#'), 8) << hatch;
  EXPECT_EQ(Count(HatchedPaper(4), '#'), 15);
  EXPECT_EQ(Count(HatchedPaper(5), '#'), 16);
}

TEST(DeviceBrushes, Should_FillGaps_When_TheBackgroundIsOpaque) {
  DrawingPaper paper(8, 8);
  paper.Dc().SetBkColor(RGB(255, 0, 0));
  const RectD all{0, 0, 8, 8};
  paper.Dc().FillRgn({&all, 1}, RegionUnit::logical, Hatched(0));
  EXPECT_EQ(Count(paper.Picture(), '#'), 8);
  EXPECT_EQ(Count(paper.Picture(), 'r'), 56);
}

TEST(DeviceBrushes, Should_TakeTheColorsOfTheTime_When_TheyChangeBetweenFills) {
  DrawingPaper paper(8, 8);
  paper.Dc().SelectBrush(std::make_shared<LogicalBrush>(Hatched(0)));
  paper.Dc().PatBlt({0, 0, 8, 8}, rop3::kPatternCopy);
  EXPECT_EQ(Count(paper.Picture(), '.'), 56);
  paper.Dc().SaveDC();
  paper.Dc().SetBkColor(RGB(255, 0, 0));
  paper.Dc().PatBlt({0, 0, 8, 8}, rop3::kPatternCopy);
  EXPECT_EQ(Count(paper.Picture(), 'r'), 56);
  paper.Dc().RestoreDC(-1);
  paper.Dc().PatBlt({0, 0, 8, 8}, rop3::kPatternCopy);
  EXPECT_EQ(Count(paper.Picture(), '.'), 56);
}

TEST(DeviceBrushes, Should_LayTheBitmapSideBySide_When_APatternHasAnOrigin) {
  auto bitmap = std::make_shared<Raster>(pf24bit, 2, 2);
  FillRaster(*bitmap, {0, 0, 2, 2}, clWhite);
  FillRaster(*bitmap, {0, 0, 1, 1}, RGB(255, 0, 0));
  LogicalBrush brush;
  brush.kind = LogicalBrush::pattern;
  brush.bitmap = bitmap;
  DrawingPaper paper(5, 4);
  paper.Dc().SetBrushOrg({1, -1});
  const RectD all{0, 0, 5, 4};
  paper.Dc().FillRgn({&all, 1}, RegionUnit::logical, brush);
  EXPECT_EQ(paper.Picture(), "\n.....\n.r.r.\n.....\n.r.r.\n");
}

TEST(DeviceBrushes, Should_TakeTextAndBackgroundColor_When_ThePatternIsMono) {
  auto bitmap = std::make_shared<Raster>(pf1bit, 2, 1);
  *bitmap->Row(0) = 0x40;
  LogicalBrush brush;
  brush.kind = LogicalBrush::pattern;
  brush.bitmap = bitmap;
  brush.isMono = true;
  DrawingPaper paper(4, 1);
  paper.Dc().SetTextColor(RGB(255, 0, 0));
  paper.Dc().SetBkColor(RGB(0, 0, 255));
  paper.Dc().SelectBrush(std::make_shared<LogicalBrush>(brush));
  paper.Dc().PatBlt({0, 0, 4, 1}, rop3::kPatternCopy);
  EXPECT_EQ(paper.Picture(), "\nrbrb\n");
  // The colors apply at the time of drawing.
  paper.Dc().SetTextColor(RGB(0, 255, 0));
  paper.Dc().PatBlt({0, 0, 4, 1}, rop3::kPatternCopy);
  EXPECT_EQ(paper.Picture(), "\ngbgb\n");
}

TEST(DeviceBrushes, Should_MakeBlocksOfPatternPixels_When_TheTargetIsFiner) {
  auto bitmap = std::make_shared<Raster>(pf24bit, 2, 1);
  FillRaster(*bitmap, {0, 0, 1, 1}, clBlack);
  FillRaster(*bitmap, {1, 0, 2, 1}, clWhite);
  LogicalBrush brush;
  brush.kind = LogicalBrush::pattern;
  brush.bitmap = bitmap;
  DrawingPaper paper(8, 1, PlaneAffine::Scaling(2, 2));
  paper.Dc().SelectBrush(std::make_shared<LogicalBrush>(brush));
  paper.Dc().PatBlt({0, 0, 4, 1}, rop3::kPatternCopy);
  EXPECT_EQ(paper.Picture(), "\n##..##..\n");
}

TEST(DevicePens, Should_DrawWithTheBrush_When_AGeometricPenHasOne) {
  LogicalPen pen;
  pen.style = pen_style::kGeometric | pen_style::kFlatCap;
  pen.width = 8;
  pen.brush = std::make_shared<LogicalBrush>(Hatched(1));
  DrawingPaper paper(8, 8);
  paper.Dc().SetBkMode(BackgroundMode::transparent);
  paper.Dc().SelectPen(std::make_shared<LogicalPen>(pen));
  paper.Dc().MoveTo({0, 4});
  paper.Dc().LineTo({8, 4});
  EXPECT_EQ(Count(paper.Picture(), '#'), 8);
  EXPECT_EQ(paper.At(4, 3), clBlack);
}

TEST(DevicePens, Should_BeWiderAcross_When_TheAxesDifferInScale) {
  DrawingPaper paper(40, 40);
  paper.Dc().SetWorldTransform(PlaneAffine::Scaling(4, 1));
  paper.Pen(clBlack, 4, pen_style::kGeometric | pen_style::kFlatCap);
  paper.Dc().MoveTo({5, 0});
  paper.Dc().LineTo({5, 40});
  int across = 0, down = 0;
  for (int x = 0; x < 40; ++x) across += paper.At(x, 20) != clWhite;
  EXPECT_NEAR(across, 16, 1);
  FillRaster(paper.raster, {0, 0, 40, 40}, clWhite);
  paper.Dc().MoveTo({0, 20});
  paper.Dc().LineTo({10, 20});
  for (int y = 0; y < 40; ++y) down += paper.At(20, y) != clWhite;
  EXPECT_NEAR(down, 4, 1);
}

}  // namespace
}  // namespace rasterkit
