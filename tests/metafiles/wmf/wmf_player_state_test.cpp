// WMF records that draw nothing themselves: each affects what is drawn after it.

#include <gtest/gtest.h>

#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;
constexpr int64_t kNullPenStyle = 5;

/// 100 x 80 units of one pixel each; a blue brush (0) is selected, and no pen (1).
WmfFile BlueAreas() {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({kNullPenStyle, 0, 0}).Long(0));
  return file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
}

PlayedMetafile Play(const WmfFile& file) {
  return PlayedMetafile(file.Bytes());
}

TEST(WmfPlayerState, BackgroundMode_Should_DecideAboutGaps) {
  const auto gap = [](int mode) {
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::setBkColor, FieldBytes{kGreen});
    file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(2).Long(kRed).Word(1));
    file.Add(WmfFunction::selectObject, {2}).Add(WmfFunction::setBkMode, {mode});
    return Play(file.Add(WmfFunction::rectangle, {80, 100, 0, 0})).PaintedIn({40, 20, 48, 28});
  };
  EXPECT_EQ(gap(1), 8) << "the line alone";
  EXPECT_EQ(gap(2), 64);
}

TEST(WmfPlayerState, PolyFillMode_Should_DecideAboutTheInside) {
  const auto star = [](int mode) {
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::setPolyFillMode, {mode});
    // The same square twice, in the same direction.
    file.Add(WmfFunction::polygon,
             {8, 10, 10, 50, 10, 50, 50, 10, 50, 10, 10, 50, 10, 50, 50, 10, 50});
    return Play(file).At(30, 30);
  };
  EXPECT_EQ(star(1), clWhite);
  EXPECT_EQ(star(2), kBlue);
}

TEST(WmfPlayerState, MetricModes_Should_CountMillimetersUpward) {
  WmfFile file = BlueAreas();
  file.box = {{0, 0, 100, -80}};
  // 10 mm are 37.8 pixels at 96 dpi.
  file.Add(WmfFunction::setMapMode, {2}).Add(WmfFunction::rectangle, {-100, 100, 0, 0});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(36, 36), kBlue);
  EXPECT_EQ(played.At(39, 20), clWhite);
  EXPECT_EQ(played.At(20, 39), clWhite);
}

TEST(WmfPlayerState, StretchMode_Should_SmoothWhatGrows_When_Halftone) {
  const auto between = [](int mode) {
    FieldBytes fields;
    fields.Words({0x20, 0xCC, 0, 2, 3, 0, 0, 40, 60, 20, 10}).Bytes(PackedDib(SixColors()));
    WmfFile file = BlueAreas();
    file.Add(WmfFunction::setStretchBltMode, {mode}).Add(WmfFunction::stretchDib, fields);
    return Play(file).At(28, 25);  // red, two pixels before green begins
  };
  EXPECT_EQ(between(3), kRed);
  EXPECT_NE(between(4), kRed);
}

TEST(WmfPlayerState, Layout_Should_MirrorThePicture) {
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setLayout, {1, 0}).Add(WmfFunction::rectangle, {40, 30, 20, 10});
  EXPECT_EQ(Play(file).At(80, 30), kBlue);
  EXPECT_EQ(Play(file).At(20, 30), clWhite);
}

TEST(WmfPlayerState, DeviceBitmaps_Should_BecomeBrushes) {
  // 8 x 1 pixels; a pointer, a gap, and one row: the left half is 0.
  FieldBytes brush;
  brush.Words({0, 8, 1, 2}).Byte(1).Byte(1).Long(0).FillTo(32).Byte(0x0F).Byte(0);
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::setTextColor, FieldBytes{kRed});
  file.Add(WmfFunction::setBkColor, FieldBytes{kGreen});
  file.Add(WmfFunction::createPatternBrush, brush).Add(WmfFunction::selectObject, {2});
  file.Add(WmfFunction::rectangle, {80, 100, 0, 0});
  EXPECT_EQ(Play(file).At(17, 30), kRed) << "0 is the text color";
  EXPECT_EQ(Play(file).At(21, 30), kGreen) << "1 is the background color";
}

/// With a font of 20 units, which is handle 2.
WmfFile WithFont() {
  FieldBytes font;
  font.Words({-20, 0, 0, 0, 400}).Longs({0, 0}).Text(std::string_view("DejaVu Sans")).FillTo(50);
  WmfFile file = BlueAreas();
  file.Add(WmfFunction::createFontIndirect, font).Add(WmfFunction::selectObject, {2});
  return file.Add(WmfFunction::setBkMode, {1});
}

FieldBytes Text(std::string_view text, int64_t x, int64_t y) {
  FieldBytes fields;
  return fields.Word(static_cast<int64_t>(text.size())).Text(text).PadTo(2).Words({y, x});
}

TEST(WmfPlayerState, TextAlign_Should_NameTheReferencePoint) {
  WmfFile left = WithFont(), right = WithFont();
  left.Add(WmfFunction::textOut, Text("II", 50, 40));
  right.Add(WmfFunction::setTextAlign, {2}).Add(WmfFunction::textOut, Text("II", 50, 40));
  EXPECT_EQ(Play(left).PaintedIn({0, 0, 50, 80}), 0);
  EXPECT_GT(Play(left).PaintedIn({50, 40, 100, 80}), 10);
  EXPECT_GT(Play(right).PaintedIn({0, 40, 50, 80}), 10);
  EXPECT_EQ(Play(right).PaintedIn({50, 0, 100, 80}), 0);
}

TEST(WmfPlayerState, CharacterExtra_Should_SpreadLetters) {
  WmfFile plain = WithFont(), spread = WithFont();
  plain.Add(WmfFunction::textOut, Text("II", 10, 40));
  spread.Add(WmfFunction::setTextCharExtra, {60}).Add(WmfFunction::textOut, Text("II", 10, 40));
  EXPECT_EQ(Play(plain).PaintedIn({30, 0, 100, 80}), 0);
  EXPECT_GT(Play(spread).PaintedIn({70, 0, 100, 80}), 10);
}

TEST(WmfPlayerState, TextJustification_Should_WidenSpaces) {
  WmfFile plain = WithFont(), wide = WithFont();
  plain.Add(WmfFunction::textOut, Text("I I", 10, 40));
  wide.Add(WmfFunction::setTextJustification, {1, 60});
  wide.Add(WmfFunction::textOut, Text("I I", 10, 40));
  EXPECT_EQ(Play(plain).PaintedIn({40, 0, 100, 80}), 0);
  EXPECT_GT(Play(wide).PaintedIn({70, 0, 100, 80}), 10);
}

}  // namespace
}  // namespace rasterkit::test
