// Objects of damaged or unusual files, in records of both formats.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kRed = 0x0000FF, kBlue = 0xFF0000;
constexpr int64_t kGeometric = 0x10000, kFlatCap = 0x200, kUserDashes = 7;
constexpr int64_t kNullPen = 0x80000008;

PlayedMetafile Play(const EmfFile& file) {
  return PlayedMetafile(file.Bytes());
}
PlayedMetafile Play(const WmfFile& file) {
  return PlayedMetafile(file.Bytes());
}

EmfFile EmfWithLine(EmfType create, const FieldBytes& pen) {
  EmfFile file;
  file.Add(create, pen).Add(EmfType::selectObject, {1});
  return file.Add(EmfType::moveTo, {20, 40}).Add(EmfType::lineTo, {60, 40});
}

TEST(EmfObjects, PlainPens_Should_HaveRoundEnds_WhateverElseTheirStyleSays) {
  const PlayedMetafile played =
      Play(EmfWithLine(EmfType::createPen, {1, kGeometric | kFlatCap, 20, 0, kRed}));
  EXPECT_EQ(played.At(65, 40), kRed);
}

TEST(EmfObjects, ExtendedPens_Should_DoWithoutDashes_When_TheRecordEndsBeforeTheirNumber) {
  const FieldBytes pen{1, 0, 0, 0, 0, kGeometric, 20, 0, kRed, 0};
  EXPECT_EQ(Play(EmfWithLine(EmfType::extCreatePen, pen)).At(40, 34), kRed);
}

TEST(EmfObjects, ExtendedPens_Should_UseTheFirstDashes_When_MoreAreStatedThanAreUsed) {
  FieldBytes pen{1, 0, 0, 0, 0, kGeometric | kFlatCap | kUserDashes, 4, 0, kRed, 0, 0x7FFFFFFF};
  for (int i = 0; i < 16; ++i) pen.Long(5);
  const PlayedMetafile played = Play(EmfWithLine(EmfType::extCreatePen, pen));
  EXPECT_EQ(played.At(22, 40), kRed);
  EXPECT_EQ(played.At(27, 40), clWhite);
  EXPECT_EQ(played.At(32, 40), kRed);
}

TEST(EmfObjects, ExtendedPens_Should_BeLeftOut_When_DashesAreMissing) {
  FieldBytes pen{1, 0, 0, 0, 0, kGeometric | kUserDashes, 4, 0, kRed, 0, 3, 5, 5};
  const PlayedMetafile played = Play(EmfWithLine(EmfType::extCreatePen, pen));
  EXPECT_EQ(played.report.warnings.size(), 1u);
  EXPECT_EQ(played.At(22, 42), clWhite);
}

TEST(EmfObjects, PaletteChanges_Should_BeginWhereTheySay_AndEndWithThePalette) {
  const auto changed = [](int64_t start, std::initializer_list<int64_t> entries) {
    EmfFile file;
    FieldBytes palette{3};
    palette.Words({0x300, 3}).Longs({0x111111, 0x222222, 0x333333});
    file.Add(EmfType::createPalette, palette).Add(EmfType::selectPalette, {3});
    FieldBytes changes{3, start, static_cast<int64_t>(entries.size())};
    file.Add(EmfType::setPaletteEntries, changes.Longs(entries));
    for (int i = 0; i < 3; ++i) file.Add(EmfType::setPixel, {i, 0, 0x01000000 + i});
    const PlayedMetafile played = Play(file);
    return std::array{played.At(0, 0), played.At(1, 0), played.At(2, 0)};
  };
  EXPECT_EQ(changed(0, {0xAAAAAA}), (std::array{0xAAAAAA, 0x222222, 0x333333}));
  EXPECT_EQ(changed(2, {0xAAAAAA, 0xBBBBBB}), (std::array{0x111111, 0x222222, 0xAAAAAA}));
  for (const int64_t beyond : {int64_t{3}, int64_t{0x7FFFFFFF}, int64_t{0xFFFFFFFF}}) {
    EXPECT_EQ(changed(beyond, {0xAAAAAA}), (std::array{0x111111, 0x222222, 0x333333})) << beyond;
  }
}

TEST(EmfObjects, Deleting_Should_LeaveWhatIsSelected) {
  EmfFile file;
  file.Add(EmfType::createBrush, {1, 0, kBlue, 0}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::selectObject, {kNullPen}).Add(EmfType::deleteObject, {1});
  file.Add(EmfType::deleteObject, {1}).Add(EmfType::deleteObject, {kNullPen});
  file.Add(EmfType::createBrush, {1, 0, kRed, 0});
  file.Add(EmfType::rectangle, {0, 0, 40, 40});
  EXPECT_EQ(Play(file).At(20, 20), kBlue);
}

TEST(EmfState, MiterLimits_Should_BeWholeNumbersOrSingles) {
  const auto spike = [](const FieldBytes& limit) {
    EmfFile file;
    constexpr int64_t kMiterJoin = 0x2000;
    const FieldBytes pen{1, 0, 0, 0, 0, kGeometric | kFlatCap | kMiterJoin, 8, 0, kRed, 0, 0};
    file.Add(EmfType::extCreatePen, pen).Add(EmfType::selectObject, {1});
    file.Add(EmfType::setMiterLimit, limit);
    file.Add(EmfType::polyline16, FieldBytes{0, 0, 0, 0, 3}.Words({10, 30, 60, 40, 10, 50}));
    return Play(file).At(70, 40) == kRed;
  };
  EXPECT_TRUE(spike({10}));
  EXPECT_FALSE(spike({2}));
  EXPECT_TRUE(spike(FieldBytes().Single(10)));
  EXPECT_FALSE(spike(FieldBytes().Single(2)));
}

TEST(EmfShapes, Gradients_Should_BeLeftOut_When_TheirModeIsNone) {
  for (const int64_t mode : {3, 4, 77}) {
    FieldBytes fields{0, 0, 0, 0, 2, 1, mode};
    fields.Longs({0, 0}).Words({0, 0, 0, 0}).Longs({100, 80}).Words({0xFF00, 0, 0, 0});
    EXPECT_EQ(Play(EmfFile().Add(EmfType::gradientFill, fields.Longs({0, 1, 0}))).Painted(), 0);
  }
}

/// Size of the header, type, count, size, box, rectangle.
FieldBytes OneRectRegion(int64_t headerBytes, int64_t count) {
  FieldBytes fields{0, 0, 0, 0, 48, headerBytes, 1, count, 16};
  if (headerBytes >= 32) fields.Longs({10, 10, 60, 50});
  if (headerBytes > 32) fields.FillTo(fields.bytes.size() + headerBytes - 32);
  return fields.Longs({10, 10, 60, 50});
}

TEST(EmfShapes, Regions_Should_BeginBehindTheirHeader_WhateverItsSize) {
  for (const int64_t headerBytes : {32, 40}) {
    const PlayedMetafile played =
        Play(EmfFile().Add(EmfType::invertRgn, OneRectRegion(headerBytes, 1)));
    EXPECT_EQ(played.At(30, 30), clBlack) << headerBytes;
    EXPECT_EQ(played.At(70, 30), clWhite) << headerBytes;
  }
  for (const int64_t headerBytes : {0, 4, 12}) {
    // A header size below the minimum counts as the minimum.
    const FieldBytes brief{0, 0, 0, 0, 48, headerBytes, 1, 1, 10, 10, 60, 50};
    const PlayedMetafile played = Play(EmfFile().Add(EmfType::invertRgn, brief));
    EXPECT_EQ(played.At(30, 30), clBlack) << headerBytes;
  }
  for (const int64_t headerBytes : {int64_t{1000}, int64_t{0xFFFFFFFF}}) {
    FieldBytes fields = OneRectRegion(32, 1);
    for (size_t i = 0; i < 4; ++i) {
      fields.bytes[20 + i] = static_cast<uint8_t>(headerBytes >> (8 * i));
    }
    const PlayedMetafile played = Play(EmfFile().Add(EmfType::invertRgn, fields));
    EXPECT_EQ(played.Painted(), 0) << headerBytes;
    EXPECT_THAT(played.report.warnings, testing::ElementsAre(testing::HasSubstr("too short")));
  }
}

TEST(EmfShapes, Regions_Should_CostTheRecordAlone_When_RectanglesAreMissing) {
  for (const int64_t count : {int64_t{2}, int64_t{0x7FFFFFFF}, int64_t{0xFFFFFFFF}}) {
    const PlayedMetafile played = Play(EmfFile().Add(EmfType::invertRgn, OneRectRegion(32, count)));
    EXPECT_EQ(played.Painted(), 0) << count;
    EXPECT_THAT(played.report.warnings, testing::ElementsAre(testing::HasSubstr("too short")));
  }
}

TEST(EmfWarnings, Should_BeAFew_When_EveryRecordHasAnother) {
  EmfFile file;
  for (int i = 0; i < 60; ++i) {
    FieldBytes fields{0, 0, 0, 0, 0, 0, 0, 0, 3, 2, 80, 4, 80, 0, 0, 0xCC0020, 9, 9};
    // A bitmap whose header states 200 bytes and more.
    file.Add(EmfType::stretchDibits, fields.Long(200 + i));
    file.Add(EmfType::rectangle, {1});
  }
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.report.warnings.size(), 20u);
  EXPECT_EQ(played.report.skipped, 120u);
}

/// A blue brush (0) is selected, and no pen (1).
WmfFile BlueAreas() {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
  return file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
}

TEST(WmfObjects, Brushes_Should_DoWithoutAHatch_When_TheRecordEndsBeforeIt) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kRed));
  file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::rectangle, {40, 40, 0, 0});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(20, 20), kRed);
  EXPECT_EQ(played.report.warnings, std::vector<std::string>());
}

TEST(WmfObjects, Handles_Should_BeNone_When_TheObjectIsGone) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kRed).Word(0));
  file.Add(WmfFunction::deleteObject, {2}).Add(WmfFunction::deleteObject, {2});
  file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::selectObject, {0xFFFF});
  file.Add(WmfFunction::rectangle, {40, 40, 0, 0});
  EXPECT_EQ(Play(file).At(20, 20), kBlue);
  // A handle that is deleted twice is assigned once.
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kRed).Word(0));
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(0).Word(0));
  file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::rectangle, {40, 40, 0, 0});
  EXPECT_EQ(Play(file).At(20, 20), kRed);
}

/// Scanlines of a region: number of edges, top, bottom, edges, number of edges.
FieldBytes Region(std::initializer_list<std::initializer_list<int64_t>> rows) {
  FieldBytes fields;
  fields.Words({0, 6, 0, 0, 0, static_cast<int64_t>(rows.size()), 2, 0, 0, 100, 80});
  for (const auto& row : rows) fields.Words(row);
  return fields;
}

TEST(WmfObjects, Regions_Should_HaveAllPairsOfEdges_AndNoOddOne) {
  const auto painted = [](const FieldBytes& region) {
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::createRegion, region).Add(WmfFunction::paintRegion, {2});
    return Play(file);
  };
  const PlayedMetafile two = painted(Region({{4, 0, 20, 10, 30, 50, 70, 4}}));
  EXPECT_EQ(two.At(20, 10), kBlue);
  EXPECT_EQ(two.At(40, 10), clWhite);
  EXPECT_EQ(two.At(60, 10), kBlue);
  const PlayedMetafile odd =
      painted(Region({{3, 0, 20, 10, 30, 50, 3}, {2, 40, 60, 10, 30, 2}, {0, 60, 70, 0}}));
  EXPECT_EQ(odd.At(20, 10), kBlue);
  EXPECT_EQ(odd.At(60, 10), clWhite);
  EXPECT_EQ(odd.At(20, 50), kBlue);
  EXPECT_EQ(odd.report.warnings, std::vector<std::string>());
}

TEST(WmfObjects, Patterns_Should_HaveColors_WhateverTheirTableIsSaidToHold) {
  BmpFile columns;
  columns.width = 8;
  columns.bits = 1;
  columns.palette = {0, 0xFFFFFF};
  columns.pixels = {0x0F, 0, 0, 0};
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setTextColor, FieldBytes{kRed});
  file.Add(WmfFunction::dibCreatePatternBrush,
           FieldBytes().Words({3, 1}).Bytes(PackedDib(columns)));
  file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::rectangle, {80, 100, 0, 0});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(17, 30), kRed);
  EXPECT_EQ(played.At(21, 30), clWhite);
}

TEST(WmfObjects, NoRegion_Should_TakeTheClippingAway) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::intersectClipRect, {10, 10, 0, 0});
  file.Add(WmfFunction::selectClipRegion, {0}).Add(WmfFunction::rectangle, {60, 60, 0, 0});
  EXPECT_EQ(Play(file).At(40, 40), kBlue);
}

TEST(WmfMapping, EmptyViewports_Should_BeIgnored_AndTheFirstOneBeTheWholePicture) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setViewportExt, {0, 50}).Add(WmfFunction::setViewportExt, {50, 0});
  file.Add(WmfFunction::setViewportExt, {800, 1000});
  file.Add(WmfFunction::setViewportExt, {400, 500});
  file.Add(WmfFunction::rectangle, {80, 100, 0, 0});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(45, 35), kBlue);
  EXPECT_EQ(played.At(55, 35), clWhite);
  EXPECT_EQ(played.At(45, 45), clWhite);
}

}  // namespace
}  // namespace rasterkit::test
