// Each type of WMF record has its effect. The tests of the drawing context cover the operations in
// detail.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;
constexpr int64_t kNullPenStyle = 5;

/// 100 x 80 units of one pixel each; a red pen (0) and a blue brush (1) are selected.
WmfFile RedAndBlue() {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({0, 1, 0}).Long(kRed));
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
  return file;
}

/// The same without a pen, which is handle 2.
WmfFile BlueAreas() {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({kNullPenStyle, 0, 0}).Long(0));
  return file.Add(WmfFunction::selectObject, {2});
}

PlayedMetafile Play(const WmfFile& file) {
  return PlayedMetafile(file.Bytes());
}

TEST(WmfPlayer, Lines_Should_UseThePen) {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::moveTo, {20, 10}).Add(WmfFunction::lineTo, {20, 50});
  file.Add(WmfFunction::polyline, {2, 10, 40, 50, 40});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(30, 20), kRed);
  EXPECT_EQ(played.At(30, 40), kRed);
  EXPECT_EQ(played.At(30, 30), clWhite);
}

TEST(WmfPlayer, Shapes_Should_BeFilledAndOutlined) {
  const auto shape = [](WmfFunction function, std::initializer_list<int64_t> words) {
    return Play(RedAndBlue().Add(function, words));
  };
  const PlayedMetafile box = shape(WmfFunction::rectangle, {50, 60, 10, 10});
  EXPECT_EQ(box.At(30, 30), kBlue);
  EXPECT_EQ(box.At(30, 10), kRed);
  EXPECT_EQ(box.At(30, 49), kRed) << "boxes end before their lower right corner";
  EXPECT_EQ(shape(WmfFunction::ellipse, {50, 60, 10, 10}).At(35, 30), kBlue);
  EXPECT_EQ(shape(WmfFunction::ellipse, {50, 60, 10, 10}).At(11, 11), clWhite);
  EXPECT_EQ(shape(WmfFunction::roundRect, {20, 20, 50, 60, 10, 10}).At(35, 30), kBlue);
  EXPECT_EQ(shape(WmfFunction::roundRect, {20, 20, 50, 60, 10, 10}).At(11, 11), clWhite);
  EXPECT_EQ(shape(WmfFunction::polygon, {4, 10, 10, 60, 10, 60, 50, 10, 50}).At(30, 30), kBlue);
  // End, start and box: from the top over the left to the bottom.
  const std::initializer_list<int64_t> half = {80, 35, 0, 35, 50, 60, 10, 10};
  EXPECT_EQ(shape(WmfFunction::pie, half).At(25, 30), kBlue);
  EXPECT_EQ(shape(WmfFunction::pie, half).At(45, 30), clWhite);
  EXPECT_EQ(shape(WmfFunction::chord, half).At(25, 30), kBlue);
  EXPECT_EQ(shape(WmfFunction::arc, half).At(25, 30), clWhite);
  EXPECT_NE(shape(WmfFunction::arc, half).At(10, 30), clWhite);
}

TEST(WmfPlayer, ManyPolygons_Should_BeSeparate) {
  const PlayedMetafile played =
      Play(BlueAreas().Add(WmfFunction::polyPolygon, {2, 4, 4, 10, 10, 30, 10, 30, 30, 10, 30,  //
                                                      50, 10, 70, 10, 70, 30, 50, 30}));
  EXPECT_EQ(played.At(20, 20), kBlue);
  EXPECT_EQ(played.At(60, 20), kBlue);
  EXPECT_EQ(played.At(40, 20), clWhite);
}

TEST(WmfPlayer, PixelsAndFloods_Should_HaveTheirColor) {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::setPixel, FieldBytes().Long(kGreen).Words({44, 33}));
  EXPECT_EQ(Play(file).At(33, 44), kGreen);
  file.Add(WmfFunction::polyline, {5, 10, 10, 60, 10, 60, 50, 10, 50, 10, 10});
  WmfFile border = file, surface = file;
  border.Add(WmfFunction::floodFill, FieldBytes().Long(kRed).Words({20, 20}));
  EXPECT_EQ(Play(border).At(50, 20), kBlue);
  EXPECT_EQ(Play(border).At(80, 20), clWhite);
  surface.Add(WmfFunction::extFloodFill, FieldBytes().Word(1).Long(clWhite).Words({70, 80}));
  EXPECT_EQ(Play(surface).At(80, 20), kBlue);
  EXPECT_EQ(Play(surface).At(20, 20), clWhite);
}

TEST(WmfPlayer, Handles_Should_BeTheLowestThatAreFree) {
  WmfFile file = BlueAreas();  // 0 pen, 1 brush, 2 pen
  const auto brush = [&](int64_t color) {
    file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(color).Word(0));
  };
  file.Add(WmfFunction::deleteObject, {1}).Add(WmfFunction::deleteObject, {0});
  brush(kGreen);  // 0
  brush(kRed);    // 1
  brush(0);       // 3
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::rectangle, {9, 9, 0, 0});
  file.Add(WmfFunction::selectObject, {1}).Add(WmfFunction::rectangle, {9, 29, 0, 20});
  file.Add(WmfFunction::selectObject, {3}).Add(WmfFunction::rectangle, {9, 49, 0, 40});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(5, 5), kGreen);
  EXPECT_EQ(played.At(25, 5), kRed);
  EXPECT_EQ(played.At(45, 5), clBlack);
}

TEST(WmfPlayer, Handles_Should_BeTaken_When_TheObjectIsBroken) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createFontIndirect, {1}).Add(WmfFunction::dibCreatePatternBrush, {5, 0});
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kGreen).Word(0));
  file.Add(WmfFunction::selectObject, {5}).Add(WmfFunction::rectangle, {9, 9, 0, 0});
  EXPECT_EQ(Play(file).At(5, 5), kGreen);
}

TEST(WmfPlayer, State_Should_BeSavedAndRestored) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::saveDc).Add(WmfFunction::setRop2, {7});
  file.Add(WmfFunction::rectangle, {9, 9, 0, 0}).Add(WmfFunction::restoreDc, {-1});
  file.Add(WmfFunction::rectangle, {9, 29, 0, 20});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(5, 5), 0x00FFFF) << "blue by exclusive or with white";
  EXPECT_EQ(played.At(25, 5), kBlue);
}

TEST(WmfPlayer, Window_Should_FillThePicture) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setWindowOrg, {-10, -10}).Add(WmfFunction::setWindowExt, {20, 20});
  file.Add(WmfFunction::polygon, {4, 0, 0, 10, 0, 10, 10, 0, 10});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(95, 75), kBlue);
  EXPECT_EQ(played.At(55, 45), kBlue);
  EXPECT_EQ(played.At(45, 35), clWhite);
}

TEST(WmfPlayer, IsotropicMode_Should_FitTheWindowIntoThePicture) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setMapMode, {7}).Add(WmfFunction::setWindowExt, {16, 20});
  file.Add(WmfFunction::polygon, {4, 10, 8, 20, 8, 20, 16, 10, 16});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(95, 75), kBlue);
  EXPECT_EQ(played.At(55, 45), kBlue);
  EXPECT_EQ(played.At(45, 35), clWhite);
  EXPECT_EQ(played.At(55, 35), clWhite);
}

TEST(WmfPlayer, IsotropicMode_Should_KeepUnitsSquare) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setMapMode, {7}).Add(WmfFunction::setWindowExt, {20, 20});
  file.Add(WmfFunction::polygon, {4, 0, 0, 20, 0, 20, 20, 0, 20});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(79, 79), kBlue);
  EXPECT_EQ(played.At(81, 40), clWhite);
}

TEST(WmfPlayer, MetricModes_Should_ShowWhatIsDrawn_When_NoWindowIsSet) {
  // Millimeters below the upper edge of the page: a box from (20, -20) to (80, -60).
  WmfFile file = BlueAreas();
  file.box.reset();
  file.Add(WmfFunction::setMapMode, {2});
  file.Add(WmfFunction::polygon, {4, 200, -200, 800, -200, 800, -600, 200, -600});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(2, 2), kBlue);
  EXPECT_EQ(played.At(played.raster.Width() - 3, played.raster.Height() - 3), kBlue);
}

TEST(WmfPlayer, MetricModes_Should_BeginAtTheWindowsCorner_When_ItHasNoSize) {
  WmfFile file = BlueAreas();
  file.box.reset();
  file.Add(WmfFunction::setMapMode, {2}).Add(WmfFunction::setWindowOrg, {0, 0});
  file.Add(WmfFunction::polygon, {4, 400, -400, 800, -400, 800, -800, 400, -800});
  const PlayedMetafile played = Play(file);
  const int width = played.raster.Width(), height = played.raster.Height();
  EXPECT_EQ(played.At(width * 3 / 4, height * 3 / 4), kBlue);
  EXPECT_EQ(played.At(width / 4, height / 4), clWhite);
}

TEST(WmfPlayer, Window_Should_MoveAndScale) {
  const auto square = [](std::initializer_list<std::pair<WmfFunction, FieldBytes>> mapping) {
    WmfFile file = BlueAreas();
    for (const auto& [function, words] : mapping) file.Add(function, words);
    return Play(file.Add(WmfFunction::polygon, {4, 0, 0, 10, 0, 10, 10, 0, 10}));
  };
  EXPECT_EQ(square({{WmfFunction::offsetWindowOrg, FieldBytes().Words({-40, -50})}}).At(55, 45),
            kBlue);
  EXPECT_EQ(square({{WmfFunction::scaleWindowExt, FieldBytes().Words({2, 1, 4, 1})}}).At(35, 15),
            kBlue);
  EXPECT_EQ(square({{WmfFunction::scaleViewportExt, FieldBytes().Words({1, 2, 1, 4})}}).At(35, 15),
            kBlue);
  EXPECT_EQ(square({{WmfFunction::offsetViewportOrg, FieldBytes().Words({40, 50})}}).At(55, 45),
            kBlue);
}

TEST(WmfPlayer, Viewport_Should_BeTheWholePicture_WhateverItsNumbers) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setViewportExt, {8000, 10000});
  file.Add(WmfFunction::setViewportOrg, {4000, 5000});
  file.Add(WmfFunction::polygon, {4, 0, 0, 10, 0, 10, 10, 0, 10});
  EXPECT_EQ(Play(file).At(55, 45), kBlue);
  EXPECT_EQ(Play(file).At(45, 35), clWhite);
}

TEST(WmfPlayer, UpsideDownBox_Should_BeDrawnUpright) {
  WmfFile file = BlueAreas();
  file.box = {{0, 0, 100, -80}};
  file.Add(WmfFunction::polygon, {4, 0, 0, 50, 0, 50, -40, 0, -40});
  EXPECT_EQ(Play(file).At(20, 20), kBlue);
  EXPECT_EQ(Play(file).At(20, 60), clWhite);
}

/// One scanline of a region from (left, top) to (right, bottom).
FieldBytes RegionFields(int left, int top, int right, int bottom) {
  FieldBytes fields;
  fields.Words({0, 6}).Long(0).Words({0, 1, 2, left, top, right, bottom});
  return fields.Words({2, top, bottom, left, right, 2});
}

TEST(WmfPlayer, Regions_Should_ClipAndBePainted) {
  const auto with = [](WmfFunction function, std::initializer_list<int64_t> words, bool isClip) {
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::createRegion, RegionFields(10, 10, 60, 50)).Add(function, words);
    if (isClip) file.Add(WmfFunction::rectangle, {80, 100, 0, 0});
    return Play(file);
  };
  const auto isInside = [](const PlayedMetafile& played) {
    return played.At(30, 30) == kBlue && played.At(70, 30) == clWhite;
  };
  EXPECT_TRUE(isInside(with(WmfFunction::selectClipRegion, {3}, true)));
  EXPECT_TRUE(isInside(with(WmfFunction::selectObject, {3}, true)));
  EXPECT_TRUE(isInside(with(WmfFunction::intersectClipRect, {50, 60, 10, 10}, true)));
  EXPECT_TRUE(isInside(with(WmfFunction::paintRegion, {3}, false)));
  EXPECT_TRUE(isInside(with(WmfFunction::fillRegion, {3, 1}, false)));
  EXPECT_EQ(with(WmfFunction::invertRegion, {3}, false).At(30, 30), clBlack);
  const PlayedMetafile frame = with(WmfFunction::frameRegion, {3, 1, 4, 3}, false);
  EXPECT_EQ(frame.At(11, 30), kBlue);
  EXPECT_EQ(frame.At(30, 12), kBlue);
  EXPECT_EQ(frame.At(30, 30), clWhite);
  EXPECT_EQ(with(WmfFunction::excludeClipRect, {50, 60, 10, 10}, true).At(30, 30), clWhite);
  EXPECT_EQ(with(WmfFunction::selectClipRegion, {99}, true).At(70, 30), kBlue);
  EXPECT_THAT(with(WmfFunction::paintRegion, {1}, false).report.warnings,
              testing::ElementsAre(testing::HasSubstr("region")));
  WmfFile moved = BlueAreas();
  moved.Add(WmfFunction::intersectClipRect, {50, 60, 10, 10});
  moved.Add(WmfFunction::offsetClipRgn, {0, 30}).Add(WmfFunction::rectangle, {80, 100, 0, 0});
  EXPECT_EQ(Play(moved).At(20, 30), clWhite);
  EXPECT_EQ(Play(moved).At(80, 30), kBlue);
}

TEST(WmfPlayer, Bitmaps_Should_BeStretchedOverTheirPlace) {
  const auto blit = [](WmfFunction function, std::initializer_list<int64_t> words) {
    FieldBytes fields;
    return Play(BlueAreas().Add(function, fields.Words(words).Bytes(PackedDib(SixColors()))));
  };
  // Operation, usage, size and corner of the part, size and corner of the target.
  const PlayedMetafile dib =
      blit(WmfFunction::stretchDib, {0x20, 0xCC, 0, 2, 3, 0, 0, 20, 30, 20, 10});
  EXPECT_EQ(dib.At(15, 25), kRed);
  EXPECT_EQ(dib.At(35, 25), kBlue);
  EXPECT_EQ(dib.At(25, 35), clBlack);
  EXPECT_EQ(blit(WmfFunction::dibStretchBlt, {0x20, 0xCC, 2, 3, 0, 0, 20, 30, 20, 10}).At(15, 25),
            kRed);
  EXPECT_EQ(blit(WmfFunction::dibBitBlt, {0x20, 0xCC, 0, 0, 2, 3, 20, 10}).At(12, 20), kBlue);
  EXPECT_EQ(blit(WmfFunction::setDibToDev, {0, 2, 0, 0, 0, 2, 3, 20, 10}).At(12, 20), kBlue);
}

TEST(WmfPlayer, Blits_Should_UseTheBrush_When_ThereIsNoBitmap) {
  const auto blit = [](WmfFunction function, std::initializer_list<int64_t> words) {
    return Play(BlueAreas().Add(function, words)).At(20, 30);
  };
  EXPECT_EQ(blit(WmfFunction::patBlt, {0x21, 0xF0, 20, 30, 20, 10}), kBlue);
  EXPECT_EQ(blit(WmfFunction::dibBitBlt, {0x21, 0xF0, 0, 0, 0, 20, 30, 20, 10}), kBlue);
  EXPECT_EQ(blit(WmfFunction::dibStretchBlt, {0x21, 0xF0, 1, 1, 0, 0, 0, 20, 30, 20, 10}), kBlue);
  EXPECT_EQ(blit(WmfFunction::bitBlt, {0x21, 0xF0, 0, 0, 0, 20, 30, 20, 10}), kBlue);
  EXPECT_EQ(blit(WmfFunction::dibBitBlt, {0x20, 0xCC, 0, 0, 0, 20, 30, 20, 10}), clWhite);
}

/// A device-dependent bitmap: 16 x 1 pixels, the left half black.
FieldBytes DeviceBitmap() {
  FieldBytes fields;
  return fields.Words({0, 16, 1, 2}).Byte(1).Byte(1).Byte(0x00).Byte(0xFF);
}

TEST(WmfPlayer, DeviceBitmaps_Should_BeBlackAndWhite) {
  FieldBytes bit, stretch;
  bit.Words({0x20, 0xCC, 0, 0, 1, 16, 20, 10}).Bytes(DeviceBitmap().bytes);
  EXPECT_EQ(Play(BlueAreas().Add(WmfFunction::bitBlt, bit)).At(12, 20), clBlack);
  stretch.Words({0x20, 0xCC, 1, 16, 0, 0, 20, 32, 20, 10}).Bytes(DeviceBitmap().bytes);
  const PlayedMetafile played = Play(BlueAreas().Add(WmfFunction::stretchBlt, stretch));
  EXPECT_EQ(played.At(20, 30), clBlack);
  EXPECT_EQ(played.At(35, 30), clWhite);
}

TEST(WmfPlayer, PatternBrushes_Should_ShowTheirBitmap) {
  BmpFile columns;
  columns.width = 8;
  columns.bits = 1;
  columns.palette = {0x00FF00, 0xFF0000};
  columns.pixels = {0x0F, 0, 0, 0};
  const auto filled = [&](int style) {
    FieldBytes fields;
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::setTextColor, FieldBytes{kBlue});
    file.Add(WmfFunction::setBkColor, FieldBytes{0x808080});
    file.Add(WmfFunction::dibCreatePatternBrush,
             fields.Words({style, 0}).Bytes(PackedDib(columns)));
    file.Add(WmfFunction::selectObject, {3}).Add(WmfFunction::rectangle, {80, 100, 0, 0});
    return Play(file);
  };
  EXPECT_EQ(filled(5).At(17, 30), kGreen);
  EXPECT_EQ(filled(5).At(21, 30), kRed);
  EXPECT_EQ(filled(3).At(17, 30), kBlue) << "0 is the text color";
  EXPECT_EQ(filled(3).At(21, 30), 0x808080) << "1 is the background color";
}

TEST(WmfPlayer, Palettes_Should_GiveColorsByIndex) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createPalette, FieldBytes().Words({0x300, 2}).Longs({0x112233, 0x445566}));
  file.Add(WmfFunction::selectPalette, {3});
  file.Add(WmfFunction::setPixel, FieldBytes().Long(0x01000001).Words({5, 5}));
  EXPECT_EQ(Play(file).At(5, 5), 0x445566);
}

/// With a font of 30 units, which is handle 3.
WmfFile WithFont() {
  FieldBytes font;
  font.Words({-30, 0, 0, 0, 400}).Longs({0, 0}).Text(std::string_view("DejaVu Sans")).FillTo(50);
  WmfFile file = BlueAreas();
  return file.Add(WmfFunction::createFontIndirect, font).Add(WmfFunction::selectObject, {3});
}

TEST(WmfPlayer, Texts_Should_BePaintedWithTheFont) {
  WmfFile plain = WithFont(), extended = WithFont(), spread = WithFont();
  FieldBytes text, longer, steps;
  text.Word(3).Text(std::string_view("III")).PadTo(2).Words({20, 10});
  plain.Add(WmfFunction::textOut, text);
  longer.Words({20, 10, 3, 0}).Text(std::string_view("III"));
  extended.Add(WmfFunction::extTextOut, longer);
  steps.Words({20, 10, 3, 0}).Text(std::string_view("III")).PadTo(2).Words({30, 30, 10});
  spread.Add(WmfFunction::extTextOut, steps);
  const PlayedMetafile played = Play(plain);
  EXPECT_GT(played.Painted(), 50);
  EXPECT_EQ(played.Painted(), Play(extended).Painted());
  const auto columns = [](const PlayedMetafile& shown, int left, int right) {
    int count = 0;
    for (int x = left; x < right; ++x) count += shown.At(x, 35) == clWhite ? 0 : 1;
    return count;
  };
  EXPECT_EQ(columns(played, 65, 100), 0);
  EXPECT_GT(columns(Play(spread), 65, 100), 0);
}

TEST(WmfPlayer, TextBoxes_Should_BeFilled) {
  WmfFile file = WithFont();
  FieldBytes text;
  text.Words({20, 10, 1, 2, 5, 10, 95, 70}).Text(std::string_view("I"));
  file.Add(WmfFunction::setBkColor, FieldBytes{kGreen}).Add(WmfFunction::extTextOut, text);
  EXPECT_EQ(Play(file).At(90, 65), kGreen);
  EXPECT_EQ(Play(file).At(97, 65), clWhite);
}

TEST(WmfPlayer, Damage_Should_CostTheRecordAlone) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::polygon, {9999, 1}).Add(WmfFunction::polyPolygon, {0xFFFF, 1});
  file.Add(WmfFunction::createRegion, {0, 0, 0, 0, 0, 0x7FFF, 0, 0});
  file.Add(WmfFunction::textOut, {0x7FFF}).Add(WmfFunction::rectangle, {1});
  file.Add(WmfFunction::stretchDib, {0x20, 0xCC, 0}).Add(WmfFunction::escape, {15, 2, 0});
  file.Add(WmfFunction::rectangle, {10, 10, 0, 0});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(5, 5), kBlue);
  EXPECT_THAT(played.report.warnings,
              testing::ElementsAre("metafile: a record is too short for its fields"));
}

}  // namespace
}  // namespace rasterkit::test
