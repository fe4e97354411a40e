#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/graphics/bitmap.h>

#include "tests/reference/change_values_reference.h"
#include "tests/reference/gray.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::PaddingIsZero;
using test::PaperBitmap;
using test::SamePixels;

/// Every level in all three channels.
TBitmap Levels() {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, 256, 1);
  for (int i = 0; i < 768; ++i) bitmap.ScanLine(0)[i] = static_cast<uint8_t>(i / 3);
  return bitmap;
}

TColor After(TColor color, float red, float green, float blue) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, 1, 1);
  *reinterpret_cast<RGBrec*>(bitmap.ScanLine(0)) = {static_cast<uint8_t>(color >> 16),
                                                    static_cast<uint8_t>(color >> 8),
                                                    static_cast<uint8_t>(color)};
  ShiftColors(&bitmap, red, green, blue);
  return bitmap.PixelColor(0, 0);
}

TEST(ShiftColorsTest, Percentages_Should_ScaleTheirOwnChannel) {
  EXPECT_EQ(After(RGB(100, 100, 100), 20, -100, 0), RGB(120, 0, 100));
  EXPECT_EQ(After(RGB(1, 2, 3), 100, 100, 100), RGB(2, 4, 6));
}

TEST(ShiftColorsTest, Products_Should_BeCutAndHalvesBecomeEven) {
  EXPECT_EQ(After(RGB(200, 128, 127), 100, 100, 100), RGB(255, 255, 254));
  EXPECT_EQ(After(RGB(1, 3, 5), 50, 50, 50), RGB(2, 4, 8));
  EXPECT_EQ(After(RGB(200, 200, 200), -101, -300, -100), RGB(0, 0, 0));
}

TEST(ShiftColorsTest, Products_Should_NotBecomeSinglesBeforeTheyAreRounded) {
  // 19.4999993, 16.5000004 and 0.50000001, which are halves in single precision.
  EXPECT_EQ(After(RGB(15, 15, 10), 30, 10, -95), RGB(19, 17, 1));
}

TEST(ShiftColorsTest, Zeros_Should_KeepColorsAndStillConvertTo24Bit) {
  for (const TPixelFormat format : test::kEveryFormat) {
    std::mt19937 random(9);
    TBitmap actual = PaperBitmap(format, 13, 4, random), expected;
    expected.Assign(&actual);
    expected.SetPixelFormat(pf24bit);
    ShiftColors(&actual, 0, 0, 0);
    EXPECT_EQ(actual.PixelFormat(), pf24bit);
    EXPECT_TRUE(SamePixels(expected, actual));
  }
}

TEST(ShiftColorsTest, NullAndEmptyBitmaps_Should_StayAsTheyAre) {
  ShiftColors(nullptr, 1, 2, 3);
  TBitmap bitmap;
  ShiftColors(&bitmap, 1, 2, 3);
  EXPECT_EQ(bitmap.PixelFormat(), pfDevice);
}

TEST(ShiftColorsTest, EveryLevelAndWholePercentage_Should_EqualTheReference) {
  for (int percent = -150; percent <= 300; ++percent) {
    TBitmap expected = Levels(), actual = Levels();
    const auto red = static_cast<float>(percent);
    reference::ShiftColors(expected, red, -red, red / 2);
    ShiftColors(&actual, red, -red, red / 2);
    ASSERT_TRUE(SamePixels(expected, actual)) << percent;
  }
}

TEST(ShiftColorsTest, EveryFormatAndSize_Should_EqualTheReference) {
  std::mt19937 random(12);
  const auto percent = [&] { return static_cast<float>(random() % 2010) / 10 - 100; };
  for (int width = 1; width <= 70; ++width)
    for (const TPixelFormat format : test::kEveryFormat) {
      TBitmap actual = PaperBitmap(format, width, 3, random), expected;
      expected.Assign(&actual);
      const float red = percent(), green = percent(), blue = percent();
      reference::ShiftColors(expected, red, green, blue);
      ShiftColors(&actual, red, green, blue);
      ASSERT_TRUE(SamePixels(expected, actual)) << width << ", format " << format;
      ASSERT_TRUE(PaddingIsZero(actual));
    }
}

}  // namespace
}  // namespace rasterkit
