// Hostile records: every kind of work is charged, and playback stops when its work budget is
// exceeded. Extreme numbers neither hang nor exhaust memory. No test reads a clock: unlimited work
// would never return.

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>

#include "tests/support/drawing_paper.h"
#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;
using testing::HasSubstr;

constexpr int64_t kFar = 0x7FFFFFFF;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

/// A file made of a preparation and of records that are repeated.
struct Repeated {
  const char* name;
  EmfFile once;
  EmfFile again;

  std::vector<uint8_t> Bytes(int times) const {
    EmfFile file = once;
    for (int i = 0; i < times; ++i) {
      file.records.insert(file.records.end(), again.records.begin(), again.records.end());
    }
    return file.Bytes();
  }
};

/// A region with one rectangle in every other pixel of every other row.
FieldBytes Checkered(int columns, int rows) {
  FieldBytes region{32, 1, int64_t{columns} * rows, int64_t{columns} * rows * 16, 0, 0, 100, 80};
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) region.Longs({2 * x, 2 * y, 2 * x + 1, 2 * y + 1});
  }
  return region;
}

FieldBytes RegionRecord(std::initializer_list<int64_t> before, const FieldBytes& region) {
  FieldBytes fields{0, 0, 99, 79, static_cast<int64_t>(region.bytes.size())};
  return fields.Longs(before).Bytes(region.bytes);
}

FieldBytes Stretched(const BmpFile& bitmap, size_t pixelBytes, int64_t width, int64_t height) {
  const std::vector<uint8_t> dib = PackedDib(bitmap);
  const auto head = static_cast<int64_t>(dib.size() - pixelBytes);
  FieldBytes fields{0, 0, 99, 79, 0, 0, 0, 0, bitmap.width, bitmap.height};
  fields.Longs({80, head, 80 + head, static_cast<int64_t>(pixelBytes), 0, 0xCC0020, width, height});
  return fields.Bytes(dib);
}

/// A large bitmap of few bytes.
BmpFile Blank() {
  BmpFile file;
  file.width = file.height = 1000;
  file.bits = 8;
  file.compression = 1;
  file.colorsUsed = 2;
  file.palette = {0x123456, 0xFEDCBA};
  file.pixels = {0, 1};
  return file;
}

FieldBytes Text(std::u16string_view text, int64_t options = 0) {
  FieldBytes fields{0, 0, 0, 0, 1};
  fields.Singles({1, 1}).Longs({5, 40, static_cast<int64_t>(text.size()), 76, options});
  return fields.Longs({0, 0, 100, 80, 0}).Text(text).PadTo(4);
}

FieldBytes Triangles(int count) {
  FieldBytes fields{0, 0, 99, 79, 3, count, 2};
  fields.Longs({0, 0}).Words({0, 0, 0, 0}).Longs({200, 0}).Words({0xFF00, 0, 0, 0});
  fields.Longs({0, 200}).Words({0, 0xFF00, 0, 0});
  for (int i = 0; i < count; ++i) fields.Longs({0, 1, 2});
  return fields;
}

EmfFile Slanted() {
  return EmfFile().Add(EmfType::setWorldTransform, FieldBytes().Singles({1, .2F, -.2F, 1, 0, 0}));
}

EmfFile ClippedByAnEllipse() {
  EmfFile file;
  file.Add(EmfType::beginPath).Add(EmfType::ellipse, {0, 0, 100, 80}).Add(EmfType::endPath);
  return file.Add(EmfType::selectClipPath, {1});
}

/// All kinds of work that a record of a few bytes can cause.
std::vector<Repeated> KindsOfWork() {
  const FieldBytes box{0, 0, 100, 80};
  const FieldBytes whole = Checkered(50, 40);
  const EmfFile rectangle = EmfFile().Add(EmfType::rectangle, box);
  const EmfFile line = EmfFile().Add(EmfType::moveTo, {0, 0}).Add(EmfType::lineTo, {100, 80});
  const EmfFile blank = EmfFile().Add(EmfType::stretchDibits, Stretched(Blank(), 2, 3, 3));
  const EmfFile six =
      EmfFile().Add(EmfType::stretchDibits, Stretched(SixColors(), 24, kFar / 4, kFar / 4));
  EmfFile inverts, brush, pattern, wide, dotted, circles, clipped;
  inverts.Add(EmfType::setRop2, {6});
  brush.Add(EmfType::createBrush, {1, 2, 0xFF, 5}).Add(EmfType::selectObject, {1});
  brush.Add(EmfType::selectObject, {0x80000008});
  wide.Add(EmfType::extCreatePen, {1, 0, 0, 0, 0, 0x10000, 1 << 20, 0, 0, 0, 0});
  wide.Add(EmfType::selectObject, {1});
  dotted.Add(EmfType::extCreatePen, {1, 0, 0, 0, 0, 0x10007, 1, 0, 0, 0, 2, 1, 1});
  dotted.Add(EmfType::selectObject, {1});
  circles.Add(EmfType::ellipse, {-9000, -9000, 9000, 9000});
  const std::vector<uint8_t> dib = PackedDib(Blank());
  const auto head = static_cast<int64_t>(dib.size()) - 2;
  for (const int64_t handle : {1, 2}) {
    pattern.Add(EmfType::createDibPatternBrush,
                FieldBytes{handle, 0, 32, head, 32 + head, 2}.Bytes(dib));
  }
  EmfFile switched;
  for (const int64_t handle : {1, 2}) {
    switched.Add(EmfType::selectObject, {handle}).Add(EmfType::rectangle, {0, 0, 3, 3});
  }
  EmfFile regions;
  regions.Add(EmfType::extSelectClipRgn,
              FieldBytes{static_cast<int64_t>(whole.bytes.size()), 5}.Bytes(whole.bytes));
  EmfFile texts;
  for (int i = 0; i < 4; ++i) texts.Add(EmfType::extTextOutW, Text(u"Abcdefghij"));
  FieldBytes many{0, 0, 0, 0, 1};
  many.Singles({1, 1}).Long(10);
  for (int i = 0; i < 10; ++i) many.Longs({5, 40, 500, 436, 0, 0, 0, 0, 0, 0});
  many.FillTo(436 - 8 + 1000);
  EmfFile masks = ClippedByAnEllipse();
  masks.Add(EmfType::rectangle, {0, 0, 3, 3});
  EmfFile paths;
  paths.Add(EmfType::beginPath).Add(EmfType::extTextOutW, Text(u"Abcdefghij"));
  paths.Add(EmfType::endPath).Add(EmfType::fillPath, box);
  EmfFile widened;
  widened.Add(EmfType::beginPath).Add(EmfType::ellipse, box).Add(EmfType::endPath);
  widened.Add(EmfType::widenPath).Add(EmfType::selectClipPath, {5});
  return {
      {"plain areas", {}, rectangle},
      {"raster operations", inverts, rectangle},
      {"hatches", brush, rectangle},
      {"outlines", {}, EmfFile().Add(EmfType::ellipse, box)},
      {"lines", {}, line},
      {"lines through a mask", ClippedByAnEllipse(), line},
      {"broad lines", wide, line},
      {"dotted circles", dotted, circles},
      {"flood fills", brush,
       EmfFile().Add(EmfType::extFloodFill, {3, 3, 0xFFFFFF, 1}).Add(EmfType::rectangle, box)},
      {"bitmaps without end", {}, six},
      {"slanted bitmaps", Slanted(), six},
      {"bitmaps of nothing", {}, blank},
      {"patterns of nothing", pattern, switched},
      {"gradients", {}, EmfFile().Add(EmfType::gradientFill, Triangles(20))},
      {"regions", {}, EmfFile().Add(EmfType::invertRgn, RegionRecord({}, whole))},
      {"frames of regions", brush,
       EmfFile().Add(EmfType::frameRgn, RegionRecord({1, 1, 1}, whole))},
      {"clips of many rectangles", regions, EmfFile().Add(EmfType::intersectClipRect, box)},
      {"clip paths", {}, masks},
      {"clips along pens", wide, widened},
      {"texts", {}, texts},
      {"many texts of the same letters", {}, EmfFile().Add(EmfType::polyTextOutW, many)},
      {"clipped texts", Slanted(), EmfFile().Add(EmfType::extTextOutW, Text(u"A", 4))},
      {"letters as a path", {}, paths},
  };
}

TEST(HostileRecords, PlayMetafile_Should_EndWithAWarning_When_TheWorkHasNoEnd) {
  const DrawingWorkScope work(2e7);
  for (const Repeated& kind : KindsOfWork()) {
    SCOPED_TRACE(kind.name);
    const PlayedMetafile played(kind.Bytes(kind.again.records.size() > 9000 ? 300 : 3000));
    EXPECT_FALSE(played.report.isComplete);
    ASSERT_EQ(played.report.warnings.size(), 1U);
    EXPECT_THAT(played.report.warnings[0], HasSubstr("exceeds its work budget"));
    EXPECT_GT(played.report.played, 0U);
  }
}

TEST(HostileRecords, PlayMetafile_Should_DrawAll_When_TheSameRecordsAreThereOnce) {
  for (const Repeated& kind : KindsOfWork()) {
    SCOPED_TRACE(kind.name);
    const PlayedMetafile played(kind.Bytes(1));
    EXPECT_TRUE(played.report.isComplete);
    EXPECT_TRUE(played.report.warnings.empty());
  }
}

TEST(HostileRecords, PlayMetafile_Should_CostWhatItDid_When_TheScopeOfAnotherDrawingIsGone) {
  const std::vector<uint8_t> bytes = KindsOfWork()[0].Bytes(3000);
  {
    const DrawingWorkScope work(1e5);
    const DrawingWorkScope more(1e9);
    EXPECT_FALSE(PlayedMetafile(bytes).report.isComplete);
  }
  EXPECT_TRUE(PlayedMetafile(bytes).report.isComplete);
}

TEST(HostileRecords, ConvertWmfToEmf_Should_Refuse_When_TheWorkHasNoEnd) {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  for (int i = 0; i < 100; ++i) file.Add(WmfFunction::rectangle, {50, 60, 0, 0});
  const std::vector<uint8_t> bytes = file.Bytes();
  EXPECT_FALSE(EmfOf(bytes).empty());
  const DrawingWorkScope work(50);
  EXPECT_THROW(EmfOf(bytes), LimitError);
}

/// All records must be played or skipped, and playback must end.
void ExpectEnd(const EmfFile& file) {
  EXPECT_TRUE(PlayedMetafile(file.Bytes()).report.isComplete);
}

TEST(HostileRecords, Lines_Should_End_When_DashesAndLengthsAreBeyondMeasure) {
  const FieldBytes pens[] = {{1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0},
                             {1, 0, 0, 0, 0, 7, 1, 0, 0, 0, 2, 0, 0},
                             {1, 0, 0, 0, 0, 7, 1, 0, 0, 0, 2, 1, 1},
                             {1, 0, 0, 0, 0, 0x10002, 1, 0, 0, 0, 0},
                             {1, 0, 0, 0, 0, 0x10007, 50, 0, 0, 0, 2, 1, 0},
                             {1, 0, 0, 0, 0, 0x10007, kFar, 0, 0, 0, 1, kFar}};
  for (const FieldBytes& pen : pens) {
    for (const float scale : {1.F, 0.002F, 1e-9F, 1e9F}) {
      EmfFile file;
      file.Add(EmfType::setWorldTransform, FieldBytes().Singles({scale, 0, 0, scale, 0, 0}));
      file.Add(EmfType::extCreatePen, pen).Add(EmfType::selectObject, {1});
      file.Add(EmfType::moveTo, {-kFar, 0}).Add(EmfType::lineTo, {kFar, kFar / 3});
      file.Add(EmfType::moveTo, {0, 0}).Add(EmfType::lineTo, {500000, 300000});
      file.Add(EmfType::ellipse, {-kFar, -kFar, kFar, kFar});
      file.Add(EmfType::ellipse, {-100000, -100000, 100000, 100000});
      FieldBytes curve{0, 0, 0, 0, 4};
      file.Add(EmfType::polyBezier, curve.Longs({-kFar, 0, kFar, 99, -kFar, 80, kFar, kFar}));
      ExpectEnd(file);
    }
  }
}

TEST(HostileRecords, Arcs_Should_End_When_AnglesAndBoxesAreNoNumbers) {
  EmfFile file;
  for (const float angle : {1e9F, -1e30F, kInfinity, kNoNumber}) {
    file.Add(EmfType::angleArc, FieldBytes{50, 40, 30}.Singles({angle, angle}));
    file.Add(EmfType::angleArc, FieldBytes{50, 40, kFar}.Singles({0, angle}));
  }
  for (const EmfType type : {EmfType::arc, EmfType::arcTo, EmfType::chord, EmfType::pie}) {
    file.Add(type, {5, 5, 5, 5, 5, 5, 5, 5}).Add(type, {0, 0, 9, 9, 4, 4, 4, 4});
    file.Add(type, {-kFar, -kFar, kFar, kFar, 0, 0, 0, 0});
  }
  ExpectEnd(file);
}

TEST(HostileRecords, Drawing_Should_End_When_TransformsAreNoNumbers) {
  const float cases[][6] = {{kNoNumber, 0, 0, 1, 0, 0},         {kInfinity, 0, 0, kInfinity, 0, 0},
                            {1e30F, 0, 0, 1e30F, 1e30F, 1e30F}, {1, 1, 1, 1, 0, 0},
                            {1e-30F, 0, 0, 1e-30F, 0, 0},       {3e38F, 3e38F, -3e38F, 3e38F, 0, 0},
                            {0, 1e20F, 1e-20F, 0, 5, 5}};
  for (const auto& m : cases) {
    EmfFile file;
    FieldBytes matrix;
    matrix.Singles({m[0], m[1], m[2], m[3], m[4], m[5]});
    file.Add(EmfType::setWorldTransform, matrix);
    for (const int64_t mode : {2, 3}) {
      FieldBytes change = matrix;
      file.Add(EmfType::modifyWorldTransform, change.Long(mode));
    }
    file.Add(EmfType::createPen, {1, 1, 3, 0, 0}).Add(EmfType::selectObject, {1});
    file.Add(EmfType::rectangle, {3, 3, 50, 50}).Add(EmfType::ellipse, {3, 3, 50, 50});
    file.Add(EmfType::lineTo, {90, 70}).Add(EmfType::extTextOutW, Text(u"Abc"));
    file.Add(EmfType::stretchDibits, Stretched(SixColors(), 24, 60, 40));
    file.Add(EmfType::gradientFill, Triangles(2));
    file.Add(EmfType::intersectClipRect, {0, 0, 90, 70}).Add(EmfType::rectangle, {1, 1, 9, 9});
    ExpectEnd(file);
  }
}

TEST(HostileRecords, Bitmaps_Should_End_When_PlacesAreFarOrDegenerate) {
  const std::vector<uint8_t> dib = PackedDib(SixColors());
  const auto head = static_cast<int64_t>(dib.size()) - 24;
  const auto parallelogram = [&](std::initializer_list<int64_t> corners) {
    FieldBytes fields{0, 0, 99, 79};
    fields.Longs(corners).Longs({0, 0, 3, 2}).Singles({1, 0, 0, 1, 0, 0});
    fields.Longs({0, 0, 140, head, 140 + head, 24, 0, 0, 0, 0, 0, 0, 0});
    return fields.Bytes(dib);
  };
  for (const int64_t mode : {1, 3, 4}) {
    EmfFile file;
    file.Add(EmfType::setStretchBltMode, {mode});
    for (const int64_t side : {int64_t{0}, int64_t{1}, kFar, -kFar}) {
      file.Add(EmfType::stretchDibits, Stretched(SixColors(), 24, side, kFar));
      file.Add(EmfType::stretchDibits, Stretched(SixColors(), 24, 1, side));
      file.Add(EmfType::plgBlt, parallelogram({0, 0, side, side, side, side}));
      file.Add(EmfType::plgBlt, parallelogram({-side, -side, side, side, 0, 1000}));
    }
    ExpectEnd(file);
  }
}

TEST(HostileRecords, Curves_Should_BeSkipped_When_TheyAreTooManyPieces) {
  EmfFile file;
  file.Add(EmfType::setWorldTransform, FieldBytes().Singles({100, 0, 0, 100, 0, 0}));
  constexpr int64_t kCurves = 5000;
  FieldBytes points{0, 0, 0, 0, 3 * kCurves + 1};
  points.Words({0, 0});
  for (int64_t i = 0; i < kCurves; ++i) points.Words({-30000, 30000, 30000, 30000, 0, 0});
  file.Add(EmfType::polyBezier16, points);
  const PlayedMetafile played(file.Bytes());
  EXPECT_EQ(played.Painted(), 0);
  ASSERT_EQ(played.report.warnings.size(), 1U);
  EXPECT_THAT(played.report.warnings[0], HasSubstr("too many pieces"));
}

TEST(HostileRecords, SaveDC_Should_RestoreTheFirst_When_ThereAreAMillion) {
  EmfFile file;
  file.Add(EmfType::createBrush, {1, 0, 0xFF, 0}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::saveDc).Add(EmfType::selectObject, {0x80000000});
  constexpr int kCount = 1000000;
  const EmfFile one = EmfFile().Add(EmfType::saveDc);
  for (int i = 0; i < kCount; ++i) {
    file.records.insert(file.records.end(), one.records.begin(), one.records.end());
  }
  file.Add(EmfType::restoreDc, {-kCount - 1}).Add(EmfType::rectangle, {0, 0, 90, 70});
  EXPECT_EQ(PlayedMetafile(file.Bytes()).At(40, 40), 0x0000FF);
}

constexpr PixelRect kLargest{0, 0, 32767, 32767};

std::vector<PixelRect> Stripes(bool areColumns, int count) {
  std::vector<PixelRect> stripes;
  for (int i = 0; i < count; ++i) {
    stripes.push_back(areColumns ? PixelRect{2 * i, 0, 2 * i + 1, 32767}
                                 : PixelRect{0, 2 * i, 32767, 2 * i + 1});
  }
  return stripes;
}

TEST(HostileRecords, RequireRegion_Should_Refuse_When_RectanglesCutEachOtherIntoMillions) {
  const auto columns = Stripes(true, 16000), rows = Stripes(false, 16000);
  EXPECT_NO_THROW(RequireRegion(columns, kLargest));
  EXPECT_NO_THROW(RequireRegion(rows, kLargest));
  std::vector<PixelRect> both = columns;
  both.insert(both.end(), rows.begin(), rows.end());
  EXPECT_THROW(RequireRegion(both, kLargest), LimitError);
  EXPECT_NO_THROW(RequireRegion(both, {0, 0, 2000, 2000}));
}

TEST(HostileRecords, ExtTextOut_Should_LeaveTheClip_When_TheTextIsRefused) {
  DrawingPaper paper(60, 40);
  paper.NoPen();
  paper.Dc().BeginPath();
  paper.Dc().Ellipse({0, 0, 60, 40});
  paper.Dc().EndPath();
  paper.Dc().SelectClipPath(RegionMode::copy);
  TextRun run;
  run.origin = {2, 5};
  run.text = u"Abc";
  run.options = text_option::kClipped;
  run.box = RectD{0, 0, 30, 40};
  {
    const PictureMemoryScope memory(1);
    EXPECT_THROW(paper.Dc().ExtTextOut(run), LimitError);
  }
  paper.Dc().PatBlt({0, 0, 60, 40}, rop3::kBlackness);
  EXPECT_EQ(paper.At(45, 20), clBlack);
}

}  // namespace
}  // namespace rasterkit::test
