#include <clocale>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using namespace std::string_literals;

/// Sets the process's locale for one test.
class ScopedLocale {
 public:
  explicit ScopedLocale(const char* name) : isSet_(std::setlocale(LC_ALL, name) != nullptr) {}
  ~ScopedLocale() { std::setlocale(LC_ALL, "C"); }
  explicit operator bool() const { return isSet_; }

 private:
  bool isSet_;
};

TEST(UpperCaseTest, ChangesTheLettersAToZOnly) {
  EXPECT_EQ(UpperCase("abc.tiff {`az~ ß ä"), "ABC.TIFF {`AZ~ ß ä");
  EXPECT_EQ(UpperCase(""), "");
  EXPECT_EQ(UpperCase("a\0b"s), "A\0B"s);
}

TEST(UpperCaseTest, StaysWithAsciiWhateverTheLocale) {
  const ScopedLocale locale("C.UTF-8");
  EXPECT_EQ(UpperCase("ä"), "ä");
}

TEST(LowerCaseTest, ChangesTheLettersAToZOnly) {
  EXPECT_EQ(LowerCase("ABC.TIFF [@AZ~ ß Ä"), "abc.tiff [@az~ ß Ä");
  EXPECT_EQ(LowerCase("A\0B"s), "a\0b"s);
}

TEST(Utf8OfBytesTest, KeepsValidTextAndReadsOthersAsLatin1) {
  EXPECT_EQ(Utf8OfBytes("größe \U0001F5FA"), "größe \U0001F5FA");
  EXPECT_EQ(Utf8OfBytes("gr\xF6\xDF"), "größ");
  EXPECT_EQ(Utf8OfBytes("ö \xF6"), "\u00C3\u00B6 ö") << "one rule for the whole text";
  EXPECT_EQ(Utf8OfBytes("\x80\xFF"), "\u0080\u00FF");
  EXPECT_EQ(Utf8OfBytes("\xED\xA0\x80"), "\u00ED\u00A0\u0080") << "half of a surrogate pair";
  EXPECT_EQ(Utf8OfBytes("a\0b"s), "a\0b"s);
  EXPECT_EQ(Utf8OfBytes(""), "");
}

TEST(AnsiUpperCaseTest, FollowsTheLocale) {
  const ScopedLocale locale("C.UTF-8");
  ASSERT_TRUE(locale);
  EXPECT_EQ(AnsiUpperCase("größe ñ я ω a1"), "GRÖßE Ñ Я Ω A1");
}

TEST(AnsiUpperCaseTest, KnowsAsciiInThePlainLocale) {
  EXPECT_EQ(AnsiUpperCase(".tiff"), ".TIFF");
  EXPECT_EQ(AnsiUpperCase(""), "");
}

TEST(AnsiUpperCaseTest, LeavesBytesThatAreNotUtf8) {
  const ScopedLocale locale("C.UTF-8");
  EXPECT_EQ(AnsiUpperCase("a\xFF\xC3z\xE2\x82"), "A\xFF\xC3Z\xE2\x82");
}

TEST(AnsiUpperCaseTest, KeepsTextOutsideTheFirstPlane) {
  const ScopedLocale locale("C.UTF-8");
  EXPECT_EQ(AnsiUpperCase("x\U0001F5FA"), "X\U0001F5FA");
}

TEST(CompareTextTest, IgnoresTheCaseOfAsciiLetters) {
  EXPECT_EQ(CompareText("TIF", "tif"), 0);
  EXPECT_LT(CompareText("bmp", "JPG"), 0);
  EXPECT_GT(CompareText("png", "JPG"), 0);
  EXPECT_LT(CompareText("tif", "tiff"), 0);
  EXPECT_GT(CompareText("tiff", "TIF"), 0);
  EXPECT_NE(CompareText("ä", "Ä"), 0);
  EXPECT_EQ(CompareText("", ""), 0);
}

TEST(TrimTest, CutsCharactersUpToTheBlank) {
  EXPECT_EQ(Trim(" \t\r\n a b \0\x01"s), "a b");
  EXPECT_EQ(Trim("\0 \x1F"s), "");
  EXPECT_EQ(Trim(""), "");
  EXPECT_EQ(Trim("\xC3\xA4"), "\xC3\xA4");
}

TEST(StrToIntTest, ReadsWholeNumbers) {
  EXPECT_EQ(StrToInt("0"), 0);
  EXPECT_EQ(StrToInt(" -17 "), -17);
  EXPECT_EQ(StrToInt("+12"), 12);
  EXPECT_EQ(StrToInt("0012"), 12);
  EXPECT_EQ(StrToInt("2147483647"), 2147483647);
  EXPECT_EQ(StrToInt("-2147483648"), -2147483647 - 1);
}

TEST(StrToIntTest, RefusesAnythingElse) {
  for (const char* text : {"", " ", "12a", "a12", "1 2", "1.5", "--1", "+-1", "-+1", "+", "-",
                           "2147483648", "-2147483649", "99999999999999999999", "0x10", "1e3"}) {
    EXPECT_THROW(StrToInt(text), ConversionError) << text;
  }
}

TEST(StrToIntTest, QuotesTheTextItRefuses) {
  try {
    StrToInt("12:30");
    FAIL();
  } catch (const ConversionError& error) {
    EXPECT_STREQ(error.what(), "\"12:30\" is not a whole number");
  }
}

TEST(Utf16LengthTest, CountsUnits) {
  EXPECT_EQ(Utf16Length(""), 0u);
  EXPECT_EQ(Utf16Length("abc"), 3u);
  EXPECT_EQ(Utf16Length("ä€"), 2u);
  EXPECT_EQ(Utf16Length("\U0001F5FA"), 2u);
}

TEST(Utf16LengthTest, CountsEachStrayByteAsOne) {
  EXPECT_EQ(Utf16Length("\xFF"), 1u);
  EXPECT_EQ(Utf16Length("a\xE2\x82"), 3u) << "cut in the middle";
  EXPECT_EQ(Utf16Length("\xC0\x80"), 2u) << "overlong";
  EXPECT_EQ(Utf16Length("\xED\xA0\x80"), 3u) << "a surrogate";
  EXPECT_EQ(Utf16Length("\xF4\x90\x80\x80"), 4u) << "above 0x10FFFF";
}

TEST(Utf16SubstringTest, CutsByUnits) {
  EXPECT_EQ(Utf16Substring("abcdef", 1, 3), "bcd");
  EXPECT_EQ(Utf16Substring("äbc", 1, 1), "b");
  EXPECT_EQ(Utf16Substring("abc", 2, 10), "c");
  EXPECT_EQ(Utf16Substring("abc", 3, 1), "");
  EXPECT_EQ(Utf16Substring("abc", 1, 0), "");
  EXPECT_EQ(Utf16Substring("abc", 1, std::string::npos), "bc");
}

TEST(Utf16SubstringTest, LeavesHalvedPairsOut) {
  const std::string text = "a\U0001F5FAb";
  EXPECT_EQ(Utf16Substring(text, 0, 2), "a");
  EXPECT_EQ(Utf16Substring(text, 0, 3), "a\U0001F5FA");
  EXPECT_EQ(Utf16Substring(text, 2, 2), "b");
  EXPECT_EQ(Utf16Substring(text, 1, 2), "\U0001F5FA");
}

}  // namespace
}  // namespace rasterkit
