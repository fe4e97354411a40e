// A WMF file that is converted to EMF draws the same; one test per family of records.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/emf/emf_records.h>
#include <rasterkit/metafiles/read_metafile_facts.h>

#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"
#include "tests/support/same_pixels.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr int64_t kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;

/// 100 x 80 units of one pixel each; a red pen (0) and a blue brush (1) are selected.
WmfFile RedAndBlue() {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({0, 1, 0}).Long(kRed));
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  return file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
}

/// The same without a pen, which is handle 2.
WmfFile BlueAreas() {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
  return file.Add(WmfFunction::selectObject, {2});
}

/// With a font of 20 units, which is handle 3.
WmfFile WithFont(int escapement = 0, const char* face = "DejaVu Sans") {
  FieldBytes font;
  font.Words({-20, 0, escapement, escapement, 400}).Longs({0, 0});
  font.Text(std::string_view(face)).FillTo(50);
  WmfFile file = BlueAreas();
  return file.Add(WmfFunction::createFontIndirect, font).Add(WmfFunction::selectObject, {3});
}

/// Expects equal drawings at the size of the picture and larger, and that something is drawn.
void ExpectSame(const WmfFile& file) {
  const std::vector<uint8_t> wmf = file.Bytes(), emf = EmfOf(wmf);
  const MetafileFacts before = ReadMetafileFacts(wmf), after = ReadMetafileFacts(emf);
  EXPECT_EQ(after.kind, MetafileKind::emf);
  EXPECT_EQ(after.warnings, std::vector<std::string>());
  EXPECT_EQ(after.width, before.width);
  EXPECT_EQ(after.height, before.height);
  EXPECT_EQ(after.widthMm100, before.widthMm100);
  EXPECT_EQ(after.heightMm100, before.heightMm100);
  for (const int scale : {1, 3}) {
    const PlayedMetafile old(wmf, 100 * scale, 80 * scale), now(emf, 100 * scale, 80 * scale);
    EXPECT_GT(old.Painted(), 0);
    EXPECT_TRUE(SameColors(old.raster, now.raster)) << "at scale " << scale;
    EXPECT_THAT(now.report.warnings, testing::IsEmpty());
  }
}

TEST(WmfToEmf, Lines_Should_BeTheSame) {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::moveTo, {20, 10}).Add(WmfFunction::lineTo, {31, 50});
  file.Add(WmfFunction::polyline, {3, 10, 40, 50, 40, 55, 60});
  ExpectSame(file);
}

TEST(WmfToEmf, Pens_Should_BeTheSame) {
  for (const int style : {0, 1, 2, 3, 4, 6}) {
    for (const int width : {0, 1, 5}) {
      SCOPED_TRACE(testing::Message() << "style " << style << " width " << width);
      WmfFile file = RedAndBlue();
      file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({style, width, 0}).Long(kGreen));
      file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::setBkMode, {1});
      ExpectSame(file.Add(WmfFunction::polyline, {4, 10, 10, 80, 20, 30, 70, 90, 70}));
    }
  }
}

TEST(WmfToEmf, Shapes_Should_BeTheSame) {
  const std::pair<WmfFunction, std::vector<int64_t>> shapes[] = {
      {WmfFunction::rectangle, {50, 60, 10, 10}},
      {WmfFunction::rectangle, {10, 10, 50, 60}},
      {WmfFunction::ellipse, {51, 60, 10, 13}},
      {WmfFunction::roundRect, {20, 14, 50, 60, 10, 10}},
      {WmfFunction::arc, {80, 35, 0, 35, 50, 60, 10, 10}},
      {WmfFunction::pie, {80, 35, 0, 45, 50, 60, 10, 10}},
      {WmfFunction::chord, {70, 90, 5, 10, 50, 60, 10, 10}},
      {WmfFunction::polygon, {4, 10, 10, 60, 10, 60, 50, 15, 55}},
      {WmfFunction::polyPolygon, {2, 3, 4, 10, 10, 30, 10, 30, 30, 20, 15, 70, 10, 70, 30, 50, 30}},
  };
  for (const auto& [function, words] : shapes) {
    FieldBytes fields;
    for (const int64_t word : words) fields.Word(word);
    SCOPED_TRACE(static_cast<int>(function));
    WmfFile lines = RedAndBlue();
    lines.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(1).Long(0).Word(0));
    ExpectSame(lines.Add(WmfFunction::selectObject, {2}).Add(function, fields));
    ExpectSame(RedAndBlue().Add(function, fields));
    if (function != WmfFunction::arc) ExpectSame(BlueAreas().Add(function, fields));
  }
}

TEST(WmfToEmf, OutlinedBoxes_Should_EndAtTheSamePixel_When_UnitsAreSmaller) {
  for (const int turn : {1, -1}) {
    WmfFile file = RedAndBlue();
    // 2.37 units per pixel across, 3.1 down, and a window that begins between two pixels.
    file.Add(WmfFunction::setWindowExt, {turn * 248, 237});
    file.Add(WmfFunction::setWindowOrg, {turn * 1, 1});
    for (int i = 0; i < 10; ++i) {
      file.Add(WmfFunction::rectangle, {turn * 61 + i, 10 + 23 * i, turn * 13, 3 + 21 * i});
    }
    const std::vector<uint8_t> wmf = file.Bytes();
    const PlayedMetafile old(wmf), now(EmfOf(wmf));
    EXPECT_GT(old.Painted(), 100);
    EXPECT_TRUE(SameColors(old.raster, now.raster)) << turn;
  }
}

TEST(WmfToEmf, Arcs_Should_RunTheSameWay_When_ThePageIsUpsideDown) {
  WmfFile file = RedAndBlue();
  file.box = {{0, 80, 100, 0}};
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(1).Long(0).Word(0));
  file.Add(WmfFunction::selectObject, {2});
  ExpectSame(file.Add(WmfFunction::pie, {70, 90, 5, 10, 10, 60, 50, 10}));
}

TEST(WmfToEmf, PolygonsThatCrossThemselves_Should_BeTheSame) {
  for (const int mode : {1, 2}) {
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::setPolyFillMode, {mode});
    ExpectSame(file.Add(WmfFunction::polygon, {5, 50, 5, 80, 70, 5, 30, 95, 30, 20, 70}));
  }
}

TEST(WmfToEmf, PixelsAndFloods_Should_BeTheSame) {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::setPixel, FieldBytes().Long(kGreen).Words({44, 33}));
  file.Add(WmfFunction::polyline, {5, 10, 10, 60, 10, 60, 50, 10, 50, 10, 10});
  WmfFile border = file, surface = file;
  ExpectSame(border.Add(WmfFunction::floodFill, FieldBytes().Long(kRed).Words({20, 20})));
  ExpectSame(
      surface.Add(WmfFunction::extFloodFill, FieldBytes().Word(1).Long(0xFFFFFF).Words({70, 80})));
}

TEST(WmfToEmf, Handles_Should_BeThoseOfTheWindowsMetafile) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createFontIndirect, {1});  // damaged, but takes handle 3
  file.Add(WmfFunction::deleteObject, {1}).Add(WmfFunction::deleteObject, {0});
  for (const int64_t color : {kGreen, kRed, int64_t{0}}) {  // 0, 1, 4
    file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(color).Word(0));
  }
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::rectangle, {9, 9, 0, 0});
  file.Add(WmfFunction::selectObject, {1}).Add(WmfFunction::rectangle, {9, 29, 0, 20});
  file.Add(WmfFunction::selectObject, {4}).Add(WmfFunction::rectangle, {9, 49, 0, 40});
  ExpectSame(file);
}

TEST(WmfToEmf, Brushes_Should_BeTheSame) {
  for (int hatch = 0; hatch < 6; ++hatch) {
    WmfFile file = RedAndBlue();
    file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(2).Long(kGreen).Word(hatch));
    file.Add(WmfFunction::setBkColor, FieldBytes{0xC0C0C0}).Add(WmfFunction::selectObject, {2});
    ExpectSame(file.Add(WmfFunction::rectangle, {70, 80, 5, 5}));
  }
  BmpFile columns;
  columns.width = 8;
  columns.bits = 1;
  columns.palette = {0x00FF00, 0xFF0000};
  columns.pixels = {0x0F, 0, 0, 0};
  for (const int style : {3, 5}) {
    FieldBytes fields;
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::setTextColor, FieldBytes{kBlue});
    file.Add(WmfFunction::setBkColor, FieldBytes{0x808080});
    file.Add(WmfFunction::dibCreatePatternBrush,
             fields.Words({style, 0}).Bytes(PackedDib(columns)));
    file.Add(WmfFunction::selectObject, {3}).Add(WmfFunction::rectangle, {80, 100, 0, 0});
    ExpectSame(file);
  }
}

TEST(WmfToEmf, DeviceBitmapBrushes_Should_BeTheSame) {
  FieldBytes brush;
  brush.Words({0, 8, 1, 2}).Byte(1).Byte(1).Long(0).FillTo(32).Byte(0x0F).Byte(0);
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setTextColor, FieldBytes{kRed});
  file.Add(WmfFunction::setBkColor, FieldBytes{kGreen});
  file.Add(WmfFunction::createPatternBrush, brush).Add(WmfFunction::selectObject, {3});
  ExpectSame(file.Add(WmfFunction::rectangle, {80, 100, 0, 0}));
}

TEST(WmfToEmf, DeletedObjects_Should_NotBeSelected) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kGreen).Word(0));
  file.Add(WmfFunction::deleteObject, {3}).Add(WmfFunction::selectObject, {3});
  file.Add(WmfFunction::rectangle, {40, 50, 0, 0});
  const std::vector<uint8_t> emf = EmfOf(file.Bytes());
  EXPECT_EQ(PlayedMetafile(emf).At(20, 20), kBlue);
  std::vector<uint32_t> handles;
  EmfRecords records(emf);
  while (const auto record = records.Next()) {
    if (record->type == EmfType::deleteObject) handles.push_back(record->Fields().Long());
  }
  EXPECT_THAT(handles, testing::ElementsAre(4));
}

TEST(WmfToEmf, Modes_Should_BeTheSame) {
  WmfFile gaps = BlueAreas();
  gaps.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(2).Long(kGreen).Word(1));
  gaps.Add(WmfFunction::setBkColor, FieldBytes{kRed}).Add(WmfFunction::setBkMode, {1});
  gaps.Add(WmfFunction::selectObject, {3}).Add(WmfFunction::rectangle, {80, 100, 0, 0});
  ExpectSame(gaps);
  WmfFile smooth = BlueAreas();
  FieldBytes bitmap;
  bitmap.Words({0x20, 0xCC, 0, 2, 3, 0, 0, 40, 60, 20, 10}).Bytes(PackedDib(SixColors()));
  smooth.Add(WmfFunction::setStretchBltMode, {4}).Add(WmfFunction::stretchDib, bitmap);
  ExpectSame(smooth);
  WmfFile mirrored = BlueAreas();
  mirrored.Add(WmfFunction::setLayout, {1, 0}).Add(WmfFunction::rectangle, {40, 30, 20, 10});
  ExpectSame(mirrored);
}

TEST(WmfToEmf, State_Should_BeSavedAndRestored) {
  WmfFile file = RedAndBlue();
  file.Add(WmfFunction::saveDc).Add(WmfFunction::setRop2, {7});
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
  file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::offsetWindowOrg, {-7, 3});
  file.Add(WmfFunction::rectangle, {19, 19, 5, 5}).Add(WmfFunction::restoreDc, {-1});
  file.Add(WmfFunction::rectangle, {9, 39, 0, 20}).Add(WmfFunction::offsetWindowOrg, {-30, 0});
  ExpectSame(file.Add(WmfFunction::rectangle, {9, 39, 0, 20}));
}

TEST(WmfToEmf, Mapping_Should_BeTheSame) {
  const std::vector<std::pair<WmfFunction, std::vector<int64_t>>> mappings[] = {
      {{WmfFunction::setWindowOrg, {-10, -10}}, {WmfFunction::setWindowExt, {20, 20}}},
      {{WmfFunction::offsetWindowOrg, {-40, -50}}},
      {{WmfFunction::setWindowOrg, {-20, -10}}, {WmfFunction::offsetWindowOrg, {-4, -5}}},
      {{WmfFunction::scaleWindowExt, {2, 1, 4, 1}}},
      {{WmfFunction::scaleViewportExt, {1, 2, 1, 4}}},
      {{WmfFunction::offsetViewportOrg, {40, 50}}, {WmfFunction::offsetViewportOrg, {4, 5}}},
      {{WmfFunction::setViewportExt, {8000, 10000}}, {WmfFunction::setViewportOrg, {4000, 5000}}},
      {{WmfFunction::setViewportExt, {8000, 10000}}, {WmfFunction::setViewportExt, {2000, 5000}}},
      {{WmfFunction::setMapMode, {1}}},
      {{WmfFunction::setMapMode, {7}}},
      {{WmfFunction::setMapMode, {2}}, {WmfFunction::setWindowOrg, {30, -20}}},
      {{WmfFunction::setMapMode, {7}},
       {WmfFunction::setWindowExt, {100, 100}},
       {WmfFunction::setWindowOrg, {-30, -5}}},
  };
  for (const auto& mapping : mappings) {
    WmfFile file = BlueAreas();
    for (const auto& [function, words] : mapping) {
      FieldBytes fields;
      for (const int64_t word : words) fields.Word(word);
      file.Add(function, fields);
    }
    SCOPED_TRACE(static_cast<int>(mapping.front().first));
    ExpectSame(file.Add(WmfFunction::polygon, {4, 0, 0, 10, 0, 10, 10, 0, 10}));
  }
}

/// A region of two scanlines.
FieldBytes TwoRows() {
  FieldBytes fields;
  fields.Words({0, 6}).Long(0).Words({0, 2, 2, 10, 10, 90, 70});
  fields.Words({2, 10, 30, 10, 60, 2});
  return fields.Words({2, 30, 70, 40, 90, 2});
}

TEST(WmfToEmf, Regions_Should_BeTheSame) {
  const auto with = [](const FieldBytes& region, WmfFunction function,
                       std::initializer_list<int64_t> words, bool isClip) {
    SCOPED_TRACE(static_cast<int>(function));
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::createRegion, region).Add(function, words);
    if (isClip) file.Add(WmfFunction::rectangle, {80, 100, 0, 0});
    ExpectSame(file);
  };
  FieldBytes one;
  one.Words({0, 6}).Long(0).Words({0, 1, 2, 10, 10, 60, 50, 2, 10, 50, 10, 60, 2});
  for (const FieldBytes& region : {one, TwoRows()}) {
    with(region, WmfFunction::selectClipRegion, {3}, true);
    with(region, WmfFunction::selectObject, {3}, true);
    with(region, WmfFunction::paintRegion, {3}, false);
    with(region, WmfFunction::fillRegion, {3, 1}, false);
    with(region, WmfFunction::invertRegion, {3}, false);
    with(region, WmfFunction::frameRegion, {3, 1, 4, 3}, false);
  }
  with(one, WmfFunction::intersectClipRect, {50, 60, 10, 10}, true);
  with(one, WmfFunction::excludeClipRect, {50, 60, 10, 10}, true);
  WmfFile moved = BlueAreas();
  moved.Add(WmfFunction::intersectClipRect, {50, 60, 10, 10});
  moved.Add(WmfFunction::offsetClipRgn, {7, 9});
  ExpectSame(moved.Add(WmfFunction::rectangle, {80, 100, 0, 0}));
}

TEST(WmfToEmf, Bitmaps_Should_BeTheSame) {
  const auto blit = [](WmfFunction function, std::initializer_list<int64_t> words,
                       const std::vector<uint8_t>& bitmap) {
    SCOPED_TRACE(static_cast<int>(function));
    FieldBytes fields;
    ExpectSame(BlueAreas().Add(function, fields.Words(words).Bytes(bitmap)));
  };
  const std::vector<uint8_t> dib = PackedDib(SixColors());
  const std::vector<uint8_t> ddb =
      FieldBytes().Words({0, 16, 1, 2}).Byte(1).Byte(1).Byte(0).Byte(255).bytes;
  blit(WmfFunction::stretchDib, {0x20, 0xCC, 0, 2, 3, 0, 0, 20, 30, 20, 10}, dib);
  blit(WmfFunction::stretchDib, {0x20, 0xCC, 0, 1, 2, 0, 1, -20, 30, 40, 10}, dib);
  blit(WmfFunction::dibStretchBlt, {0x46, 0x66, 2, 3, 0, 0, 20, 30, 20, 10}, dib);
  blit(WmfFunction::dibBitBlt, {0x20, 0xCC, 0, 0, 2, 3, 20, 10}, dib);
  blit(WmfFunction::setDibToDev, {0, 2, 0, 0, 0, 2, 3, 20, 10}, dib);
  blit(WmfFunction::bitBlt, {0x20, 0xCC, 0, 0, 1, 16, 20, 10}, ddb);
  blit(WmfFunction::stretchBlt, {0x20, 0xCC, 1, 16, 0, 0, 20, 32, 20, 10}, ddb);
  // A header of 18 bytes, which is not a multiple of four.
  BmpFile core;
  core.headerBytes = 12;
  core.width = 4;
  core.bits = 1;
  core.palette = {0xFF0000, 0x0000FF};
  core.pixels = {0xA0, 0, 0, 0};
  blit(WmfFunction::stretchDib, {0x20, 0xCC, 0, 1, 4, 0, 0, 20, 40, 20, 10}, PackedDib(core));
  blit(WmfFunction::patBlt, {0x21, 0xF0, 20, 30, 20, 10}, {});
  blit(WmfFunction::dibBitBlt, {0x21, 0xF0, 0, 0, 0, 20, 30, 20, 10}, {});
  blit(WmfFunction::dibStretchBlt, {0x49, 0x5A, 1, 1, 0, 0, 0, 20, 30, 20, 10}, {});
}

TEST(WmfToEmf, Palettes_Should_GiveTheSameColors) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createPalette, FieldBytes().Words({0x300, 2}).Longs({0x112233, 0x445566}));
  file.Add(WmfFunction::selectPalette, {3});
  ExpectSame(file.Add(WmfFunction::setPixel, FieldBytes().Long(0x01000001).Words({5, 5})));
}

TEST(WmfToEmf, Texts_Should_BeTheSame) {
  FieldBytes text, steps, box;
  text.Word(3).Text(std::string_view("Ab\xE9")).PadTo(2).Words({30, 10});
  steps.Words({30, 10, 3, 0}).Text(std::string_view("III")).PadTo(2).Words({30, 25, 10});
  box.Words({20, 10, 2, 6, 5, 10, 25, 70}).Text(std::string_view("Hi"));
  for (const int escapement : {0, 300}) {
    ExpectSame(WithFont(escapement).Add(WmfFunction::textOut, text));
    ExpectSame(WithFont(escapement).Add(WmfFunction::extTextOut, steps));
  }
  WmfFile boxed = WithFont();
  boxed.Add(WmfFunction::setBkColor, FieldBytes{kGreen}).Add(WmfFunction::setTextAlign, {24});
  ExpectSame(boxed.Add(WmfFunction::extTextOut, box));
  ExpectSame(WithFont(0, "Symbol").Add(WmfFunction::textOut, text));
  WmfFile spread = WithFont();
  FieldBytes words;
  words.Word(4).Text(std::string_view("i i ")).Words({30, 10});
  spread.Add(WmfFunction::setTextJustification, {2, 20}).Add(WmfFunction::setTextAlign, {1});
  ExpectSame(spread.Add(WmfFunction::textOut, words).Add(WmfFunction::textOut, words));
}

TEST(WmfToEmf, RoomBetweenLetters_Should_ComeNearIt) {
  FieldBytes text;
  text.Word(3).Text(std::string_view("III")).PadTo(2).Words({30, 10});
  WmfFile file = WithFont();
  file.Add(WmfFunction::setTextCharExtra, {25}).Add(WmfFunction::textOut, text);
  const PlayedMetafile now(EmfOf(file.Bytes()));
  const auto ink = [&](int left, int right) {
    int count = 0;
    for (int y = 0; y < 80; ++y) {
      for (int x = left; x < right; ++x) count += now.At(x, y) == clWhite ? 0 : 1;
    }
    return count;
  };
  EXPECT_GT(ink(10, 16), 0);
  EXPECT_EQ(ink(18, 38), 0);
  EXPECT_GT(ink(40, 48), 0);
  EXPECT_GT(ink(70, 79), 0);
}

TEST(WmfToEmf, Damage_Should_CostTheRecordAlone) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::polygon, {9999, 1}).Add(WmfFunction::polyPolygon, {0xFFFF, 1});
  file.Add(WmfFunction::textOut, {0x7FFF}).Add(WmfFunction::rectangle, {1});
  file.Add(WmfFunction::stretchDib, {0x20, 0xCC, 0}).Add(WmfFunction::escape, {15, 2, 0});
  file.Add(WmfFunction::rectangle, {10, 10, 0, 0});
  file.hasEnd = false;
  ExpectSame(file);
}

}  // namespace
}  // namespace rasterkit::test
