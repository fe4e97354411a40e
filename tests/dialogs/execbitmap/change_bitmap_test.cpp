// Without a dialog, in a program without an application object.
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/contrast_brightness_reference.h"
#include "tests/reference/gray_mono.h"
#include "tests/support/copy_of.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::PaperBitmap;
using test::SamePixels;

void ExpectValues(const TChgBmpValuesRec& values, const std::array<int32_t, 7>& expected) {
  EXPECT_EQ((std::array{values.Red, values.Green, values.Blue, values.Sharpen, values.Contrast,
                        values.Brightness, values.GrayValue}),
            expected);
}

TEST(ChangeBitmapTest, TheRecord_Should_BeSevenNumbersInTheirOrder) {
  static_assert(sizeof(TChgBmpValuesRec) == 28);
  const TChgBmpValuesRec values{1, 2, 3, 4, 5, 6, 7};
  ExpectValues(values, {1, 2, 3, 4, 5, 6, 7});
}

TEST(ChangeBitmapTest, WithoutDialog_Should_BrightenFourTimesAndIgnoreTheOtherValues) {
  for (const TPixelFormat format : test::kEveryFormat) {
    std::mt19937 random(5);
    const TBitmap original = PaperBitmap(format, 31, 12, random);
    TBitmap expected = CopyOf(original), actual = CopyOf(original);
    for (int i = 0; i < 4; ++i) reference::Helligkeit(expected, 20, 1);
    TChgBmpValuesRec values{10, -20, 30, 40, 50, 20, 60};
    EXPECT_TRUE(ChangeBitmap(0, &actual, false, values));
    EXPECT_TRUE(SamePixels(expected, actual)) << "format " << format;
    ExpectValues(values, {10, -20, 30, 40, 50, 20, 60});
  }
}

TEST(ChangeBitmapTest, Operation5_Should_UseTheThreshold125WhateverTheGrayValueSays) {
  std::mt19937 random(5);
  const TBitmap original = PaperBitmap(pf32bit, 31, 12, random);
  TBitmap expected = CopyOf(original), actual = CopyOf(original);
  reference::ColorBmpTo1Bit(expected, 125, 0, 0, 0, 255, 255, 255);
  TChgBmpValuesRec values;
  values.GrayValue = 33;
  EXPECT_TRUE(ChangeBitmap(5, &actual, false, values));
  EXPECT_TRUE(SamePixels(expected, actual));
  EXPECT_EQ(values.GrayValue, 33);
}

TEST(ChangeBitmapTest, OtherOperations_Should_LeaveTheBitmapAsItIs) {
  std::mt19937 random(5);
  const TBitmap original = PaperBitmap(pf8bit, 31, 12, random);
  TBitmap actual = CopyOf(original);
  TChgBmpValuesRec values{-30, 300, 3, 4, 5, 6, 7};
  EXPECT_TRUE(ChangeBitmap(2, &actual, false, values));
  EXPECT_TRUE(SamePixels(original, actual));
  ExpectValues(values, {-30, 300, 3, 4, 5, 6, 7});
}

TEST(ChangeBitmapTest, ValuesOutOfRange_Should_ComeBackAsTheDialogWouldHoldThem) {
  TBitmap bitmap;
  TChgBmpValuesRec values{-101, 101, 5, -500, 500, 101, 1};
  EXPECT_TRUE(ChangeBitmap(0, &bitmap, false, values));
  ExpectValues(values, {-100, 100, 5, -100, 100, 100, 1});
}

TEST(ChangeBitmapTest, NullAndEmptyBitmaps_Should_BeSurvived) {
  TChgBmpValuesRec values{1, 2, 3, 4, 5, 6, 7};
  EXPECT_FALSE(ChangeBitmap(0, nullptr, false, values));
  EXPECT_FALSE(ChangeBitmap(0, nullptr, true, values));
  TBitmap empty;
  for (const int32_t operation : {0, 5, 9})
    EXPECT_TRUE(ChangeBitmap(operation, &empty, false, values));
  ExpectValues(values, {1, 2, 3, 4, 5, 6, 7});
}

TEST(ChangeBitmapTest, AOnePixelBitmap_Should_BeChanged) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf24bit);
  bitmap.SetSize(1, 1);
  bitmap.ScanLine(0)[1] = 100;
  TChgBmpValuesRec values;
  values.Brightness = -100;
  EXPECT_TRUE(ChangeBitmap(0, &bitmap, false, values));
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(0, 0, 0));
}

TEST(ChangeBitmapTest, WhatBelongsToTheBitmap_Should_Stay) {
  std::mt19937 random(5);
  TBitmap bitmap = PaperBitmap(pf24bit, 9, 9, random);
  bitmap.SetTransparent(true);
  bitmap.SetDpi({300, 200});
  TCanvas& canvas = bitmap.Canvas();
  canvas.Pen.Width = 7;
  TChgBmpValuesRec values;
  values.Brightness = 10;
  EXPECT_TRUE(ChangeBitmap(0, &bitmap, false, values));
  EXPECT_TRUE(bitmap.Transparent());
  EXPECT_EQ(bitmap.Dpi().y, 200);
  EXPECT_EQ(&bitmap.Canvas(), &canvas);
  EXPECT_EQ(canvas.Pen.Width, 7);
}

}  // namespace
}  // namespace rasterkit
