#include <gtest/gtest.h>

#include <rasterkit/jpegexif/date_time.h>
#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

TEST(ExifText, Constants_Should_HaveTheirFixedValues) {
  EXPECT_STREQ(cDataSep, ", ");
  EXPECT_STREQ(cDecodeSep, ",");
  EXPECT_STREQ(cDelim, " = ");
}

TEST(ExifText, StrBefore_Should_EndAtTheFirstSeparator) {
  EXPECT_EQ(StrBefore("a, b, c", ", "), "a");
  EXPECT_EQ(StrBefore("abc", ", "), "abc");
  EXPECT_EQ(StrBefore(", b", ", "), "");
  EXPECT_EQ(StrBefore("abc", ""), "abc");
  EXPECT_EQ(StrBefore("", ","), "");
}

TEST(ExifText, StrAfter_Should_BeginBehindTheFirstSeparator) {
  EXPECT_EQ(StrAfter("a, b, c", ", "), "b, c");
  EXPECT_EQ(StrAfter("abc", ", "), "");
  EXPECT_EQ(StrAfter("abc", ""), "abc");
  EXPECT_EQ(StrAfter("abc,", ","), "");
}

TEST(ExifText, StrCount_Should_CountWithoutOverlap) {
  EXPECT_EQ(StrCount("a,b,c", ","), 2);
  EXPECT_EQ(StrCount("aaaa", "aa"), 2);
  EXPECT_EQ(StrCount("abc", ","), 0);
  EXPECT_EQ(StrCount(",", ","), 1);
  EXPECT_EQ(StrCount("abc", ""), 0);
}

TEST(ExifText, StrNth_Should_CountFieldsFromOne) {
  EXPECT_EQ(StrNth("a, b, c", ", ", 1), "a");
  EXPECT_EQ(StrNth("a, b, c", ", ", 2), "b");
  EXPECT_EQ(StrNth("a, b, c", ", ", 3), "c");
  EXPECT_EQ(StrNth("a, b, c", ", ", 4), "");
  EXPECT_EQ(StrNth("a, b, c", ", ", 1000000000), "");
  EXPECT_EQ(StrNth("a, b, c", ", ", 0), "a");
  EXPECT_EQ(StrNth("a, b, c", "", 2), "a, b, c");
}

TEST(ExifText, GetIrrational_Should_ReadFractions) {
  EXPECT_EQ(GetIrrational("25/2"), 12.5);
  EXPECT_EQ(GetIrrational("  1/4 "), 0.25);
  EXPECT_EQ(GetIrrational("7 1/2"), 7.5);
  EXPECT_EQ(GetIrrational("-1/2"), -0.5);
  EXPECT_EQ(GetIrrational("2147483647 1/2"), 2147483647.5);
}

TEST(ExifText, GetIrrational_Should_BeZero_When_TheDenominatorIsZero) {
  EXPECT_EQ(GetIrrational("5/0"), 0);
  EXPECT_EQ(GetIrrational("3 5/0"), 0);
}

TEST(ExifText, GetIrrational_Should_Throw_When_ItIsNoFraction) {
  for (const char* text : {"", "12", "a/b", "1/", "/2", "1/2/3", "x 1/2", "12345678901/2"}) {
    EXPECT_THROW(GetIrrational(text), ConversionError) << text;
  }
}

TEST(ExifText, DecodeField_Should_FindTheTextOfAValue) {
  const char* code = "1:one,2:two,12:twelve";
  EXPECT_EQ(DecodeField(code, "1"), "one");
  EXPECT_EQ(DecodeField(code, " 2 "), "two");
  EXPECT_EQ(DecodeField(code, "12"), "twelve");
  EXPECT_EQ(DecodeField(code, "3"), "");
  EXPECT_EQ(DecodeField("", "1"), "");
}

TEST(ExifText, DecodeField_Should_BeEmpty_When_TheListNamesNoTexts) {
  for (const char* value : {"1", "3", "6", "8"}) EXPECT_EQ(DecodeField("1,3,6,8", value), "");
}

TEST(ExifText, Templates_Should_TakeOneNumber) {
  EXPECT_EQ(detail::NumberInTemplate("%d", 7.9), "7");
  EXPECT_EQ(detail::NumberInTemplate("%e", 1.5), "1.500000e+00");
  EXPECT_EQ(detail::NumberInTemplate("%.3g", 1234.5), "1.23e+03");
  EXPECT_EQ(detail::NumberInTemplate("%f and %f", 1), "1.000000 and %f");
  EXPECT_EQ(detail::NumberInTemplate("%.999999999999f", 1).substr(0, 4), "1.00");
  EXPECT_EQ(detail::NumberInTemplate("%12", 1), "%12");
  EXPECT_EQ(detail::NumberInTemplate("%.1f", -1e300).size(), 304u);
}

TEST(DateTime, Dates_Should_CountDaysFromTheEndOf1899) {
  EXPECT_EQ(EncodeDate(1899, 12, 30), 0);
  EXPECT_EQ(EncodeDate(1900, 1, 1), 2);
  EXPECT_EQ(EncodeDate(1970, 1, 1), 25569);
  EXPECT_EQ(EncodeDate(2000, 2, 29), 36585);
  EXPECT_EQ(EncodeDate(1, 1, 1), -693593);
  EXPECT_EQ(EncodeDate(9999, 12, 31), 2958465);
}

TEST(DateTime, Dates_Should_BeRefused_When_TheyDoNotExist) {
  const int32_t wrong[][3] = {{0, 1, 1},     {10000, 1, 1}, {2019, 0, 1},  {2019, 13, 1},
                              {2019, 1, 0},  {2019, 1, 32}, {2019, 2, 29}, {1900, 2, 29},
                              {2019, 4, 31}, {-5, 1, 1},    {2019, 257, 1}};
  for (const auto& [year, month, day] : wrong) {
    EXPECT_THROW(EncodeDate(year, month, day), ConversionError)
        << year << " " << month << " " << day;
  }
}

TEST(DateTime, Times_Should_BeFractionsOfADay) {
  EXPECT_EQ(EncodeTime(0, 0, 0, 0), 0);
  EXPECT_EQ(EncodeTime(12, 0, 0, 0), 0.5);
  EXPECT_EQ(EncodeTime(23, 59, 59, 999), 86399999.0 / 86400000.0);
  EXPECT_THROW(EncodeTime(24, 0, 0, 0), ConversionError);
  EXPECT_THROW(EncodeTime(0, 60, 0, 0), ConversionError);
  EXPECT_THROW(EncodeTime(0, 0, 60, 0), ConversionError);
  EXPECT_THROW(EncodeTime(0, 0, 0, 1000), ConversionError);
  EXPECT_THROW(EncodeTime(-1, 0, 0, 0), ConversionError);
}

TEST(DateTime, Compose_Should_CountTheTimeForward_AlsoBeforeDayZero) {
  EXPECT_EQ(ComposeDateTime(2, 0.25), 2.25);
  EXPECT_EQ(ComposeDateTime(0, 0.25), 0.25);
  EXPECT_EQ(ComposeDateTime(-1, 0.25), -1.25);
}

}  // namespace
}  // namespace rasterkit
