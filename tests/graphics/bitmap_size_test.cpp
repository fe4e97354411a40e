#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

constexpr TPixelFormat kFormats[] = {pf1bit,  pf4bit,  pf8bit,  pf15bit,
                                     pf16bit, pf24bit, pf32bit, pfDevice};

TEST(BitmapSize, NewBitmap_Should_BeEmptyDevice) {
  const TBitmap bitmap;
  EXPECT_EQ(bitmap.Width(), 0);
  EXPECT_EQ(bitmap.Height(), 0);
  EXPECT_TRUE(bitmap.Empty());
  EXPECT_EQ(bitmap.PixelFormat(), pfDevice);
  EXPECT_EQ(bitmap.StoredBits(), 32);
}

TEST(BitmapSize, NewArea_Should_BeWhiteInEveryFormat) {
  for (const TPixelFormat format : kFormats) {
    TBitmap bitmap;
    bitmap.SetPixelFormat(format);
    bitmap.SetSize(11, 3);
    for (int y = 0; y < 3; ++y) {
      for (int x = 0; x < 11; ++x) ASSERT_EQ(bitmap.PixelColor(x, y), clWhite) << format;
    }
  }
}

TEST(BitmapSize, NewArea_Should_BeOnesAt1BitAndOpaqueAt32Bit) {
  TBitmap mono;
  mono.SetPixelFormat(pf1bit);
  mono.SetSize(11, 2);
  EXPECT_EQ(mono.ScanLine(1)[0], 0xFF);
  EXPECT_EQ(mono.ScanLine(1)[1], 0xE0);
  TBitmap color;
  color.SetPixelFormat(pf32bit);
  color.SetSize(2, 2);
  EXPECT_EQ(color.ScanLine(1)[7], 255);
}

TEST(BitmapSize, SetSize_Should_KeepTheTopLeftPart_When_GrowingAndShrinking) {
  for (const TPixelFormat format : kFormats) {
    TBitmap bitmap;
    bitmap.SetPixelFormat(format);
    bitmap.SetSize(13, 5);
    bitmap.Canvas().Brush.Color = clBlack;
    bitmap.Canvas().FillRect({0, 0, 13, 5});
    bitmap.Canvas().Brush.Color = clWhite;
    bitmap.SetSize(21, 7);
    for (int y = 0; y < 7; ++y) {
      for (int x = 0; x < 21; ++x)
        ASSERT_EQ(bitmap.PixelColor(x, y), x < 13 && y < 5 ? clBlack : clWhite)
            << format << " at " << x << ", " << y;
    }
    bitmap.SetSize(3, 6);
    EXPECT_EQ(bitmap.PixelColor(2, 4), clBlack);
    EXPECT_EQ(bitmap.PixelColor(2, 5), clWhite);
  }
}

TEST(BitmapSize, SetSize_Should_FillWithTheCanvasBrush) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf24bit);
  bitmap.Canvas().Brush.Color = RGB(10, 20, 30);
  bitmap.SetSize(5, 2);
  EXPECT_EQ(bitmap.PixelColor(4, 1), RGB(10, 20, 30));
}

TEST(BitmapSize, Padding_Should_BeZero_When_WidthIsOdd) {
  for (const TPixelFormat format : kFormats) {
    for (int width = 1; width < 40; ++width) {
      TBitmap bitmap;
      bitmap.SetPixelFormat(format);
      bitmap.SetSize(40, 3);
      bitmap.SetSize(width, 3);
      const auto bits = static_cast<size_t>(width * bitmap.StoredBits());
      for (int y = 0; y < 3; ++y) {
        const uint8_t* row = bitmap.ScanLine(y);
        for (size_t bit = bits; bit < bitmap.Stride() * 8; ++bit)
          ASSERT_EQ(row[bit / 8] >> (7 - bit % 8) & 1, 0) << format << " width " << width;
      }
    }
  }
}

TEST(BitmapSize, SetSize_Should_RaiseAndChangeNothing_When_SizeIsNegative) {
  TBitmap bitmap;
  bitmap.SetSize(3, 2);
  EXPECT_THROW(bitmap.SetSize(-1, 2), RangeError);
  EXPECT_THROW(bitmap.SetHeight(-7), RangeError);
  EXPECT_EQ(bitmap.Width(), 3);
  EXPECT_EQ(bitmap.PixelColor(2, 1), clWhite);
}

TEST(BitmapSize, SetSize_Should_RaiseAndChangeNothing_When_BeyondTheBudget) {
  TBitmap bitmap;
  bitmap.SetSize(3, 2);
  EXPECT_THROW(bitmap.SetSize(0x7FFFFFFF, 0x7FFFFFFF), LimitError);
  EXPECT_THROW(bitmap.SetSize(65535, 65535), LimitError);
  EXPECT_EQ(bitmap.Width(), 3);
  EXPECT_EQ(bitmap.Height(), 2);
  EXPECT_EQ(bitmap.PixelColor(2, 1), clWhite);
}

TEST(BitmapSize, Budget_Should_BeSettable) {
  const uint64_t before = PictureMemoryLimit();
  SetPictureMemoryLimit(1000);
  TBitmap bitmap;
  EXPECT_THROW(bitmap.SetSize(100, 100), LimitError);
  bitmap.SetSize(10, 25);
  EXPECT_THROW(bitmap.SetSize(10, 26), LimitError);
  SetPictureMemoryLimit(before);
  EXPECT_EQ(bitmap.Height(), 25);
}

TEST(BitmapSize, ScanLine_Should_Raise_When_RowIsOutside) {
  TBitmap bitmap;
  bitmap.SetSize(3, 2);
  EXPECT_NO_THROW(bitmap.ScanLine(1));
  EXPECT_THROW(bitmap.ScanLine(2), RangeError);
  EXPECT_THROW(bitmap.ScanLine(-1), RangeError);
  const TBitmap& readOnly = bitmap;
  EXPECT_THROW(readOnly.ScanLine(2), RangeError);
  EXPECT_THROW(TBitmap().ScanLine(0), RangeError);
}

TEST(BitmapSize, EmptyDirections_Should_BeAllowed) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf4bit);
  bitmap.SetSize(0, 5);
  EXPECT_EQ(bitmap.Height(), 5);
  EXPECT_TRUE(bitmap.Empty());
  EXPECT_NO_THROW(bitmap.ScanLine(4));
  bitmap.SetSize(3, 5);
  EXPECT_EQ(bitmap.PixelColor(2, 4), clWhite);
}

}  // namespace
}  // namespace rasterkit
