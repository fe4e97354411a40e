#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include <rasterkit/drawing/text/font_faces.h>
#include <rasterkit/metafiles/records/ansi_text.h>

#include "tests/support/drawing_paper.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

/// A font that comes with the tests.
LogicalFont Fixed(double height) {
  LogicalFont font;
  font.height = height;
  font.faceName = "DejaVu Sans";
  return font;
}

bool HasFont() {
  detail::FontFaces faces;
  const detail::FontFace* face = faces.Find(Fixed(-10));
  return face && face->IsItself();
}

#define NEEDS_FONT() \
  if (!HasFont()) GTEST_SKIP() << "the font DejaVu Sans is not installed"

struct Text {
  DrawingPaper paper{200, 100};

  explicit Text(const LogicalFont& font = Fixed(-20)) {
    Select(font);
    paper.Dc().SetBkMode(BackgroundMode::transparent);
  }
  void Select(const LogicalFont& font) {
    paper.Dc().SelectFont(std::make_shared<LogicalFont>(font));
  }
  void Out(PointD at, std::u16string_view text, std::span<const double> steps = {},
           uint32_t options = 0) {
    TextRun run;
    run.origin = at;
    run.options = options;
    run.text = text;
    run.steps = steps;
    paper.Dc().ExtTextOut(run);
  }
  /// Returns the bounding box of all pixels that are not white; empty if there are none.
  PixelRect Inked() const {
    PixelRect box{1000, 1000, 0, 0};
    for (int y = 0; y < paper.raster.Height(); ++y) {
      for (int x = 0; x < paper.raster.Width(); ++x) {
        if (paper.At(x, y) == clWhite) continue;
        box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
               std::max(box.bottom, y + 1)};
      }
    }
    return box;
  }
};

TEST(DeviceText, Should_StandOnTheBaseline_When_AlignedToIt) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  text.Out({10, 50}, u"H");
  const PixelRect box = text.Inked();
  EXPECT_EQ(box.bottom, 50);
  // Capital letters of this font are 0.729 em high.
  EXPECT_NEAR(box.bottom - box.top, 14.6, 1);
  EXPECT_NEAR(box.left, 12, 1);
}

TEST(DeviceText, Should_HangFromItsTop_When_AlignedToTheTop) {
  NEEDS_FONT();
  Text text;
  text.Out({10, 20}, u"H");
  // The ascent is 0.928 em, capital letters are 0.729 em; an em has 20 pixels.
  EXPECT_NEAR(text.Inked().top, 20 + 18.6 - 14.6, 1);
}

TEST(DeviceText, Should_BeAsHighAsTheCell_When_TheHeightIsPositive) {
  NEEDS_FONT();
  Text text(Fixed(20));
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  text.Out({10, 50}, u"H");
  // The cell is 1.164 em high.
  EXPECT_NEAR(text.Inked().bottom - text.Inked().top, 14.6 / 1.164, 1);
}

TEST(DeviceText, Should_StepAsTold_When_StepsAreGiven) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  const double steps[] = {100, 20};
  text.Out({0, 50}, u"II", steps);
  bool isBetweenWhite = true;
  for (int x = 20; x < 95; ++x) {
    for (int y = 0; y < 100; ++y) isBetweenWhite &= text.paper.At(x, y) == clWhite;
  }
  EXPECT_TRUE(isBetweenWhite);
  EXPECT_NEAR(text.Inked().right, 104, 2);
}

TEST(DeviceText, Should_EndOrCenterAtThePoint_When_AlignedSo) {
  NEEDS_FONT();
  Text right, center;
  right.paper.Dc().SetTextAlign(text_align::kRight);
  right.Out({150, 20}, u"HHH");
  EXPECT_NEAR(right.Inked().right, 148, 2);
  center.paper.Dc().SetTextAlign(text_align::kCenter);
  center.Out({100, 20}, u"HHH");
  EXPECT_NEAR(center.Inked().left + center.Inked().right, 200, 3);
}

TEST(DeviceText, Should_MoveThePosition_When_TheAlignmentSaysSo) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetTextAlign(text_align::kUpdatePosition);
  text.paper.Dc().MoveTo({10, 10});
  const double steps[] = {30, 15};
  text.Out({500, 500}, u"ab", steps);
  EXPECT_EQ(text.paper.Dc().CurrentPosition(), (PointD{55, 10}));
  EXPECT_LT(text.Inked().left, 14);
}

TEST(DeviceText, Should_MoveThePositionBack_When_AlignedToTheRight) {
  NEEDS_FONT();
  const double steps[] = {30, 15};
  for (const auto& [align, x] :
       {std::pair(text_align::kRight, 55.0), {text_align::kCenter, 100.0}}) {
    Text text;
    text.paper.Dc().SetTextAlign(text_align::kUpdatePosition | align);
    text.paper.Dc().MoveTo({100, 10});
    text.Out({}, u"ab", steps);
    EXPECT_EQ(text.paper.Dc().CurrentPosition(), (PointD{x, 10})) << align;
  }
}

TEST(DeviceText, Should_StandOnItsLowestPoint_When_AlignedToTheBottom) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetTextAlign(text_align::kBottom);
  text.Out({10, 60}, u"H");
  // The descent is 0.236 em of 20 pixels.
  EXPECT_NEAR(text.Inked().bottom, 60 - 4.7, 1);
}

TEST(DeviceText, Should_RunUpward_When_TurnedByAQuarter) {
  NEEDS_FONT();
  LogicalFont font = Fixed(-20);
  font.escapement = 900;
  Text text(font);
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  text.Out({50, 90}, u"HHH");
  const PixelRect box = text.Inked();
  EXPECT_NEAR(box.right, 50, 1);
  EXPECT_NEAR(box.right - box.left, 14.6, 1.5);
  EXPECT_LT(box.top, 60);
  EXPECT_LE(box.bottom, 90);
}

TEST(DeviceText, Should_StandUpright_When_TheYAxisPointsUp) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetMapMode(MapMode::anisotropic);
  text.paper.Dc().SetWindowExt({1, 1});
  text.paper.Dc().SetViewportExt({1, -1});
  text.paper.Dc().SetViewportOrg({0, 100});
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  text.Out({10, 50}, u"L");
  // The foot of the letter lies below its stem.
  const PixelRect box = text.Inked();
  EXPECT_EQ(box.bottom, 50);
  EXPECT_NE(text.paper.At(box.right - 2, box.bottom - 1), clWhite);
  EXPECT_EQ(text.paper.At(box.right - 2, box.top), clWhite);
}

/// Letters of a line rotated by 90 degrees, on a page with flipped axes.
PixelRect TurnedOn(PointD viewportExt, PointD viewportOrg, PointD at) {
  LogicalFont font = Fixed(-20);
  font.escapement = 900;
  Text text(font);
  text.paper.Dc().SetMapMode(MapMode::anisotropic);
  text.paper.Dc().SetWindowExt({1, 1});
  text.paper.Dc().SetViewportExt(viewportExt);
  text.paper.Dc().SetViewportOrg(viewportOrg);
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  text.Out(at, u"HH");
  return text.Inked();
}

TEST(DeviceText, Should_TurnWithTheClock_When_TheYAxisPointsUp) {
  NEEDS_FONT();
  // The point (100, 50) of the raster on both pages.
  const PixelRect down = TurnedOn({1, 1}, {0, 0}, {100, 50});
  const PixelRect up = TurnedOn({1, -1}, {0, 100}, {100, 50});
  EXPECT_LE(down.bottom, 50);
  EXPECT_LE(down.right, 100);
  EXPECT_GE(up.top, 50);
  EXPECT_GE(up.left, 100);
  EXPECT_EQ(up.bottom - up.top, down.bottom - down.top);
}

TEST(DeviceText, Should_TurnWithTheClock_When_TheXAxisPointsLeft) {
  NEEDS_FONT();
  const PixelRect left = TurnedOn({-1, 1}, {200, 0}, {100, 50});
  EXPECT_GE(left.top, 50);
  EXPECT_GE(left.left, 100);
}

TEST(DeviceText, Should_TurnAgainstTheClock_When_BothAxesAreTurnedOver) {
  NEEDS_FONT();
  const PixelRect both = TurnedOn({-1, -1}, {200, 100}, {100, 50});
  EXPECT_LE(both.bottom, 50);
  EXPECT_LE(both.right, 100);
}

TEST(DeviceText, Should_FillItsCell_When_TheBackgroundIsOpaque) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetBkMode(BackgroundMode::opaque);
  text.paper.Dc().SetBkColor(RGB(0, 255, 0));
  const double steps[] = {30};
  text.Out({10, 20}, u"I", steps);
  EXPECT_EQ(text.paper.At(38, 22), RGB(0, 255, 0));
  EXPECT_NEAR(text.Inked().bottom - text.Inked().top, 23.3, 1);
  EXPECT_EQ(text.Inked().right, 40);
}

TEST(DeviceText, Should_FillTheBoxAndClip_When_TheOptionsSaySo) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetBkColor(RGB(0, 0, 255));
  TextRun run;
  run.origin = {20, 20};
  run.options = text_option::kOpaque | text_option::kClipped;
  run.box = RectD{20, 20, 40, 40};
  run.text = u"HHHHHH";
  text.paper.Dc().ExtTextOut(run);
  EXPECT_EQ(text.Inked().left, 20);
  EXPECT_EQ(text.Inked().right, 40);
  EXPECT_EQ(text.Inked().top, 20);
  EXPECT_EQ(text.Inked().bottom, 40);
  EXPECT_EQ(text.paper.At(39, 39), RGB(0, 0, 255));
}

TEST(DeviceText, Should_FillTheBox_When_ThereIsNoText) {
  DrawingPaper paper(4, 3);
  paper.Dc().SetBkColor(RGB(255, 0, 0));
  TextRun run;
  run.options = text_option::kOpaque;
  run.box = RectD{1, 1, 3, 2};
  paper.Dc().ExtTextOut(run);
  EXPECT_EQ(paper.Picture(), "\n....\n.rr.\n....\n");
}

TEST(DeviceText, Should_DrawRules_When_UnderlinedAndStruckOut) {
  NEEDS_FONT();
  LogicalFont font = Fixed(-20);
  font.underline = font.strikeOut = true;
  Text text(font);
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  const double steps[] = {50};
  text.Out({10, 50}, u" ", steps);
  int rules = 0;
  for (int y = 1; y < 100; ++y) {
    rules += text.paper.At(40, y) != clWhite && text.paper.At(40, y - 1) == clWhite;
  }
  EXPECT_EQ(rules, 2);
  EXPECT_EQ(text.Inked().left, 10);
  EXPECT_EQ(text.Inked().right, 60);
}

TEST(DeviceText, Should_BeWider_When_TheFontHasAWidth) {
  NEEDS_FONT();
  Text plain, wide;
  plain.Out({10, 20}, u"HHH");
  LogicalFont font = Fixed(-20);
  font.width = 20;
  wide.Select(font);
  wide.Out({10, 20}, u"HHH");
  const int plainWidth = plain.Inked().right - plain.Inked().left;
  const int wideWidth = wide.Inked().right - wide.Inked().left;
  EXPECT_GT(wideWidth, plainWidth * 3 / 2);
  EXPECT_EQ(wide.Inked().bottom - wide.Inked().top, plain.Inked().bottom - plain.Inked().top);
}

TEST(DeviceText, Should_SpreadTheSpaces_When_Justified) {
  NEEDS_FONT();
  Text plain, spread;
  plain.Out({10, 20}, u"I I");
  spread.paper.Dc().SetTextJustification(40, 1);
  spread.Out({10, 20}, u"I I");
  EXPECT_NEAR(spread.Inked().right - plain.Inked().right, 40, 1);
  Text extra;
  extra.paper.Dc().SetTextCharacterExtra(10);
  extra.Out({10, 20}, u"I I");
  EXPECT_NEAR(extra.Inked().right - plain.Inked().right, 20, 1);
}

TEST(DeviceText, Should_ShowTheSameLetters_When_GlyphNumbersAreGiven) {
  NEEDS_FONT();
  detail::FontFaces faces;
  detail::FontFace* face = faces.Find(Fixed(-20));
  Text letters, numbers;
  letters.Out({10, 20}, u"Ab");
  const char16_t glyphs[] = {static_cast<char16_t>(face->Letter(U'A').index),
                             static_cast<char16_t>(face->Letter(U'b').index)};
  numbers.Out({10, 20}, {glyphs, 2}, {}, text_option::kGlyphIndexes);
  EXPECT_EQ(letters.paper.Picture(), numbers.paper.Picture());
}

TEST(DeviceText, Should_TakeUsualNumbers_When_TheFontWasReplaced) {
  NEEDS_FONT();
  LogicalFont unknown = Fixed(-20);
  unknown.faceName = "No Such Font Anywhere";
  Text letters(unknown), numbers(unknown);
  letters.Out({10, 20}, u"Ab");
  const char16_t glyphs[] = {u'A' - 29, u'b' - 29, 5000};
  numbers.Out({10, 20}, {glyphs, 3}, {}, text_option::kGlyphIndexes);
  EXPECT_NE(letters.Inked().right, 0);
  EXPECT_EQ(letters.paper.Picture(), numbers.paper.Picture());
}

TEST(DeviceText, Should_ShowGreek_When_TheSymbolFontIsNotThere) {
  NEEDS_FONT();
  LogicalFont symbol = Fixed(-20), plain = Fixed(-20);
  symbol.faceName = "Symbol";
  symbol.charset = 2;
  detail::FontFaces faces;
  if (const auto* face = faces.Find(symbol); face && face->IsItself()) GTEST_SKIP();
  Text coded(symbol), greek(symbol);
  coded.Out({10, 20}, u"\x61\xF062");
  LogicalFont uncoded = symbol;
  uncoded.charset = 0;
  greek.Select(uncoded);
  greek.Out({10, 20}, u"αβ");
  EXPECT_EQ(coded.paper.Picture(), greek.paper.Picture());
}

TEST(DeviceText, Should_FindOtherLetters_When_OneIsMissingEverywhere) {
  NEEDS_FONT();
  detail::FontFaces faces;
  constexpr char32_t kNobodys = 0x10FFFF;
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(faces.FindWithLetter(Fixed(-20), kNobodys), nullptr);
  EXPECT_NE(faces.FindWithLetter(Fixed(-20), U'A'), nullptr);
}

TEST(DeviceText, Should_ShowABox_When_ASymbolIsNotKnown) {
  NEEDS_FONT();
  LogicalFont marks = Fixed(-20);
  marks.faceName = "Wingdings 2";
  marks.charset = 2;
  detail::FontFaces faces;
  if (const auto* face = faces.Find(marks); face && face->IsItself()) GTEST_SKIP();
  Text known(marks), mark(marks), unknown(marks);
  LogicalFont uncoded = marks;
  uncoded.charset = 0;
  mark.Select(uncoded);
  known.Out({10, 20}, u"P");
  mark.Out({10, 20}, u"✓");
  EXPECT_EQ(known.paper.Picture(), mark.paper.Picture());
  unknown.Out({10, 20}, u"\x7F");
  EXPECT_NE(unknown.Inked().right, 0);
}

TEST(DeviceText, Should_MoveUp_When_StepsHaveAVerticalPart) {
  NEEDS_FONT();
  Text text;
  text.paper.Dc().SetTextAlign(text_align::kBaseline);
  TextRun run;
  run.origin = {10, 50};
  run.options = text_option::kPairs;
  run.text = u"HH";
  const double steps[] = {100, 20}, rises[] = {30, 0};
  run.steps = steps;
  run.verticalSteps = rises;
  text.paper.Dc().ExtTextOut(run);
  EXPECT_EQ(text.Inked().bottom, 50);
  EXPECT_NEAR(text.Inked().top, 50 - 30 - 14.6, 1);
}

TEST(DeviceText, Should_BeReadFromTheRight_When_LettersAreHebrew) {
  NEEDS_FONT();
  Text read, seen, asIs;
  read.Out({10, 20}, u"אב");
  seen.Out({10, 20}, u"בא", {}, text_option::kAsOrdered);
  asIs.Out({10, 20}, u"אב", {}, text_option::kAsOrdered);
  EXPECT_EQ(read.paper.Picture(), seen.paper.Picture());
  EXPECT_NE(read.paper.Picture(), asIs.paper.Picture());
  // Each letter keeps its own advance.
  const double steps[] = {60, 25}, turned[] = {25, 60};
  Text stepped, expected;
  stepped.Out({10, 20}, u"אב", steps);
  expected.Out({10, 20}, u"בא", turned, text_option::kAsOrdered);
  EXPECT_EQ(stepped.paper.Picture(), expected.paper.Picture());
}

TEST(DeviceText, Should_BecomeOutlines_When_APathIsOpen) {
  NEEDS_FONT();
  Text text(Fixed(-60));
  text.paper.Dc().BeginPath();
  text.Out({10, 10}, u"O");
  text.paper.Dc().EndPath();
  EXPECT_EQ(text.Inked().right, 0);
  text.paper.Brush(RGB(255, 0, 0));
  text.paper.Dc().FillPath();
  EXPECT_GT(text.Inked().right, 40);
}

TEST(DeviceText, Should_Survive_When_HeightsAreAbsurd) {
  NEEDS_FONT();
  const auto absurd = [](double height) {
    LogicalFont font = Fixed(height);
    font.width = height;
    font.escapement = height;
    font.weight = -5;
    return font;
  };
  const auto inkOfAnH = [](Text& text) {
    text.paper.Dc().SetWorldTransform({});
    FillRaster(text.paper.raster, {0, 0, 200, 100}, clWhite);
    text.Select(Fixed(-20));
    text.Out({10, 20}, u"H");
    const PixelRect box = text.Inked();
    return std::array{box.left, box.top, box.right, box.bottom};
  };
  Text plain, zero(absurd(0));
  const auto expected = inkOfAnH(plain);
  zero.Out({10, 20}, u"Ab\xD800");
  for (const double height : {0.0, 1e-9, -1e-9, 1e9, -1e9, 1e300, std::nan("")}) {
    Text text(absurd(height));
    text.Out({10, 20}, u"Ab\xD800");
    if (std::isnan(height)) {
      EXPECT_TRUE(test::SamePixels(zero.paper.raster, text.paper.raster));
    }
    text.paper.Dc().SetWorldTransform({1e-12, 1e12, 0, 1, 0, 0});
    text.Out({10, 20}, u"Ab");
    // The context stays usable.
    EXPECT_EQ(inkOfAnH(text), expected) << height;
  }
}

TEST(AnsiText, Should_DecodeByCharset_When_BytesAreNotAscii) {
  const uint8_t bytes[] = {'a', 0xE4};
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 0).text, u"aä");
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 1).text, u"aä");
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 204).text, u"aд");
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 161).text, u"aδ");
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 238).text, u"aä");
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 2).text, u"\xF061\xF0E4");
}

TEST(AnsiText, Should_JoinTheSteps_When_ACharacterTakesTwoBytes) {
  const uint8_t bytes[] = {0x82, 0xA0, 'x'};
  const double steps[] = {3, 4, 5};
  const AnsiText text = DecodeAnsiText(bytes, steps, 128);
  EXPECT_EQ(text.text, u"あx");
  EXPECT_EQ(text.steps, (std::vector<double>{7, 5}));
}

TEST(AnsiText, Should_MarkWhatIsNoCharacter_When_BytesAreCutOff) {
  const uint8_t bytes[] = {'x', 0x82};
  EXPECT_EQ(DecodeAnsiText(bytes, {}, 128).text, u"x\xFFFD");
}

}  // namespace
}  // namespace rasterkit
