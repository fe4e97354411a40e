// EMF records that draw nothing themselves: each affects what is drawn after it.

#include <gtest/gtest.h>

#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/played_metafile.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;
constexpr int64_t kNullPen = 0x80000008;

/// A file with a blue brush (1) and without a pen.
EmfFile BlueAreas() {
  EmfFile file;
  file.Add(EmfType::createBrush, {1, 0, kBlue, 0}).Add(EmfType::selectObject, {1});
  return file.Add(EmfType::selectObject, {kNullPen});
}

PlayedMetafile Play(const EmfFile& file) {
  return PlayedMetafile(file.Bytes());
}

/// A brush of vertical red lines on green; the first line runs through x = 0.
EmfFile Hatched() {
  EmfFile file = BlueAreas();
  file.Add(EmfType::setBkColor, {kGreen}).Add(EmfType::createBrush, {2, 2, kRed, 1});
  return file.Add(EmfType::selectObject, {2});
}

TEST(EmfState, BackgroundMode_Should_DecideAboutGaps) {
  const auto gap = [](int mode) {
    EmfFile file = Hatched();
    file.Add(EmfType::setBkMode, {mode}).Add(EmfType::rectangle, {0, 0, 99, 79});
    return Play(file).PaintedIn({40, 20, 48, 28});
  };
  EXPECT_EQ(gap(1), 8) << "the line alone";
  EXPECT_EQ(gap(2), 64);
}

TEST(EmfState, BrushOrigin_Should_MovePatterns) {
  const auto isLine = [](int x, int y) {
    EmfFile file = Hatched();
    file.Add(EmfType::setBrushOrg, {x, y}).Add(EmfType::rectangle, {0, 0, 99, 79});
    const PlayedMetafile played = Play(file);
    std::string row;
    for (int column = 40; column < 48; ++column) row += played.At(column, 30) == kRed ? '|' : ' ';
    return row;
  };
  const std::string still = isLine(0, 0);
  EXPECT_EQ(std::count(still.begin(), still.end(), '|'), 1);
  EXPECT_EQ(isLine(0, 5), still);
  EXPECT_EQ(isLine(3, 0), still.substr(5) + still.substr(0, 5));
}

TEST(EmfState, StretchMode_Should_SmoothWhatGrows_When_Halftone) {
  const auto between = [](int mode) {
    const std::vector<uint8_t> dib = PackedDib(SixColors());
    const auto head = static_cast<int64_t>(dib.size()) - 24;
    FieldBytes fields{0, 0, 0, 0, 10, 20, 0, 0, 3, 2, 80, head, 80 + head, 24};
    fields.Longs({0, 0xCC0020, 60, 40}).Bytes(dib);
    EmfFile file;
    file.Add(EmfType::setStretchBltMode, {mode}).Add(EmfType::stretchDibits, fields);
    return Play(file).At(28, 25);  // red, two pixels before green begins
  };
  EXPECT_EQ(between(3), kRed);
  EXPECT_NE(between(4), kRed);
}

TEST(EmfState, MiterLimit_Should_CutSharpCorners_WholeOrSingle) {
  const auto tip = [](const FieldBytes& limit) {
    EmfFile file;
    file.Add(EmfType::extCreatePen, {1, 0, 0, 0, 0, 0x12000, 8, 0, kRed, 0, 0});
    file.Add(EmfType::selectObject, {1});
    if (!limit.bytes.empty()) file.Add(EmfType::setMiterLimit, limit);
    file.Add(EmfType::polyline16, FieldBytes{0, 0, 0, 0, 3}.Words({20, 30, 60, 40, 20, 50}));
    return Play(file).PaintedIn({67, 35, 75, 45});
  };
  EXPECT_GT(tip({}), 0);
  EXPECT_EQ(tip({1}), 0);
  EXPECT_EQ(tip(FieldBytes().Single(1)), 0);
  EXPECT_GT(tip({9}), 0);
}

TEST(EmfState, Layout_Should_MirrorTheDevice) {
  EmfFile file = BlueAreas();  // with a device 1000 pixels wide
  file.Add(EmfType::setLayout, {1}).Add(EmfType::rectangle, {940, 20, 980, 40});
  EXPECT_EQ(Play(file).At(30, 30), kBlue);
  EXPECT_EQ(Play(file).At(70, 30), clWhite);
}

TEST(EmfState, WindowExtent_Should_ScaleDown) {
  EmfFile file = BlueAreas();
  file.Add(EmfType::setMapMode, {8}).Add(EmfType::setWindowExt, {20, 40});
  file.Add(EmfType::setViewportExt, {10, 10}).Add(EmfType::rectangle, {0, 0, 40, 160});
  const PlayedMetafile played = Play(file);
  EXPECT_EQ(played.At(18, 38), kBlue);
  EXPECT_EQ(played.At(22, 38), clWhite);
  EXPECT_EQ(played.At(18, 42), clWhite);
}

/// A font of this many pixels is selected, on a transparent background.
EmfFile WithFont(int pixels) {
  EmfFile file;
  FieldBytes font{1, -pixels, 0, 0, 0, 400, 0, 0};
  font.Text(std::u16string_view(u"DejaVu Sans")).FillTo(4 + 92);
  file.Add(EmfType::extCreateFont, font).Add(EmfType::selectObject, {1});
  return file.Add(EmfType::setBkMode, {1});
}

FieldBytes Text(std::u16string_view text, int64_t x, int64_t y) {
  FieldBytes fields{0, 0, 0, 0, 2};
  fields.Singles({1, 1}).Longs({x, y, static_cast<int64_t>(text.size()), 76, 0, 0, 0, 0, 0, 0});
  return fields.Text(text);
}

TEST(EmfState, Fonts_Should_HaveTheirHeight) {
  const auto inked = [](int pixels) {
    return Play(WithFont(pixels).Add(EmfType::extTextOutW, Text(u"I", 10, 5)));
  };
  EXPECT_EQ(inked(10).PaintedIn({0, 20, 100, 80}), 0);
  EXPECT_GT(inked(60).PaintedIn({0, 20, 100, 60}), 100);
}

TEST(EmfState, TextAlign_Should_NameTheReferencePoint) {
  EmfFile left = WithFont(20), right = WithFont(20), base = WithFont(20);
  const FieldBytes text = Text(u"II", 50, 40);
  left.Add(EmfType::extTextOutW, text);
  right.Add(EmfType::setTextAlign, {2}).Add(EmfType::extTextOutW, text);
  base.Add(EmfType::setTextAlign, {24}).Add(EmfType::extTextOutW, text);
  EXPECT_EQ(Play(left).PaintedIn({0, 0, 50, 80}), 0);
  EXPECT_GT(Play(left).PaintedIn({50, 40, 100, 80}), 10);
  EXPECT_GT(Play(right).PaintedIn({0, 40, 50, 80}), 10);
  EXPECT_EQ(Play(right).PaintedIn({50, 0, 100, 80}), 0);
  EXPECT_GT(Play(base).PaintedIn({50, 0, 100, 40}), 10);
  EXPECT_EQ(Play(base).PaintedIn({0, 40, 100, 80}), 0);
}

TEST(EmfState, TextJustification_Should_WidenSpaces) {
  EmfFile plain = WithFont(20), wide = WithFont(20);
  const FieldBytes text = Text(u"I I", 10, 40);
  plain.Add(EmfType::extTextOutW, text);
  wide.Add(EmfType::setTextJustification, {60, 1}).Add(EmfType::extTextOutW, text);
  EXPECT_EQ(Play(plain).PaintedIn({40, 0, 100, 80}), 0);
  EXPECT_GT(Play(wide).PaintedIn({70, 0, 100, 80}), 10);
}

TEST(EmfState, ManyTextsOfBytes_Should_BeThoseOfWords) {
  const auto many = [](EmfType type, bool areWords) {
    FieldBytes fields{0, 0, 0, 0, 2};
    fields.Singles({1, 1}).Long(2);
    for (const int y : {5, 40}) fields.Longs({10, y, 2, 120, 0, 0, 0, 0, 0, 0});
    areWords ? fields.Text(std::u16string_view(u"Ab")) : fields.Text(std::string_view("Ab"));
    return Play(WithFont(20).Add(type, fields.PadTo(4)));
  };
  const PlayedMetafile bytes = many(EmfType::polyTextOutA, false);
  EXPECT_GT(bytes.PaintedIn({0, 0, 100, 40}), 20);
  EXPECT_GT(bytes.PaintedIn({0, 40, 100, 80}), 20);
  EXPECT_EQ(bytes.Painted(), many(EmfType::polyTextOutW, true).Painted());
}

}  // namespace
}  // namespace rasterkit::test
