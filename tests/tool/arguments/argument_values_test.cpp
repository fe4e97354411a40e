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
using tool::ParseSizeArgument;

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

TEST(SizeArgument, Percent_Should_BeRoundedHalvesToEven) {
  const auto half = ParseSizeArgument("50%").value();
  EXPECT_EQ(half.For(800, 600).width, 400);
  EXPECT_EQ(half.For(800, 600).height, 300);
  EXPECT_EQ(half.For(5, 7).width, 2) << "2.5";
  EXPECT_EQ(half.For(5, 7).height, 4) << "3.5";
  EXPECT_EQ(half.For(1, 1).width, 1);
  const auto both = ParseSizeArgument("50%x25%").value();
  EXPECT_EQ(both.For(800, 600).width, 400);
  EXPECT_EQ(both.For(800, 600).height, 150);
  EXPECT_EQ(ParseSizeArgument("800x").value().For(1600, 1000).height, 500);
  for (const char* text : {"", "%", "50", "0%", "-5%", "50%x", "x50%", "50%x25", "nan%", "1e99%",
                           "50 %", "50%x25%x5%", "800x600%"}) {
    EXPECT_FALSE(ParseSizeArgument(text)) << text;
  }
}

void ExpectRect(const CropStep& rect, int left, int top, int width, int height) {
  EXPECT_EQ(rect.left, left);
  EXPECT_EQ(rect.top, top);
  EXPECT_EQ(rect.width, width);
  EXPECT_EQ(rect.height, height);
}

TEST(RectArgument, PixelsAndPercent_Should_BeRead) {
  ExpectRect(ParseRect("3,2,4,5").value().For(1, 1), 3, 2, 4, 5);
  const auto rect = ParseRect("10%,10%,80%,80%").value();
  ExpectRect(rect.For(100, 200), 10, 20, 80, 160);
  ExpectRect(rect.For(5, 5), 0, 0, 4, 4);
  ExpectRect(rect.For(1, 1), 0, 0, 1, 1);
  ExpectRect(ParseRect("0%,0%,100%,100%").value().For(7, 3), 0, 0, 7, 3);
  ExpectRect(ParseRect("99.9%,99.9%,0.1%,0.1%").value().For(10, 10), 9, 9, 1, 1);
  ExpectRect(ParseRect("100%,100%,1%,1%").value().For(10, 10), 9, 9, 1, 1);
  for (const char* text : {"", "1,2,3", "1,2,3,4,5", "1,2,0,4", "1,2,3,0", "-1,2,3,4", "1,2,3,x",
                           "10%,10%,80,80", "10%,10%,0%,80%", "10%,101%,1%,80%", "1.5,2,3,4"}) {
    EXPECT_FALSE(ParseRect(text)) << text;
  }
}

TEST(RectArgument, MapRectangle_Should_NeedTheMinimumFirst) {
  const auto rect = ParseMapRect("500000.5,-10,500100,20e3").value();
  EXPECT_EQ(rect.minX, 500000.5);
  EXPECT_EQ(rect.minY, -10);
  EXPECT_EQ(rect.maxX, 500100);
  EXPECT_EQ(rect.maxY, 20000);
  for (const char* text :
       {"", "1,2,3", "3,2,1,4", "1,4,3,2", "1,2,1,4", "1,2,nan,4", "1,2,inf,4"}) {
    EXPECT_FALSE(ParseMapRect(text)) << text;
  }
}

}  // namespace
}  // namespace rasterkit::test
