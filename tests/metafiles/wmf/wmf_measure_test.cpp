// WMF files without a size are as large as their drawing.

#include <gtest/gtest.h>

#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/wmf/wmf_measure.h>

#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"
#include "tests/support/same_pixels.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr int64_t kBlue = 0xFF0000;

MetafileFacts FactsOf(const WmfFile& file) {
  return ReadMetafileFacts(file.Bytes());
}

void ExpectBox(const WmfFile& file, int left, int top, int right, int bottom) {
  const MetafileFacts facts = FactsOf(file);
  EXPECT_TRUE(facts.boundsAreDrawn);
  EXPECT_EQ(facts.bounds.left, left);
  EXPECT_EQ(facts.bounds.top, top);
  EXPECT_EQ(facts.bounds.right, right);
  EXPECT_EQ(facts.bounds.bottom, bottom);
}

TEST(WmfMeasure, Should_BeAroundWhatIsDrawn_When_ThereIsNoWindow) {
  const auto expectOne = [](WmfFunction function, std::initializer_list<int64_t> words, int left,
                            int top, int right, int bottom) {
    SCOPED_TRACE(static_cast<int>(function));
    WmfFile file;
    ExpectBox(file.Add(function, words), left, top, right, bottom);
  };
  WmfFile lines;
  lines.Add(WmfFunction::moveTo, {5, 3}).Add(WmfFunction::lineTo, {11, 17});
  ExpectBox(lines, 3, 5, 18, 12);
  expectOne(WmfFunction::rectangle, {40, 30, 20, 10}, 10, 20, 30, 40);
  expectOne(WmfFunction::ellipse, {40, 30, 20, 10}, 10, 20, 30, 40);
  expectOne(WmfFunction::roundRect, {9, 9, 40, 30, 20, 10}, 10, 20, 30, 40);
  expectOne(WmfFunction::polyline, {2, -1, 2, 8, 9}, -1, 2, 9, 10);
  expectOne(WmfFunction::polyPolygon, {2, 2, 2, -1, 2, 8, 9, 3, 30, 3, 31}, -1, 2, 9, 32);
  expectOne(WmfFunction::setPixel, {0, 0, 6, 4}, 4, 6, 5, 7);
  expectOne(WmfFunction::patBlt, {0x21, 0xF0, 10, 20, 6, 4}, 4, 6, 24, 16);
  expectOne(WmfFunction::dibBitBlt, {0x21, 0xF0, 0, 0, 0, 10, 20, 6, 4}, 4, 6, 24, 16);
}

/// Bitmaps are not decoded and may be incomplete.
TEST(WmfMeasure, Should_CountBitmapsByTheirPlace) {
  const auto expectOne = [](WmfFunction function, std::initializer_list<int64_t> words) {
    SCOPED_TRACE(static_cast<int>(function));
    WmfFile file;
    FieldBytes fields;
    ExpectBox(file.Add(function, fields.Words(words).Bytes(PackedDib(SixColors()))), 4, 6, 24, 16);
  };
  expectOne(WmfFunction::dibBitBlt, {0x20, 0xCC, 0, 0, 10, 20, 6, 4});
  expectOne(WmfFunction::bitBlt, {0x20, 0xCC, 0, 0, 10, 20, 6, 4});
  expectOne(WmfFunction::dibStretchBlt, {0x20, 0xCC, 2, 3, 0, 0, 10, 20, 6, 4});
  expectOne(WmfFunction::stretchBlt, {0x20, 0xCC, 2, 3, 0, 0, 10, 20, 6, 4});
  expectOne(WmfFunction::stretchDib, {0x20, 0xCC, 0, 2, 3, 0, 0, 10, 20, 6, 4});
  expectOne(WmfFunction::setDibToDev, {0, 2, 0, 0, 0, 10, 20, 6, 4});
}

WmfFile BlueSquare() {
  WmfFile file;
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
  return file.Add(WmfFunction::polygon, {4, 10, 20, 40, 20, 40, 60, 10, 60});
}

/// Expects blue up to the edges, drawn as WMF and as EMF.
void ExpectBlue(const WmfFile& file, int width, int height) {
  const std::vector<uint8_t> bytes = file.Bytes(), emf = EmfOf(bytes);
  const MetafileFacts facts = ReadMetafileFacts(bytes);
  EXPECT_EQ(facts.width, width);
  EXPECT_EQ(facts.height, height);
  const PlayedMetafile played(bytes, width, height), recorded(emf, width, height);
  EXPECT_EQ(played.At(0, 0), kBlue);
  EXPECT_EQ(played.At(width - 1, height - 1), kBlue);
  EXPECT_TRUE(SameColors(played.raster, recorded.raster));
}

TEST(WmfMeasure, Should_ShowAll_WhereverItLies) {
  ExpectBlue(BlueSquare(), 30, 40);
}

TEST(WmfMeasure, Should_FollowTheOrigin_When_RecordsMoveIt) {
  for (const WmfFunction function :
       {WmfFunction::setWindowOrg, WmfFunction::offsetWindowOrg, WmfFunction::offsetViewportOrg}) {
    WmfFile moved;
    moved.Add(function, {-500, 700});
    const std::vector<uint8_t> square = BlueSquare().records;
    moved.records.insert(moved.records.end(), square.begin(), square.end());
    SCOPED_TRACE(static_cast<int>(function));
    ExpectBlue(moved, 30, 40);
  }
}

TEST(WmfMeasure, Should_CountMillimeters_When_TheModeDoes) {
  WmfFile file;
  file.Add(WmfFunction::setMapMode, {2});
  const std::vector<uint8_t> square = BlueSquare().records;
  file.records.insert(file.records.end(), square.begin(), square.end());
  const MetafileFacts facts = FactsOf(file);
  EXPECT_EQ(facts.unitsPerInch, 254);
  // Up to two pixels more, of 2.65 units each.
  EXPECT_NEAR(static_cast<double>(facts.bounds.Width()), 33, 3);
  EXPECT_NEAR(static_cast<double>(facts.bounds.top), -61, 2) << "y downward";
  const PlayedMetafile played(file.Bytes(), 110, 150);
  EXPECT_EQ(played.At(10, 10), kBlue);
  EXPECT_EQ(played.At(95, 130), kBlue);
}

TEST(WmfMeasure, Should_BeginAtTheCorner_When_AMetricPageNamesIt) {
  WmfFile file;
  file.Add(WmfFunction::setMapMode, {2}).Add(WmfFunction::setWindowOrg, {100, 0});
  const std::vector<uint8_t> square = BlueSquare().records;
  file.records.insert(file.records.end(), square.begin(), square.end());
  const MetafileFacts facts = FactsOf(file);
  EXPECT_EQ(facts.bounds.left, 0);
  EXPECT_EQ(facts.bounds.top, 0);
  EXPECT_NEAR(static_cast<double>(facts.bounds.right), 41, 2);
  EXPECT_NEAR(static_cast<double>(facts.bounds.bottom), 81, 2);
}

TEST(WmfMeasure, Should_CutNothing_When_EdgesLieBetweenPixels) {
  // Twips, 15 per pixel: a frame whose edges lie a fraction of a pixel away from pixel edges.
  for (const int away : {1, 7, 8, 14}) {
    WmfFile file;
    file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
    file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
    file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
    const int left = 300 + away, right = 3600 - away;
    file.Add(WmfFunction::polygon, {4, left, left, right, left, right, right, left, right});
    const MetafileFacts facts = FactsOf(file);
    EXPECT_EQ(facts.unitsPerInch, 1440);
    EXPECT_LE(facts.bounds.left, left);
    EXPECT_GE(facts.bounds.right, right);
    EXPECT_EQ(facts.bounds.left % 15, 0);
    EXPECT_EQ(facts.width, 220);
    const PlayedMetafile played(file.Bytes(), 220 * 15, 220 * 15);
    EXPECT_EQ(played.PaintedIn({away, 1000, 3300 - away, 1001}), 3300 - 2 * away);
    EXPECT_EQ(played.PaintedIn({0, 1000, 3300, 1001}), 3300 - 2 * away);
  }
}

TEST(WmfMeasure, Should_HoldWholeTexts) {
  FieldBytes font, text;
  font.Words({-40, 0, 0, 0, 400}).Longs({0, 0}).Text(std::string_view("DejaVu Sans")).FillTo(50);
  text.Word(5).Text(std::string_view("Wagen")).PadTo(2).Words({20, 10});
  WmfFile file;
  file.Add(WmfFunction::createFontIndirect, font).Add(WmfFunction::selectObject, {0});
  file.Add(WmfFunction::textOut, text);
  const MetafileFacts facts = FactsOf(file);
  EXPECT_EQ(facts.bounds.left, 10);
  EXPECT_EQ(facts.bounds.top, 20);
  EXPECT_GT(facts.bounds.Width(), 100);
  EXPECT_GT(facts.bounds.Height(), 40);
  EXPECT_LT(facts.bounds.Height(), 60);
  // Nothing touches the right edge: the last letter is complete.
  const PlayedMetafile played(file.Bytes(), facts.width, facts.height);
  EXPECT_GT(played.PaintedIn({facts.width - 30, 0, facts.width, facts.height}), 50);
  EXPECT_EQ(played.PaintedIn({facts.width - 1, 0, facts.width, facts.height}), 0);
}

TEST(WmfMeasure, Should_BeOneUnit_When_NothingIsDrawn) {
  ExpectBox(WmfFile(), 0, 0, 1, 1);
}

TEST(WmfMeasure, Should_BeBounded_When_NumbersAreAbsurd) {
  WmfFile file;
  for (int i = 0; i < 40; ++i) file.Add(WmfFunction::scaleViewportExt, {1, 32767, 1, 32767});
  file.Add(WmfFunction::rectangle, {32767, 32767, -32768, -32768});
  file.Add(WmfFunction::polygon, {9999, 1}).Add(WmfFunction::stretchDib, {1});
  const MetafileFacts facts = FactsOf(file);
  EXPECT_GT(facts.bounds.Width(), 0);
  EXPECT_LE(facts.bounds.Width(), 1 << 25);
  EXPECT_GT(facts.width, 0);
}

TEST(WmfMeasure, Should_End_When_RecordsAreMoreThanAnyDrawingHas) {
  WmfFile file;
  for (uint32_t i = 0; i < kMostMeasuredRecords; ++i) file.Add(WmfFunction::setPixel, {0, 0, 6, 4});
  file.Add(WmfFunction::setPixel, {0, 0, 60, 40});
  const std::vector<uint8_t> bytes = file.Bytes();
  const auto drawn = MeasureWmf(bytes);
  ASSERT_TRUE(drawn);
  EXPECT_EQ(*drawn, (RectD{4, 6, 5, 7}));
}

TEST(WmfMeasure, Should_NotBeAsked_When_TheFileSaysItsSize) {
  WmfFile box = BlueSquare(), window = BlueSquare();
  box.box = {{0, 0, 9, 9}};
  window.Add(WmfFunction::setWindowExt, {7, 8});
  EXPECT_FALSE(FactsOf(box).boundsAreDrawn);
  EXPECT_EQ(FactsOf(box).width, 9);
  EXPECT_FALSE(FactsOf(window).boundsAreDrawn);
  EXPECT_EQ(FactsOf(window).width, 8);
}

}  // namespace
}  // namespace rasterkit::test
