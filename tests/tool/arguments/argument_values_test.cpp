// Values of options: colors, sizes, rectangles, and words that are mistyped.

#include <gtest/gtest.h>

#include "tool/arguments/color_argument.h"
#include "tool/arguments/near_word.h"
#include "tool/arguments/rect_argument.h"
#include "tool/arguments/size_argument.h"

namespace rasterkit::test {
namespace {

using tool::NearestWord;
using tool::ParseColor;
using tool::ParseMapRect;
using tool::ParseRect;
using tool::ParseResize;

TEST(NearWord, OneMistypedLetter_Should_GiveTheWord) {
  const std::vector<std::string> words = {"rotate", "resize", "mirror", "mono", "crop", "info"};
  for (const char* text : {"rotat", "rotatee", "roate", "rotaet", "rptate"}) {
    EXPECT_EQ(NearestWord(text, words), "rotate") << text;
  }
  EXPECT_EQ(NearestWord("corp", words), "crop");
  EXPECT_EQ(NearestWord("resise", words), "resize");
}

TEST(NearWord, FarWord_Should_GiveNothing) {
  const std::vector<std::string> words = {"rotate", "gray", "pdf", "info"};
  for (const char* text : {"", "x", "ab", "convolve", "no-such-verb", "abc"}) {
    EXPECT_EQ(NearestWord(text, words), std::nullopt) << text;
  }
  EXPECT_EQ(NearestWord(std::string(1000, 'a'), {std::string(999, 'a')}), std::nullopt);
  EXPECT_EQ(NearestWord("rotat", {}), std::nullopt);
}

TEST(NearWord, NearestOfSeveral_Should_Win) {
  EXPECT_EQ(NearestWord("--qualit", {"--quit", "--quality"}), "--quality");
  EXPECT_EQ(NearestWord("ab1", {"ab2", "ab3"}), "ab2") << "the first of equals";
}

TEST(ColorArgument, DigitsAndNames_Should_BeRead) {
  EXPECT_EQ(ParseColor("C08040"), RGB(0xC0, 0x80, 0x40));
  EXPECT_EQ(ParseColor("#c08040"), RGB(0xC0, 0x80, 0x40));
  EXPECT_EQ(ParseColor("red"), RGB(255, 0, 0));
  EXPECT_EQ(ParseColor("SkyBlue"), RGB(0x87, 0xCE, 0xEB));
  EXPECT_EQ(ParseColor("grey"), ParseColor("gray"));
  for (const char* text : {"", "#", "##000000", "12345", "1234567", "12345g", "-12345", "+12345",
                           "0x1234", "reddish", " red"}) {
    EXPECT_EQ(ParseColor(text), std::nullopt) << text;
  }
  EXPECT_NE(tool::CheckColor("purpel").find("did you mean purple?"), std::string::npos);
}

void ExpectSize(const std::string& text, LengthUnit unit, double width, double height) {
  const auto resize = ParseResize(text);
  ASSERT_TRUE(resize) << text;
  EXPECT_EQ(resize->unit, unit) << text;
  EXPECT_EQ(resize->width, width) << text;
  EXPECT_EQ(resize->height, height) << text;
}

TEST(SizeArgument, PixelsAndPercent_Should_StayAsTyped) {
  ExpectSize("50%", LengthUnit::percent, 50, 50);
  ExpectSize("50%x25.5%", LengthUnit::percent, 50, 25.5);
  ExpectSize("800x600", LengthUnit::pixels, 800, 600);
  ExpectSize("800x", LengthUnit::pixels, 800, 0);
  ExpectSize("x600", LengthUnit::pixels, 0, 600);
  for (const char* text : {"", "%", "50", "0%", "-5%", "50%x", "x50%", "50%x25", "nan%", "1e99%",
                           "50 %", "50%x25%x5%", "800x600%"}) {
    EXPECT_FALSE(ParseResize(text)) << text;
  }
}

TEST(RectArgument, PixelsAndPercent_Should_BeEdgesAsTyped) {
  EXPECT_EQ(ParseRect("3,2,4,5"), (RecipeCrop{LengthUnit::pixels, 3, 2, 7, 7}));
  EXPECT_EQ(ParseRect("10%,20%,80%,30.5%"), (RecipeCrop{LengthUnit::percent, 10, 20, 90, 50.5}));
  for (const char* text : {"", "1,2,3", "1,2,3,4,5", "1,2,0,4", "1,2,3,0", "-1,2,3,4", "1,2,3,x",
                           "10%,10%,80,80", "10%,10%,0%,80%", "10%,101%,1%,80%", "1.5,2,3,4"}) {
    EXPECT_FALSE(ParseRect(text)) << text;
  }
}

TEST(RectArgument, MapRectangle_Should_NeedTheMinimumFirst) {
  EXPECT_EQ(ParseMapRect("500000.5,-10,500100,20e3"),
            (RecipeCrop{LengthUnit::map, 500000.5, 20000, 500100, -10}));
  for (const char* text :
       {"", "1,2,3", "3,2,1,4", "1,4,3,2", "1,2,1,4", "1,2,nan,4", "1,2,inf,4"}) {
    EXPECT_FALSE(ParseMapRect(text)) << text;
  }
}

}  // namespace
}  // namespace rasterkit::test
