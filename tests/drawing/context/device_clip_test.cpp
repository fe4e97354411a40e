#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

/// Paints everything inside the clipping region black.
std::string Seen(DrawingPaper& paper) {
  paper.Dc().PatBlt({-100, -100, 100, 100}, rop3::kBlackness);
  const std::string picture = paper.Picture();
  FillRaster(paper.raster, {0, 0, paper.raster.Width(), paper.raster.Height()}, clWhite);
  return picture;
}

TEST(DeviceClip, Should_CutAndSpare_When_RectanglesAreIntersectedAndExcluded) {
  DrawingPaper paper(6, 4);
  paper.Dc().IntersectClipRect({1, 1, 5, 4});
  paper.Dc().ExcludeClipRect({2, 2, 3, 4});
  EXPECT_EQ(Seen(paper), R"(
......
.####.
.#.##.
.#.##.
)");
}

TEST(DeviceClip, Should_CombineRegions_When_AnyModeIsGiven) {
  const RectD first{0, 0, 3, 2}, second{2, 0, 5, 2};
  const struct {
    RegionMode mode;
    const char* row;
  } cases[] = {{RegionMode::intersection, "..#..."},
               {RegionMode::unite, "#####."},
               {RegionMode::exclusiveOr, "##.##."},
               {RegionMode::difference, "##...."},
               {RegionMode::copy, "..###."}};
  for (const auto& c : cases) {
    DrawingPaper paper(6, 1);
    paper.Dc().ExtSelectClipRgn(std::span(&first, 1), RegionUnit::device, RegionMode::copy);
    paper.Dc().ExtSelectClipRgn(std::span(&second, 1), RegionUnit::device, c.mode);
    EXPECT_EQ(Seen(paper), std::string("\n") + c.row + "\n");
  }
}

TEST(DeviceClip, Should_ClipNothing_When_ACopyHasNoRegion) {
  DrawingPaper paper(3, 1);
  paper.Dc().IntersectClipRect({0, 0, 1, 1});
  paper.Dc().ExtSelectClipRgn(std::nullopt, RegionUnit::device, RegionMode::copy);
  EXPECT_EQ(Seen(paper), "\n###\n");
}

TEST(DeviceClip, Should_ClipAll_When_TheRegionHasNoRectangles) {
  DrawingPaper paper(3, 1);
  paper.Dc().ExtSelectClipRgn(std::span<const RectD>(), RegionUnit::device, RegionMode::copy);
  EXPECT_EQ(Seen(paper), "\n...\n");
}

TEST(DeviceClip, Should_StayInside_When_TheMetaRegionWasSet) {
  DrawingPaper paper(5, 1);
  paper.Dc().IntersectClipRect({0, 0, 3, 1});
  paper.Dc().SetMetaRgn();
  const RectD other{2, 0, 5, 1};
  paper.Dc().ExtSelectClipRgn(std::span(&other, 1), RegionUnit::device, RegionMode::copy);
  EXPECT_EQ(Seen(paper), "\n..#..\n");
}

TEST(DeviceClip, Should_Move_When_Offset) {
  DrawingPaper paper(5, 1);
  paper.Dc().IntersectClipRect({0, 0, 2, 1});
  paper.Dc().OffsetClipRgn({2, 0});
  EXPECT_EQ(Seen(paper), "\n..##.\n");
}

TEST(DeviceClip, Should_ComeBack_When_AStateIsRestored) {
  DrawingPaper paper(3, 1);
  paper.Dc().SaveDC();
  paper.Dc().IntersectClipRect({0, 0, 1, 1});
  EXPECT_EQ(Seen(paper), "\n#..\n");
  EXPECT_TRUE(paper.Dc().RestoreDC(-1));
  EXPECT_EQ(Seen(paper), "\n###\n");
}

void SelectCircle(DrawingPaper& paper, const RectD& box, RegionMode mode) {
  paper.Dc().BeginPath();
  paper.Dc().Ellipse(box);
  paper.Dc().EndPath();
  paper.Dc().SelectClipPath(mode);
}

/// Returns the number of black pixels.
int SeenPixels(DrawingPaper& paper) {
  const std::string text = Seen(paper);
  return static_cast<int>(std::count(text.begin(), text.end(), '#'));
}

TEST(DeviceClip, Should_ShowACircle_When_ThePathIsOne) {
  DrawingPaper paper(40, 40);
  SelectCircle(paper, {0, 0, 40, 40}, RegionMode::copy);
  EXPECT_NEAR(SeenPixels(paper), 1256, 80);
  // Lines, text and blits are clipped, too.
  paper.Pen(clBlack, 3);
  paper.Dc().MoveTo({0, 1});
  paper.Dc().LineTo({40, 1});
  EXPECT_EQ(paper.At(2, 1), clWhite);
  EXPECT_NE(paper.At(20, 1), clWhite);
}

TEST(DeviceClip, Should_CombineSoftEdges_When_PathsMeet) {
  const struct {
    RegionMode mode;
    bool left, middle, right;
  } cases[] = {{RegionMode::intersection, false, true, false},
               {RegionMode::unite, true, true, true},
               {RegionMode::exclusiveOr, true, false, true},
               {RegionMode::difference, true, false, false},
               {RegionMode::copy, false, true, true}};
  for (const auto& c : cases) {
    DrawingPaper paper(60, 40);
    SelectCircle(paper, {0, 0, 40, 40}, RegionMode::copy);
    SelectCircle(paper, {20, 0, 60, 40}, c.mode);
    paper.Dc().PatBlt({0, 0, 60, 40}, rop3::kBlackness);
    EXPECT_EQ(paper.At(5, 20) == clBlack, c.left);
    EXPECT_EQ(paper.At(30, 20) == clBlack, c.middle);
    EXPECT_EQ(paper.At(55, 20) == clBlack, c.right);
    EXPECT_EQ(paper.At(1, 1), clWhite);
  }
}

TEST(DeviceClip, Should_CutMasksByRectangles_When_BothAreUsed) {
  DrawingPaper paper(40, 40);
  SelectCircle(paper, {0, 0, 40, 40}, RegionMode::copy);
  paper.Dc().IntersectClipRect({0, 0, 20, 40});
  paper.Dc().ExcludeClipRect({0, 0, 40, 20});
  paper.Dc().PatBlt({0, 0, 40, 40}, rop3::kBlackness);
  EXPECT_EQ(paper.At(15, 25), clBlack);
  EXPECT_EQ(paper.At(25, 25), clWhite);
  EXPECT_EQ(paper.At(15, 15), clWhite);
  EXPECT_EQ(paper.At(1, 38), clWhite);
}

TEST(DeviceClip, Should_RaiseLimitError_When_MasksOfManyStatesAreMoreThanTheBudget) {
  DrawingPaper paper(100, 100);
  const PictureMemoryScope small(50 * 100 * 100);
  const auto putBy = [&](int count) {
    for (int i = 0; i < count; ++i) {
      paper.Dc().SaveDC();
      SelectCircle(paper, {0, 0, 100, 100}, RegionMode::copy);
    }
  };
  EXPECT_NO_THROW(putBy(20));
  EXPECT_THROW(putBy(100), LimitError);
  // The kept states can be restored, and their memory is free afterwards.
  EXPECT_TRUE(paper.Dc().RestoreDC(1));
  EXPECT_NO_THROW(putBy(20));
}

TEST(DeviceClip, Should_AddCoverage_When_SoftAreasAreUnited) {
  const auto half = [](DrawingPaper& paper, double top, RegionMode mode) {
    paper.Dc().BeginPath();
    const PointD slanted[] = {{0, top}, {8, top + 8}, {0, top + 8}};
    paper.Dc().Polygon(slanted);
    paper.Dc().EndPath();
    paper.Dc().SelectClipPath(mode);
  };
  DrawingPaper once(8, 8), twice(8, 8);
  half(once, 0, RegionMode::copy);
  half(twice, 0, RegionMode::copy);
  half(twice, 0, RegionMode::unite);
  for (DrawingPaper* each : {&once, &twice}) {
    each->Dc().PatBlt({0, 0, 8, 8}, rop3::kBlackness);
  }
  const int soft = 255 - (once.At(3, 3) & 255), united = 255 - (twice.At(3, 3) & 255);
  EXPECT_GT(soft, 60);
  EXPECT_LT(soft, 200);
  EXPECT_NEAR(united, 2 * soft - soft * soft / 255, 2);
}

TEST(DeviceClip, Should_StayAsItIs_When_TheModeIsNone) {
  for (const uint32_t mode : {0u, 6u, 0xFFFFFFFFu}) {
    DrawingPaper paper(4, 1);
    paper.Dc().IntersectClipRect({0, 0, 2, 1});
    const RectD other{1, 0, 4, 1};
    paper.Dc().ExtSelectClipRgn(std::span(&other, 1), RegionUnit::device,
                                static_cast<RegionMode>(mode));
    paper.Dc().ExtSelectClipRgn(std::nullopt, RegionUnit::device, static_cast<RegionMode>(mode));
    EXPECT_EQ(Seen(paper), "\n##..\n") << mode;
  }
  DrawingPaper round(40, 40);
  SelectCircle(round, {0, 0, 10, 10}, static_cast<RegionMode>(6));
  round.Dc().PatBlt({0, 0, 40, 40}, rop3::kBlackness);
  EXPECT_EQ(round.At(35, 35), clBlack);
}

/// Selects every other row and every other column, combined by exclusive or: more rectangles than a
/// clip area keeps.
void SelectCheckers(DrawingPaper& paper, int side) {
  std::vector<RectD> rows, columns;
  for (int i = 0; i < side; i += 2) {
    rows.push_back({0.0, i + 0.0, side + 0.0, i + 1.0});
    columns.push_back({i + 0.0, 0.0, i + 1.0, side + 0.0});
  }
  paper.Dc().ExtSelectClipRgn(rows, RegionUnit::device, RegionMode::copy);
  paper.Dc().ExtSelectClipRgn(columns, RegionUnit::device, RegionMode::exclusiveOr);
}

TEST(DeviceClip, Should_BeExact_When_AnAreaHasThousandsOfRectangles) {
  DrawingPaper paper(200, 200);
  SelectCheckers(paper, 200);
  paper.Dc().IntersectClipRect({3, 0, 200, 200});
  paper.Dc().ExcludeClipRect({100, 0, 102, 200});
  paper.Dc().PatBlt({0, 0, 200, 200}, rop3::kBlackness);
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      const bool isSeen = x % 2 != y % 2 && x >= 3 && x != 100 && x != 101;
      ASSERT_EQ(paper.At(x, y), isSeen ? clBlack : clWhite) << x << ", " << y;
    }
  }
}

TEST(DeviceClip, Should_BeExact_When_ACircleMeetsThousandsOfRectangles) {
  DrawingPaper paper(200, 200), circle(200, 200);
  SelectCheckers(paper, 200);
  SelectCircle(paper, {0, 0, 200, 200}, RegionMode::intersection);
  SelectCircle(circle, {0, 0, 200, 200}, RegionMode::copy);
  for (DrawingPaper* each : {&paper, &circle}) {
    each->Dc().PatBlt({0, 0, 200, 200}, rop3::kBlackness);
  }
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      ASSERT_EQ(paper.At(x, y), x % 2 != y % 2 ? circle.At(x, y) : clWhite) << x << ", " << y;
    }
  }
}

TEST(DeviceClip, Should_KeepSoftEdges_When_ThousandsOfRectanglesAreCutOutOfACircle) {
  DrawingPaper paper(200, 200), circle(200, 200);
  SelectCircle(circle, {0, 0, 200, 200}, RegionMode::copy);
  SelectCircle(paper, {0, 0, 200, 200}, RegionMode::copy);
  for (int i = 0; i < 200; i += 2) {
    paper.Dc().ExcludeClipRect({i + 0.0, 0, i + 1.0, 200});
    paper.Dc().ExcludeClipRect({0, i + 0.0, 200, i + 1.0});
  }
  for (DrawingPaper* each : {&paper, &circle}) {
    each->Dc().PatBlt({0, 0, 200, 200}, rop3::kBlackness);
  }
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      const bool isCut = x % 2 == 0 || y % 2 == 0;
      ASSERT_EQ(paper.At(x, y), isCut ? clWhite : circle.At(x, y)) << x << ", " << y;
    }
  }
}

TEST(DeviceClip, Should_RaiseLimitError_When_AreasOfManyRectanglesAreMoreThanTheBudget) {
  DrawingPaper paper(200, 200);
  SelectCheckers(paper, 200);
  const PictureMemoryScope small(50 * 200 * 200);
  const auto putBy = [&](int count) {
    for (int i = 0; i < count; ++i) {
      const RectD pixel{i + 0.0, 0, i + 1.0, 1};
      paper.Dc().SaveDC();
      paper.Dc().ExtSelectClipRgn(std::span(&pixel, 1), RegionUnit::device,
                                  RegionMode::exclusiveOr);
    }
  };
  EXPECT_NO_THROW(putBy(20));
  EXPECT_THROW(putBy(100), LimitError);
}

TEST(DeviceClip, Should_BeWhatItWas_When_SomethingInsideANarrowerAreaDidNotFitTheBudget) {
  DrawingPaper paper(200, 100);
  SelectCircle(paper, {0, 0, 200, 100}, RegionMode::copy);
  paper.Dc().SetBkMode(BackgroundMode::transparent);
  TextRun run;
  run.origin = {60, 40};
  run.options = text_option::kClipped;
  run.box = {60, 30, 90, 60};
  run.text = u"Text";
  {
    const PictureMemoryScope small(200 * 100 + 8);
    EXPECT_THROW(paper.Dc().ExtTextOut(run), LimitError);
  }
  paper.Dc().PatBlt({0, 0, 200, 100}, rop3::kBlackness);
  EXPECT_EQ(paper.At(150, 50), clBlack);
}

TEST(DeviceClip, Should_DrawNothing_When_TheContextsOwnAreaIsEmpty) {
  Raster raster(pf32bit, 3, 3);
  FillRaster(raster, {0, 0, 3, 3}, clWhite);
  DeviceContext context(raster, {2, 2, 1, 1}, ReferenceDevice{}, PlaneAffine());
  context.Rectangle({0, 0, 3, 3});
  context.LineTo({3, 3});
  context.SetPixel({1, 1}, 0);
  EXPECT_EQ(raster.PixelColor(1, 1), clWhite);
}

TEST(DeviceClip, Should_StayInsideItsArea_When_ThatIsAPartOfTheRaster) {
  test::DrawingPaper paper(5, 4);
  DeviceContext context(paper.raster, {1, 1, 4, 3}, ReferenceDevice{}, PlaneAffine());
  LogicalBrush brush;
  brush.color = clBlack;
  context.SelectBrush(std::make_shared<LogicalBrush>(brush));
  context.Ellipse({-10, -10, 20, 20});
  context.ExtSelectClipRgn(std::nullopt, RegionUnit::device, RegionMode::copy);
  context.PatBlt({0, 0, 5, 4}, rop3::kPatternCopy);
  EXPECT_EQ(paper.Picture(), "\n.....\n.###.\n.###.\n.....\n");
}

TEST(DeviceClip, Should_WriteAlpha255_When_TheContextIsGone) {
  Raster raster(pf32bit, 3, 1);
  for (int x = 0; x < 12; ++x) raster.Row(0)[x] = 0;
  {
    DeviceContext context(raster, {0, 0, 2, 1}, ReferenceDevice{}, PlaneAffine());
    context.SetPixel({0, 0}, RGB(255, 0, 0));
  }
  EXPECT_EQ(raster.Row(0)[3], 255);
  EXPECT_EQ(raster.Row(0)[7], 255);
  EXPECT_EQ(raster.Row(0)[11], 0);
}

}  // namespace
}  // namespace rasterkit
