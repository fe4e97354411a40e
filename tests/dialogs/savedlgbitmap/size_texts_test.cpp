#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/size_texts.h>

namespace rasterkit {
namespace {

std::string Size(int bits, double width, double height) {
  const BitmapSizeText text = TextOfBitmapSize(bits, width, height);
  return text.number + " " + std::string(text.unit);
}

TEST(SizeTextsTest, TrueColor_Should_BeWrittenAsKnown) {
  EXPECT_EQ(Size(24, 100, 100), "30 [kB]");
  EXPECT_EQ(Size(24, 1000, 1000), "3.00 [MB]");
  EXPECT_EQ(Size(24, 50, 50), "7500 [byte]");
}

TEST(SizeTextsTest, Units_Should_ChangeAboveTheirBorders) {
  EXPECT_EQ(Size(8, 100, 100), "10000 [byte]");
  EXPECT_EQ(Size(8, 73, 137), "10 [kB]");  // 10,001 bytes
  EXPECT_EQ(Size(8, 1000, 1000), "1000 [kB]");
  EXPECT_EQ(Size(8, 101, 9901), "1.00 [MB]");  // 1,000,001 bytes
}

TEST(SizeTextsTest, Bytes_Should_BeRounded_HalvesToEven) {
  EXPECT_EQ(Size(1, 4, 1), "0 [byte]");
  EXPECT_EQ(Size(1, 5, 1), "1 [byte]");
  EXPECT_EQ(Size(1, 12, 1), "2 [byte]");
  EXPECT_EQ(Size(4, 5, 1), "2 [byte]");
  EXPECT_EQ(Size(4, 7, 1), "4 [byte]");
}

TEST(SizeTextsTest, Thousands_Should_BeRounded_HalvesToEven) {
  EXPECT_EQ(Size(8, 100, 105), "10 [kB]");
  EXPECT_EQ(Size(8, 100, 115), "12 [kB]");
  EXPECT_EQ(Size(8, 100, 114), "11 [kB]");
}

TEST(SizeTextsTest, Millions_Should_BeRoundedByTheNumberItself) {
  // As a double 1.115 lies just below, 1.125 just there, 1.135 just above.
  EXPECT_EQ(Size(8, 1115, 1000), "1.11 [MB]");
  EXPECT_EQ(Size(8, 1125, 1000), "1.12 [MB]");
  EXPECT_EQ(Size(8, 1135, 1000), "1.14 [MB]");
}

TEST(SizeTextsTest, LargePictures_Should_BeComputedInSinglePrecision) {
  // 16,777,217 bytes are one more than a float can tell.
  EXPECT_EQ(Size(8, 16777217, 1), "16.78 [MB]");
  EXPECT_EQ(Size(24, 40000, 30000), "3600.00 [MB]");
  // In double precision this were 1234567890.12.
  EXPECT_EQ(Size(8, 1234567890.12, 1000000), "1234567948.14 [MB]");
}

TEST(SizeTextsTest, NoPixels_Should_BeNoBytes) {
  EXPECT_EQ(Size(24, 0, 0), "0 [byte]");
  EXPECT_EQ(Size(24, 0, INT32_MAX), "0 [byte]");
}

TEST(SizeTextsTest, Millimeters_Should_BeWhole) {
  EXPECT_EQ(TextOfMillimeters(210), "210");
  EXPECT_EQ(TextOfMillimeters(297.4F), "297");
  EXPECT_EQ(TextOfMillimeters(297.6F), "298");
  EXPECT_EQ(TextOfMillimeters(0), "0");
  EXPECT_EQ(TextOfMillimeters(0.4F), "0");
}

TEST(SizeTextsTest, Millimeters_Should_HaveSevenDigitsAtMost) {
  EXPECT_EQ(TextOfMillimeters(9999999), "9999999");
  EXPECT_EQ(TextOfMillimeters(12345678), "12345680");
  EXPECT_EQ(TextOfMillimeters(123456784), "123456800");
}

TEST(SizeTextsTest, AnyFloat_Should_BeSurvived) {
  using Limits = std::numeric_limits<float>;
  for (const float value :
       {Limits::max(), Limits::lowest(), Limits::infinity(), Limits::quiet_NaN(), -1.5F})
    EXPECT_FALSE(TextOfMillimeters(value).empty());
  EXPECT_FALSE(Size(24, INT32_MAX, INT32_MAX).empty());
}

}  // namespace
}  // namespace rasterkit
