// Each type of EMF record has its effect. The tests of the drawing context cover the operations in
// detail.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>

#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;
constexpr int64_t kStock = 0x80000000, kNullBrush = kStock + 5, kNullPen = kStock + 8;

/// A file whose first objects, a red pen one pixel wide (1) and a blue brush (2), are selected.
EmfFile RedAndBlue() {
  EmfFile file;
  file.Add(EmfType::createPen, {1, 0, 1, 0, kRed}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::createBrush, {2, 0, kBlue, 0}).Add(EmfType::selectObject, {2});
  return file;
}

/// A file with the blue brush and without a pen.
EmfFile BlueAreas() {
  return RedAndBlue().Add(EmfType::selectObject, {kNullPen});
}

PlayedMetafile Play(const EmfFile& file) {
  return PlayedMetafile(file.Bytes());
}

/// Bounds, a count, and points with coordinates of 16 or 32 bits.
FieldBytes Points(std::initializer_list<int64_t> coordinates, bool areWords) {
  FieldBytes fields{0, 0, 0, 0, static_cast<int64_t>(coordinates.size() / 2)};
  return areWords ? fields.Words(coordinates) : fields.Longs(coordinates);
}

TEST(EmfPlayer, Lines_Should_UseThePen) {
  for (const bool areWords : {false, true}) {
    const auto with = [&](EmfType longs, EmfType words, std::initializer_list<int64_t> points) {
      EmfFile file = RedAndBlue();
      file.Add(EmfType::moveTo, {10, 40});
      return Play(file.Add(areWords ? words : longs, Points(points, areWords)));
    };
    EXPECT_EQ(with(EmfType::polyline, EmfType::polyline16, {10, 20, 50, 20}).At(30, 20), kRed);
    EXPECT_EQ(with(EmfType::polylineTo, EmfType::polylineTo16, {50, 40}).At(30, 40), kRed);
    EXPECT_EQ(with(EmfType::polyBezier, EmfType::polyBezier16, {10, 60, 20, 60, 30, 60, 50, 60})
                  .At(30, 60),
              kRed);
    EXPECT_EQ(
        with(EmfType::polyBezierTo, EmfType::polyBezierTo16, {20, 40, 30, 40, 50, 40}).At(30, 40),
        kRed);
    const auto polygon =
        with(EmfType::polygon, EmfType::polygon16, {10, 10, 60, 10, 60, 50, 10, 50});
    EXPECT_EQ(polygon.At(30, 30), kBlue);
    EXPECT_EQ(polygon.At(30, 10), kRed);
  }
  EmfFile file = RedAndBlue();
  file.Add(EmfType::moveTo, {10, 20}).Add(EmfType::lineTo, {50, 20});
  const PlayedMetafile line = Play(file);
  EXPECT_EQ(line.At(30, 20), kRed);
  EXPECT_EQ(line.At(30, 22), clWhite);
}

/// Two squares: from (10, 10) to (30, 30) and from (50, 10) to (70, 30).
FieldBytes TwoSquares(bool areWords) {
  FieldBytes fields{0, 0, 0, 0, 2, 8, 4, 4};
  for (const int x : {10, 50}) {
    const std::initializer_list<int64_t> square = {x, 10, x + 20, 10, x + 20, 30, x, 30};
    areWords ? fields.Words(square) : fields.Longs(square);
  }
  return fields;
}

TEST(EmfPlayer, ManyPolygonsAndLines_Should_BeSeparate) {
  for (const bool areWords : {false, true}) {
    const PlayedMetafile filled = Play(BlueAreas().Add(
        areWords ? EmfType::polyPolygon16 : EmfType::polyPolygon, TwoSquares(areWords)));
    EXPECT_EQ(filled.At(20, 20), kBlue);
    EXPECT_EQ(filled.At(60, 20), kBlue);
    EXPECT_EQ(filled.At(40, 20), clWhite);
    const PlayedMetafile lines = Play(RedAndBlue().Add(
        areWords ? EmfType::polyPolyline16 : EmfType::polyPolyline, TwoSquares(areWords)));
    EXPECT_EQ(lines.At(20, 10), kRed);
    EXPECT_EQ(lines.At(60, 30), kRed);
    EXPECT_EQ(lines.At(20, 20), clWhite);
    EXPECT_EQ(lines.At(40, 30), clWhite);
  }
}

TEST(EmfPlayer, PolyDraw_Should_MixLinesAndMoves) {
  for (const bool areWords : {false, true}) {
    FieldBytes fields = Points({10, 20, 50, 20, 10, 40, 50, 40}, areWords);
    for (const int type : {6, 2, 6, 2}) fields.Byte(type);
    const PlayedMetafile played =
        Play(RedAndBlue().Add(areWords ? EmfType::polyDraw16 : EmfType::polyDraw, fields));
    EXPECT_EQ(played.At(30, 20), kRed);
    EXPECT_EQ(played.At(30, 40), kRed);
    EXPECT_EQ(played.At(30, 30), clWhite);
  }
}

TEST(EmfPlayer, Shapes_Should_BeFilledAndOutlined) {
  const auto shape = [](EmfType type, std::initializer_list<int64_t> fields) {
    return Play(RedAndBlue().Add(type, fields));
  };
  const PlayedMetafile box = shape(EmfType::rectangle, {10, 10, 60, 50});
  EXPECT_EQ(box.At(30, 30), kBlue);
  EXPECT_EQ(box.At(30, 10), kRed);
  EXPECT_EQ(box.At(30, 50), kRed) << "recorded boxes reach their lower right corner";
  EXPECT_EQ(shape(EmfType::ellipse, {10, 10, 60, 50}).At(35, 30), kBlue);
  EXPECT_EQ(shape(EmfType::ellipse, {10, 10, 60, 50}).At(11, 11), clWhite);
  EXPECT_EQ(shape(EmfType::roundRect, {10, 10, 60, 50, 20, 20}).At(35, 30), kBlue);
  EXPECT_EQ(shape(EmfType::roundRect, {10, 10, 60, 50, 20, 20}).At(11, 11), clWhite);
  // From the top over the left to the bottom: the left half.
  const std::initializer_list<int64_t> half = {10, 10, 60, 50, 35, 0, 35, 80};
  EXPECT_EQ(shape(EmfType::pie, half).At(25, 30), kBlue);
  EXPECT_EQ(shape(EmfType::pie, half).At(45, 30), clWhite);
  EXPECT_EQ(shape(EmfType::chord, half).At(25, 30), kBlue);
  EXPECT_EQ(shape(EmfType::chord, half).At(45, 30), clWhite);
  const PlayedMetafile arc = shape(EmfType::arc, half);
  EXPECT_EQ(arc.At(25, 30), clWhite);
  EXPECT_NE(arc.At(10, 30), clWhite);
  EXPECT_EQ(arc.At(60, 30), clWhite);
}

TEST(EmfPlayer, ArcDirection_Should_TurnArcsRound) {
  EmfFile file = RedAndBlue();
  file.Add(EmfType::setArcDirection, {2}).Add(EmfType::pie, {10, 10, 60, 50, 35, 0, 35, 80});
  EXPECT_EQ(Play(file).At(45, 30), kBlue);
  EXPECT_EQ(Play(file).At(25, 30), clWhite);
}

TEST(EmfPlayer, ArcsWithALine_Should_StartAtThePosition) {
  EmfFile file = RedAndBlue();
  file.Add(EmfType::moveTo, {5, 10}).Add(EmfType::arcTo, {10, 10, 60, 50, 35, 0, 35, 80});
  EXPECT_NE(Play(file).At(20, 10), clWhite);
  EmfFile angle = RedAndBlue();
  FieldBytes fields{50, 40, 20};
  angle.Add(EmfType::moveTo, {50, 40}).Add(EmfType::angleArc, fields.Singles({0, 90}));
  EXPECT_NE(Play(angle).At(60, 40), clWhite) << "the line to the arc";
  EXPECT_NE(Play(angle).At(50, 20), clWhite) << "its end";
}

TEST(EmfPlayer, Pixels_Should_HaveTheirColor) {
  EmfFile file;
  file.Add(EmfType::setPixel, {33, 44, kGreen});
  EXPECT_EQ(Play(file).At(33, 44), kGreen);
  EXPECT_EQ(Play(file).Painted(), 1);
}

TEST(EmfPlayer, FloodFill_Should_FillUpToTheBorder) {
  EmfFile file = RedAndBlue();
  file.Add(EmfType::selectObject, {kNullBrush}).Add(EmfType::rectangle, {10, 10, 60, 50});
  file.Add(EmfType::selectObject, {2}).Add(EmfType::extFloodFill, {30, 30, kRed, 0});
  EXPECT_EQ(Play(file).At(20, 20), kBlue);
  EXPECT_EQ(Play(file).At(80, 60), clWhite);
}

TEST(EmfPlayer, Gradients_Should_RunBetweenTheirCorners) {
  FieldBytes fields{0, 0, 0, 0, 2, 1, 0};
  fields.Longs({0, 0}).Words({0, 0, 0, 0}).Longs({100, 80}).Words({0xFF00, 0, 0, 0}).Longs({0, 1});
  const PlayedMetafile across = Play(EmfFile().Add(EmfType::gradientFill, fields));
  EXPECT_LT(across.At(10, 40), across.At(50, 40));
  EXPECT_LT(across.At(50, 40), across.At(90, 40));
  EXPECT_EQ(across.At(50, 10), across.At(50, 70));
  fields.bytes[24] = 1;
  const PlayedMetafile down = Play(EmfFile().Add(EmfType::gradientFill, fields));
  EXPECT_LT(down.At(50, 10), down.At(50, 70));
  FieldBytes triangle{0, 0, 0, 0, 3, 1, 2};
  for (const auto& [x, y] : {std::pair(0, 0), std::pair(99, 0), std::pair(0, 79)}) {
    triangle.Longs({x, y}).Words({0, 0, 0xFF00, 0});
  }
  const PlayedMetafile corner =
      Play(EmfFile().Add(EmfType::gradientFill, triangle.Longs({0, 1, 2})));
  EXPECT_EQ(corner.At(20, 20), 0xFF0000);
  EXPECT_EQ(corner.At(90, 70), clWhite);
}

TEST(EmfPlayer, Objects_Should_BeSelectedByHandle) {
  EmfFile file = BlueAreas();
  file.Add(EmfType::selectObject, {kStock + 4}).Add(EmfType::rectangle, {0, 0, 9, 9});
  file.Add(EmfType::deleteObject, {2}).Add(EmfType::selectObject, {2});
  file.Add(EmfType::rectangle, {20, 0, 29, 9});
  file.Add(EmfType::createBrush, {2, 0, kGreen, 0}).Add(EmfType::selectObject, {2});
  file.Add(EmfType::rectangle, {40, 0, 49, 9});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(5, 5), clBlack);
  EXPECT_EQ(played.At(25, 5), clBlack) << "a handle without an object leaves what is selected";
  EXPECT_EQ(played.At(45, 5), kGreen);
}

TEST(EmfPlayer, Handles_Should_BeBounded) {
  const PlayedMetafile played = Play(EmfFile().Add(EmfType::createBrush, {0x7FFFFFFF, 0, 0, 0}));
  EXPECT_THAT(played.report.warnings, testing::ElementsAre(testing::HasSubstr("handle")));
}

TEST(EmfPlayer, ExtendedPens_Should_HaveWidthAndBrush) {
  const auto line = [](FieldBytes pen) {
    EmfFile file;
    file.Add(EmfType::extCreatePen, pen).Add(EmfType::selectObject, {7});
    file.Add(EmfType::moveTo, {10, 40}).Add(EmfType::lineTo, {90, 40});
    return Play(file);
  };
  const PlayedMetafile wide = line({7, 0, 0, 0, 0, 0x10000, 20, 0, kRed, 0, 0});
  EXPECT_EQ(wide.At(50, 34), kRed);
  EXPECT_EQ(wide.At(50, 46), kRed);
  EXPECT_EQ(wide.At(50, 55), clWhite);
  const PlayedMetafile dashed = line({7, 0, 0, 0, 0, 0x10007, 4, 0, kRed, 0, 2, 10, 10});
  EXPECT_GT(dashed.Painted(), 100);
  EXPECT_LT(dashed.Painted(), 300);
  const PlayedMetafile null = line({7, 0, 0, 0, 0, 0x10005, 4, 0, kRed, 0, 0});
  EXPECT_EQ(null.Painted(), 0);
}

FieldBytes PatternBrushFields(int64_t handle, const BmpFile& bitmap) {
  const std::vector<uint8_t> dib = PackedDib(bitmap);
  const auto pixels = static_cast<int64_t>(bitmap.pixels.size());
  const int64_t head = static_cast<int64_t>(dib.size()) - pixels;
  return FieldBytes{handle, 0, 32, head, 32 + head, pixels}.Bytes(dib);
}

BmpFile TwoColumns() {
  BmpFile file;
  file.width = 8;
  file.height = 2;
  file.bits = 1;
  file.palette = {0x00FF00, 0xFF0000};
  file.pixels = {0x0F, 0, 0, 0, 0x0F, 0, 0, 0};
  return file;
}

TEST(EmfPlayer, PatternBrushes_Should_ShowTheirBitmap) {
  const auto filled = [](EmfType type) {
    EmfFile file = BlueAreas();
    file.Add(EmfType::setTextColor, {kBlue}).Add(EmfType::setBkColor, {0x808080});
    file.Add(type, PatternBrushFields(3, TwoColumns())).Add(EmfType::selectObject, {3});
    return Play(file.Add(EmfType::rectangle, {0, 0, 99, 79}));
  };
  const PlayedMetafile colored = filled(EmfType::createDibPatternBrush);
  EXPECT_EQ(colored.At(17, 30), kGreen);
  EXPECT_EQ(colored.At(21, 30), kRed);
  const PlayedMetafile mono = filled(EmfType::createMonoBrush);
  EXPECT_EQ(mono.At(17, 30), kBlue) << "0 is the text color";
  EXPECT_EQ(mono.At(21, 30), 0x808080) << "1 is the background color";
}

TEST(EmfPlayer, Palettes_Should_GiveColorsByIndex) {
  EmfFile file = BlueAreas();
  FieldBytes palette{3};
  palette.Words({0x300, 2}).Longs({0x112233, 0x445566});
  file.Add(EmfType::createPalette, palette).Add(EmfType::selectPalette, {3});
  file.Add(EmfType::setPixel, {5, 5, 0x01000001}).Add(EmfType::setPixel, {6, 5, 0x02010203});
  file.Add(EmfType::setPaletteEntries, {3, 1, 1, 0x778899});
  file.Add(EmfType::setPixel, {7, 5, 0x01000001});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(5, 5), 0x445566);
  EXPECT_EQ(played.At(6, 5), 0x010203);
  EXPECT_EQ(played.At(7, 5), 0x778899);
}

TEST(EmfPlayer, State_Should_BeSavedAndRestored) {
  EmfFile file = BlueAreas();
  file.Add(EmfType::saveDc).Add(EmfType::selectObject, {kStock + 4});
  file.Add(EmfType::restoreDc, {-1}).Add(EmfType::rectangle, {0, 0, 9, 9});
  EXPECT_EQ(Play(file).At(5, 5), kBlue);
}

TEST(EmfPlayer, Rop2_Should_Combine) {
  EmfFile file = BlueAreas();
  file.Add(EmfType::setRop2, {7}).Add(EmfType::rectangle, {0, 0, 49, 49});
  EXPECT_EQ(Play(file).At(20, 20), 0x00FFFF) << "blue by exclusive or with white";
}

TEST(EmfPlayer, PolyFillMode_Should_DecideAboutTheInside) {
  const auto star = [](int mode) {
    EmfFile file = BlueAreas();
    file.Add(EmfType::setPolyFillMode, {mode});
    // The same square twice, in the same direction.
    file.Add(EmfType::polygon16,
             Points({10, 10, 50, 10, 50, 50, 10, 50, 10, 10, 50, 10, 50, 50, 10, 50}, true));
    return Play(file).At(30, 30);
  };
  EXPECT_EQ(star(1), clWhite);
  EXPECT_EQ(star(2), kBlue);
}

TEST(EmfPlayer, Mapping_Should_MoveAndScale) {
  const auto square = [](std::initializer_list<std::pair<EmfType, FieldBytes>> mapping) {
    EmfFile file = BlueAreas();
    for (const auto& [type, fields] : mapping) file.Add(type, fields);
    return Play(file.Add(EmfType::polygon16, Points({0, 0, 10, 0, 10, 10, 0, 10}, true)));
  };
  const FieldBytes anisotropic{8};
  EXPECT_EQ(square({{EmfType::setMapMode, anisotropic},
                    {EmfType::setWindowExt, {10, 10}},
                    {EmfType::setViewportExt, {40, 20}},
                    {EmfType::setViewportOrg, {50, 40}}})
                .At(80, 55),
            kBlue);
  EXPECT_EQ(square({{EmfType::setWindowOrg, {-60, -50}}}).At(65, 55), kBlue);
  EXPECT_EQ(square({{EmfType::setMapMode, anisotropic},
                    {EmfType::setWindowExt, {10, 10}},
                    {EmfType::setViewportExt, {10, 10}},
                    {EmfType::scaleViewportExt, {4, 1, 2, 1}}})
                .At(35, 15),
            kBlue);
  EXPECT_EQ(square({{EmfType::setMapMode, anisotropic},
                    {EmfType::setWindowExt, {10, 10}},
                    {EmfType::setViewportExt, {10, 10}},
                    {EmfType::scaleWindowExt, {1, 4, 1, 2}}})
                .At(35, 15),
            kBlue);
  EXPECT_EQ(
      square({{EmfType::setWorldTransform, FieldBytes().Singles({3, 0, 0, 2, 40, 30})}}).At(65, 45),
      kBlue);
  EXPECT_EQ(
      square({{EmfType::modifyWorldTransform, FieldBytes().Singles({3, 0, 0, 2, 40, 30}).Long(2)}})
          .At(65, 45),
      kBlue);
}

TEST(EmfPlayer, Paths_Should_BeFilledStrokedAndClip) {
  const auto path = [](EmfType use, const FieldBytes& fields = {}) {
    EmfFile file = RedAndBlue();
    file.Add(EmfType::beginPath).Add(EmfType::moveTo, {10, 10});
    file.Add(EmfType::polylineTo16, Points({60, 10, 60, 50, 10, 50}, true));
    file.Add(EmfType::closeFigure).Add(EmfType::endPath).Add(use, fields);
    return file;
  };
  const PlayedMetafile filled = Play(path(EmfType::fillPath));
  EXPECT_EQ(filled.At(30, 30), kBlue);
  const PlayedMetafile stroked = Play(path(EmfType::strokePath));
  EXPECT_EQ(stroked.At(30, 30), clWhite);
  EXPECT_EQ(stroked.At(10, 30), kRed) << "the figure is closed";
  const PlayedMetafile both = Play(path(EmfType::strokeAndFillPath));
  EXPECT_EQ(both.At(30, 30), kBlue);
  EXPECT_EQ(both.At(30, 10), kRed);
  EXPECT_EQ(Play(path(EmfType::abortPath).Add(EmfType::fillPath)).Painted(), 0);
  EXPECT_EQ(Play(path(EmfType::flattenPath).Add(EmfType::fillPath)).At(30, 30), kBlue);
  EXPECT_EQ(Play(path(EmfType::widenPath).Add(EmfType::fillPath)).At(30, 30), clWhite);
  const PlayedMetafile clipped =
      Play(path(EmfType::selectClipPath, {5}).Add(EmfType::rectangle, {0, 0, 99, 79}));
  EXPECT_EQ(clipped.At(30, 30), kBlue);
  EXPECT_EQ(clipped.At(80, 30), clWhite);
}

/// A region of one rectangle, as stored in records.
FieldBytes Region(std::initializer_list<int64_t> rect) {
  return FieldBytes{32, 1, 1, 16, 0, 0, 0, 0}.Longs(rect);
}

TEST(EmfPlayer, Clipping_Should_KeepDrawingsInside) {
  const auto clipped = [](EmfType type, const FieldBytes& fields) {
    return Play(BlueAreas().Add(type, fields).Add(EmfType::rectangle, {0, 0, 99, 79}));
  };
  const PlayedMetafile inside = clipped(EmfType::intersectClipRect, {10, 10, 40, 40});
  EXPECT_EQ(inside.At(20, 20), kBlue);
  EXPECT_EQ(inside.At(50, 20), clWhite);
  const PlayedMetafile outside = clipped(EmfType::excludeClipRect, {10, 10, 40, 40});
  EXPECT_EQ(outside.At(20, 20), clWhite);
  EXPECT_EQ(outside.At(50, 20), kBlue);
  FieldBytes region{48, 5};
  const PlayedMetafile selected =
      clipped(EmfType::extSelectClipRgn, region.Bytes(Region({10, 10, 40, 40}).bytes));
  EXPECT_EQ(selected.At(20, 20), kBlue);
  EXPECT_EQ(selected.At(50, 20), clWhite);
  EmfFile moved = BlueAreas();
  moved.Add(EmfType::intersectClipRect, {10, 10, 40, 40}).Add(EmfType::offsetClipRgn, {40, 0});
  moved.Add(EmfType::rectangle, {0, 0, 99, 79});
  EXPECT_EQ(Play(moved).At(20, 20), clWhite);
  EXPECT_EQ(Play(moved).At(60, 20), kBlue);
  EmfFile reset = BlueAreas();
  reset.Add(EmfType::intersectClipRect, {10, 10, 40, 40}).Add(EmfType::extSelectClipRgn, {0, 5});
  EXPECT_EQ(Play(reset.Add(EmfType::rectangle, {0, 0, 99, 79})).At(60, 20), kBlue);
  EmfFile meta = BlueAreas();
  meta.Add(EmfType::intersectClipRect, {10, 10, 40, 40}).Add(EmfType::setMetaRgn);
  meta.Add(EmfType::extSelectClipRgn, {0, 5}).Add(EmfType::rectangle, {0, 0, 99, 79});
  EXPECT_EQ(Play(meta).At(60, 20), clWhite) << "what became the meta region stays";
}

TEST(EmfPlayer, Regions_Should_BeFilledFramedAndInverted) {
  const auto with = [](EmfType type, FieldBytes fields) {
    return Play(BlueAreas().Add(type, fields.Bytes(Region({10, 10, 60, 50}).bytes)));
  };
  EXPECT_EQ(with(EmfType::fillRgn, {0, 0, 0, 0, 48, 2}).At(30, 30), kBlue);
  const PlayedMetafile frame = with(EmfType::frameRgn, {0, 0, 0, 0, 48, 2, 3, 4});
  EXPECT_EQ(frame.At(11, 30), kBlue);
  EXPECT_EQ(frame.At(30, 12), kBlue);
  EXPECT_EQ(frame.At(30, 30), clWhite);
  EXPECT_EQ(with(EmfType::invertRgn, {0, 0, 0, 0, 48}).At(30, 30), clBlack);
  EXPECT_EQ(with(EmfType::paintRgn, {0, 0, 0, 0, 48}).At(30, 30), kBlue);
  const PlayedMetafile missing = with(EmfType::fillRgn, {0, 0, 0, 0, 48, 77});
  EXPECT_EQ(missing.Painted(), 0);
  EXPECT_THAT(missing.report.warnings, testing::ElementsAre(testing::HasSubstr("brush")));
}

TEST(EmfPlayer, Damage_Should_CostTheRecordAlone) {
  EmfFile file = BlueAreas();
  file.Add(EmfType::polygon16, {0, 0, 0, 0, 5000});
  file.Add(EmfType::polyPolygon16, {0, 0, 0, 0, 0x7FFFFFFF, 1});
  file.Add(EmfType::polyPolygon, {0, 0, 0, 0, 2, 9, -1, -1});
  file.Add(EmfType::extSelectClipRgn, {48, 5, 32, 1, 0x7FFFFFFF});
  file.Add(EmfType::rectangle, {1, 2}).Add(EmfType::selectObject);
  file.Add(static_cast<EmfType>(4711), {1, 2, 3});
  file.Add(EmfType::rectangle, {0, 0, 9, 9});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(5, 5), kBlue);
  EXPECT_THAT(played.report.warnings,
              testing::ElementsAre("metafile: a record is too short for its fields"));
}

TEST(EmfPlayer, Canceling_Should_EndTheDrawing) {
  EmfFile file = BlueAreas();
  for (int i = 0; i < 1000; ++i) file.Add(EmfType::setPixel, {i % 100, 5, 0});
  Raster raster(pf32bit, 100, 80);
  int calls = 0;
  const PlayReport report =
      PlayMetafile(file.Bytes(), raster, {0, 0, 100, 80}, [&] { return ++calls < 3; });
  EXPECT_FALSE(report.isComplete);
  EXPECT_EQ(calls, 3);
  EXPECT_LT(report.played, 500u);
}

TEST(EmfPlayer, Drawing_Should_BeRefused_When_ItIsInNewerRecordsAlone) {
  EmfFile file;
  file.Add(EmfType::comment, {20, kEmfPlusMark, 0x4009, 16, 4, 0});
  EXPECT_THROW(Play(file), UnsupportedError);
}

TEST(EmfPlayer, Place_Should_ScaleMirrorAndClip) {
  const auto bytes =
      BlueAreas().Add(EmfType::polygon16, Points({0, 0, 50, 0, 50, 40, 0, 40}, true)).Bytes();
  Raster raster(pf32bit, 40, 40);
  const auto play = [&](const PixelRect& place) {
    FillRaster(raster, {0, 0, 40, 40}, clWhite);
    PlayMetafile(bytes, raster, place);
  };
  play({10, 10, 30, 30});
  EXPECT_EQ(raster.PixelColor(12, 12), kBlue);
  EXPECT_EQ(raster.PixelColor(19, 19), kBlue);
  EXPECT_EQ(raster.PixelColor(20, 19), clWhite);
  EXPECT_EQ(raster.PixelColor(9, 12), clWhite);
  play({30, 10, 10, 30});
  EXPECT_EQ(raster.PixelColor(28, 12), kBlue);
  EXPECT_EQ(raster.PixelColor(12, 12), clWhite);
  play({-40, -40, 60, 60});
  EXPECT_EQ(raster.PixelColor(5, 5), kBlue);
  EXPECT_EQ(raster.PixelColor(15, 5), clWhite);
  play({50, 50, 90, 90});
  EXPECT_EQ(raster.PixelColor(39, 39), clWhite);
  play({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
  play({7, 7, 7, 30});
}

}  // namespace
}  // namespace rasterkit::test
