#include <random>

#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

TEST(BitmapFormat, SetPixelFormat_Should_Convert_When_FormatDiffers) {
  for (const TPixelFormat from : test::kEveryFormat) {
    for (const TPixelFormat to : {pf15bit, pf16bit, pf24bit, pf32bit}) {
      TBitmap bitmap = test::GradientBitmap(from, 33, 15);
      bitmap.SetPixelFormat(to);
      EXPECT_EQ(bitmap.PixelFormat(), to);
      EXPECT_EQ(bitmap.StoredBits(), StoredBitsPerPixel(to));
      EXPECT_FALSE(bitmap.Palette());
      if (to == pf24bit || to == pf32bit) {
        EXPECT_TRUE(test::SameColors(test::GradientBitmap(from, 33, 15), bitmap));
      }
    }
  }
}

TEST(BitmapFormat, SetPixelFormat_Should_Store32Bit_When_Device) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 9, 5);
  bitmap.SetPixelFormat(pfDevice);
  EXPECT_EQ(bitmap.PixelFormat(), pfDevice);
  EXPECT_EQ(bitmap.StoredBits(), 32);
  EXPECT_EQ(bitmap.ScanLine(4)[3], 255);
  EXPECT_TRUE(test::SameColors(test::GradientBitmap(pf24bit, 9, 5), bitmap));
}

TEST(BitmapFormat, SetPixelFormat_Should_OnlyRename_When_DeviceBecomes32Bit) {
  TBitmap bitmap;
  bitmap.SetSize(9, 5);
  const uint8_t* rows = bitmap.ScanLine(0);
  bitmap.SetPixelFormat(pf32bit);
  EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
  EXPECT_EQ(bitmap.ScanLine(0), rows);
}

TEST(BitmapFormat, SetPixelFormat_Should_KeepRows_When_Custom) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap bitmap = test::GradientBitmap(format, 21, 7);
    bitmap.SetPixelFormat(pfCustom);
    EXPECT_EQ(bitmap.PixelFormat(), pfCustom);
    EXPECT_EQ(bitmap.StoredBits(), StoredBitsPerPixel(format));
    EXPECT_TRUE(test::SamePixels(test::GradientBitmap(format, 21, 7), bitmap));
    bitmap.SetPixelFormat(format);
    EXPECT_EQ(bitmap.PixelFormat(), format);
    EXPECT_TRUE(test::SamePixels(test::GradientBitmap(format, 21, 7), bitmap));
  }
}

TEST(BitmapFormat, SetPixelFormat_Should_Raise_When_ThereIsNoSuchFormat) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 3, 2);
  EXPECT_THROW(bitmap.SetPixelFormat(static_cast<TPixelFormat>(9)), RangeError);
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
}

TEST(BitmapFormat, NewIndexedBitmap_Should_HaveTheDefaultPalette) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    TBitmap bitmap;
    bitmap.SetPixelFormat(format);
    EXPECT_EQ(bitmap.Palette(), DefaultPalette(format));
    bitmap.SetSize(3, 3);
    EXPECT_EQ(bitmap.Palette(), DefaultPalette(format));
  }
}

TEST(BitmapFormat, Palette_Should_Have256Or16Entries_When_ConvertedTo8Or4Bits) {
  for (const TPixelFormat from : test::kEveryFormat) {
    if (from != pf8bit) {
      TBitmap bitmap = test::GradientBitmap(from, 40, 30);
      bitmap.SetPixelFormat(pf8bit);
      EXPECT_EQ(bitmap.Palette().Count(), 256);
    }
    if (from != pf4bit) {
      TBitmap bitmap = test::GradientBitmap(from, 40, 30);
      bitmap.SetPixelFormat(pf4bit);
      EXPECT_EQ(bitmap.Palette().Count(), 16);
    }
  }
}

TEST(BitmapFormat, SetPalette_Should_KeepIndexes) {
  std::mt19937 random(2);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    TBitmap bitmap = test::RandomBitmap(format, 19, 5, random);
    const std::unique_ptr<TBitmap> before = bitmap.Clone();
    const HPALETTE shorter = test::RandomPalette(2, random);
    bitmap.SetPalette(shorter);
    EXPECT_EQ(bitmap.Palette(), shorter) << "as many entries as given";
    for (int y = 0; y < 5; ++y)
      EXPECT_TRUE(std::equal(bitmap.ScanLine(y), bitmap.ScanLine(y) + bitmap.Stride(),
                             before->ScanLine(y)));
  }
}

TEST(BitmapFormat, SetPalette_Should_BeDropped_When_TrueColor) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 3, 2);
  bitmap.SetPalette(GrayPalette(256));
  EXPECT_FALSE(bitmap.Palette());
}

TEST(BitmapFormat, PixelColor_Should_BeBlack_When_IndexIsBeyondThePaletteOrPixelOutside) {
  std::mt19937 random(2);
  TBitmap bitmap = test::RandomBitmap(pf8bit, 2, 1, random);
  bitmap.SetPalette(HPALETTE(GrayPalette(256).Entries().subspan(100, 3)));
  bitmap.ScanLine(0)[0] = 2;
  bitmap.ScanLine(0)[1] = 3;
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(102, 102, 102));
  EXPECT_EQ(bitmap.PixelColor(1, 0), clBlack);
  EXPECT_EQ(bitmap.PixelColor(2, 0), clBlack);
  EXPECT_EQ(bitmap.PixelColor(0, -1), clBlack);
}

TEST(BitmapFormat, ResetPixels_Should_GiveFormatSizeAndDefaultPalette) {
  std::mt19937 random(3);
  TBitmap bitmap = test::RandomBitmap(pf8bit, 9, 5, random);
  bitmap.SetDpi({300, 200});
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(RGB(1, 2, 3));
  bitmap.ResetPixels(pf4bit, 13, 11);
  EXPECT_EQ(bitmap.PixelFormat(), pf4bit);
  EXPECT_EQ(bitmap.Width(), 13);
  EXPECT_EQ(bitmap.Height(), 11);
  EXPECT_EQ(bitmap.Palette(), DefaultPalette(pf4bit));
  EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 200}));
  EXPECT_TRUE(bitmap.Transparent());
  EXPECT_EQ(bitmap.TransparentColor(), RGB(1, 2, 3));
}

TEST(BitmapFormat, ResetPixels_Should_KeepThePalette_When_FormatStays) {
  std::mt19937 random(3);
  TBitmap bitmap = test::RandomBitmap(pf8bit, 9, 5, random);
  const HPALETTE palette = bitmap.Palette();
  bitmap.ResetPixels(pf8bit, 31, 2);
  EXPECT_EQ(bitmap.Palette(), palette);
  EXPECT_EQ(bitmap.Width(), 31);
}

TEST(BitmapFormat, ResetPixels_Should_Raise_When_SizeIsAbsurd) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 3, 2);
  EXPECT_THROW(bitmap.ResetPixels(pf32bit, 1000000, 1000000), LimitError);
  EXPECT_THROW(bitmap.ResetPixels(pf32bit, -1, 1), RangeError);
  EXPECT_TRUE(test::SamePixels(test::GradientBitmap(pf24bit, 3, 2), bitmap));
}

TEST(BitmapFormat, Rows_Should_TakeTheStatedBytes) {
  for (const TPixelFormat format : test::kEveryFormat) {
    for (int width = 1; width < 70; ++width) {
      TBitmap bitmap;
      bitmap.ResetPixels(format, width, 2);
      const int bits = StoredBitsPerPixel(format);
      EXPECT_EQ(bitmap.Stride(), static_cast<size_t>((width * bits + 31) / 32 * 4));
      EXPECT_EQ(bitmap.ScanLine(0) + bitmap.Stride(), bitmap.ScanLine(1)) << "top to bottom";
    }
  }
}

}  // namespace
}  // namespace rasterkit
