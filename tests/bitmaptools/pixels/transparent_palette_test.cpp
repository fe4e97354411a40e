#include <cstdint>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tests/bitmaptools/pixels/pixel_cases.h"
#include "tests/reference/transparency.h"

namespace rasterkit {
namespace {

using test::AnyBitmap;
using test::ExpectLikeReference;
using test::kEveryNamedFormat;
using test::PaletteBitmap;
using test::SameRows;

constexpr tagPALETTEENTRY kWhite{255, 255, 255, 0};

/// Some palettes with one white entry or several, some without, some dark altogether.
HPALETTE TryingPalette(int count, std::mt19937& random) {
  const HPALETTE colors = test::RandomPalette(count, random);
  TColorTable table = PaletteTable(colors);
  const auto kind = random() % 4;
  for (auto whites = kind; whites > 0; --whites) {
    tagPALETTEENTRY& entry = table[random() % static_cast<unsigned>(count)];
    if (kind < 3) entry = kWhite;
  }
  if (kind == 3) {
    for (tagPALETTEENTRY& entry : table) entry = {0, static_cast<uint8_t>(random() % 3), 1, 0};
  }
  return HPALETTE(std::span(table).first(static_cast<size_t>(count)));
}

/// Bitmaps of every indexed format, width 0 to 70 and size of palette, matching or not.
template <class Body>
void ForEachPaletteBitmap(unsigned seed, Body body) {
  std::mt19937 random(seed);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    for (const int count : {0, 1, 2, 15, 16, 17, 255, 256}) {
      const bool isHandled = count == 16 || count == 256;
      for (int width = 0; width <= 70; width += isHandled ? 1 : 23) {
        SCOPED_TRACE(testing::Message() << format << ", " << count << " entries, width " << width
                                        << ", seed " << seed);
        TBitmap bitmap = PaletteBitmap(format, width, 3, count, random);
        if (isHandled) bitmap.SetPalette(TryingPalette(count, random));
        bitmap.SetModified(false);
        body(bitmap, isHandled, random);
      }
    }
  }
}

void SetEntry(TBitmap& bitmap, int index, tagPALETTEENTRY entry) {
  TColorTable table = PaletteTable(bitmap.Palette());
  table[static_cast<size_t>(index)] = entry;
  bitmap.SetPalette(
      HPALETTE(std::span(table).first(static_cast<size_t>(bitmap.Palette().Count()))));
}

/// 16 x 16 pixels, or 32 x 16 of 4 bits: byte i is i. Entries are grays that rise with the index
/// and end at 200: none is white.
TBitmap AllBytes(TPixelFormat format) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, format == pf4bit ? 32 : 16, 16);
  const int count = format == pf4bit ? 16 : 256;
  TColorTable table{};
  for (int i = 0; i < count; ++i) {
    const auto level = static_cast<uint8_t>(200 * i / (count - 1));
    table[static_cast<size_t>(i)] = {level, level, level, 0};
  }
  bitmap.SetPalette(HPALETTE(std::span(table).first(static_cast<size_t>(count))));
  for (int i = 0; i < 256; ++i) bitmap.ScanLine(i / 16)[i % 16] = static_cast<uint8_t>(i);
  return bitmap;
}

uint8_t ByteOf(const TBitmap& bitmap, int i) {
  return bitmap.ScanLine(i / 16)[i % 16];
}

TEST(SetToTransparent, Should_EqualTheReference_ForEveryPaletteWidthAndTarget) {
  ForEachPaletteBitmap(2310, [](TBitmap& before, bool isHandled, std::mt19937& random) {
    for (const int edge : {0, 1, 127, 254, 255, static_cast<int>(random() % 256)}) {
      const auto t = static_cast<uint8_t>(edge);
      ExpectLikeReference(
          before, [=](TBitmap& x) { reference::SetToTransparent(x, t); },
          [=](TBitmap& x) { SetToTransparent(&x, t); });
    }
    if (isHandled) return;
    SetToTransparent(&before, 0);
    EXPECT_FALSE(before.Modified());
  });
}

TEST(SetToTransparent, Should_EqualTheReference_WithoutAPalette) {
  constexpr unsigned kSeed = 2311;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pfDevice, pf15bit, pf16bit, pf24bit, pf32bit, pfCustom}) {
    for (int width = 0; width <= 70; ++width) {
      SCOPED_TRACE(testing::Message() << format << ", width " << width << ", seed " << kSeed);
      const TBitmap before = AnyBitmap(format, width, 2, random);
      for (const int edge : {0, 254, 255, static_cast<int>(random() % 256)}) {
        const auto t = static_cast<uint8_t>(edge);
        ExpectLikeReference(
            before, [=](TBitmap& x) { reference::SetToTransparent(x, t); },
            [=](TBitmap& x) { SetToTransparent(&x, t); });
      }
    }
  }
}

TEST(SetToTransparent, Should_ChangeNothing_When_TheThresholdIs255) {
  std::mt19937 random(5);
  for (const TPixelFormat format : kEveryNamedFormat) {
    TBitmap bitmap = AnyBitmap(format, 33, 3, random);
    const std::unique_ptr<TBitmap> before = bitmap.Clone();
    SetToTransparent(&bitmap, 255);
    EXPECT_TRUE(SameRows(*before, bitmap)) << format;
    EXPECT_FALSE(bitmap.Modified()) << format;
  }
}

TEST(SetToTransparent, Should_MakeAllButBlackWhite_When_TheThresholdIs0) {
  std::mt19937 random(6);
  TBitmap bitmap = AnyBitmap(pf24bit, 256, 1, random);
  for (int i = 0; i < 256; ++i) std::fill_n(bitmap.ScanLine(0) + 3 * i, 3, static_cast<uint8_t>(i));
  SetToTransparent(&bitmap, 0);
  EXPECT_EQ(bitmap.PixelColor(0, 0), clBlack);
  for (int i = 1; i < 256; ++i) ASSERT_EQ(bitmap.PixelColor(i, 0), clWhite) << i;
}

TEST(SetToTransparent, Should_KeepColorsOfGray0_When_TheThresholdIs0) {
  std::mt19937 random(7);
  TBitmap bitmap = AnyBitmap(pf24bit, 2, 1, random);
  const uint8_t pixels[6] = {8, 0, 0, 9, 0, 0};  // blue 8 is gray 0.912, blue 9 gray 1.026
  std::copy_n(pixels, 6, bitmap.ScanLine(0));
  SetToTransparent(&bitmap, 0);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(0, 0, 8));
  EXPECT_EQ(bitmap.PixelColor(1, 0), clWhite);
}

TEST(SetToTransparent, Should_MakeLightPixelsOpaqueWhite_On32And16Bit) {
  TBitmap deep = test::GradientBitmap(pf32bit, 3, 1);
  std::memset(deep.ScanLine(0), 130, 12);
  SetToTransparent(&deep, 129);
  EXPECT_EQ(deep.ScanLine(0)[3], 255);
  EXPECT_EQ(deep.PixelColor(0, 0), clWhite);
  TBitmap high = test::GradientBitmap(pf16bit, 3, 1);
  std::memset(high.ScanLine(0), 0xEF, 6);
  SetToTransparent(&high, 129);
  EXPECT_EQ(high.ScanLine(0)[0], 0xFF);
  EXPECT_EQ(high.ScanLine(0)[1], 0xFF);
}

TEST(SetToTransparent, Should_MakeTheBrightestEntryWhite_When_ThereIsNone) {
  TBitmap bitmap = AllBytes(pf8bit);
  SetEntry(bitmap, 77, {250, 250, 250, 0});
  SetToTransparent(&bitmap, 100);
  EXPECT_EQ(bitmap.Palette().Entry(77), kWhite);
  EXPECT_EQ(ByteOf(bitmap, 0), 0);
  EXPECT_EQ(ByteOf(bitmap, 20), 20);    // gray 15
  EXPECT_EQ(ByteOf(bitmap, 128), 128);  // gray 100
  EXPECT_EQ(ByteOf(bitmap, 129), 77);   // gray 101
  EXPECT_EQ(ByteOf(bitmap, 255), 77);
  EXPECT_EQ(ByteOf(bitmap, 77), 77);
}

TEST(SetToTransparent, Should_TakeTheHighestIndex_AmongEquallyBrightEntries) {
  TBitmap bitmap = AllBytes(pf8bit);
  SetEntry(bitmap, 30, {255, 255, 250, 0});
  SetEntry(bitmap, 40, {250, 255, 255, 0});
  SetToTransparent(&bitmap, 254);
  EXPECT_EQ(bitmap.Palette().Entry(40), kWhite);
  EXPECT_EQ(bitmap.Palette().Entry(30), (tagPALETTEENTRY{255, 255, 250, 0}));
}

TEST(SetToTransparent, Should_TakeTheHighestOfSeveralWhites) {
  TBitmap bitmap = AllBytes(pf8bit);
  SetEntry(bitmap, 30, kWhite);
  SetEntry(bitmap, 40, kWhite);
  SetToTransparent(&bitmap, 199);
  EXPECT_EQ(ByteOf(bitmap, 255), 40);
  EXPECT_EQ(ByteOf(bitmap, 30), 40);
}

TEST(SetToTransparent, Should_MakeEntry0White_When_NoSumExceeds3) {
  TBitmap bitmap = AllBytes(pf8bit);
  TColorTable table;
  table.fill({1, 1, 1, 0});
  bitmap.SetPalette(HPALETTE(table));
  SetToTransparent(&bitmap, 0);
  EXPECT_EQ(bitmap.Palette().Entry(0), kWhite);
  EXPECT_EQ(bitmap.Palette().Entry(1), (tagPALETTEENTRY{1, 1, 1, 0}));
  for (int i = 0; i < 256; ++i) ASSERT_EQ(ByteOf(bitmap, i), 0);
  TBitmap brighter = AllBytes(pf8bit);
  table[9] = {2, 1, 1, 0};
  brighter.SetPalette(HPALETTE(table));
  SetToTransparent(&brighter, 0);
  EXPECT_EQ(brighter.Palette().Entry(9), kWhite);
}

TEST(SetToTransparent, Should_NeverChangeIndex0_Of256) {
  TBitmap bitmap = AllBytes(pf8bit);
  SetEntry(bitmap, 0, {254, 254, 254, 0});
  SetEntry(bitmap, 200, kWhite);
  SetToTransparent(&bitmap, 10);
  EXPECT_EQ(ByteOf(bitmap, 0), 0);
  EXPECT_EQ(ByteOf(bitmap, 255), 200);
}

TEST(SetToTransparent, Should_LeaveTwoEqualNibbles_InEveryByteBut0) {
  TBitmap bitmap = AllBytes(pf4bit);
  SetEntry(bitmap, 0, {254, 254, 254, 0});
  SetEntry(bitmap, 5, kWhite);
  SetToTransparent(&bitmap, 100);
  EXPECT_EQ(ByteOf(bitmap, 0x00), 0x00);  // skipped, light as it is
  EXPECT_EQ(ByteOf(bitmap, 0x01), 0x55);  // the high nibble is 0, light, speaks for both
  EXPECT_EQ(ByteOf(bitmap, 0x1F), 0x11);  // 1 is dark
  EXPECT_EQ(ByteOf(bitmap, 0xF1), 0x55);  // 15 is light
}

TEST(SetToTransparent, Should_VisitTheLastByteOfAnOddWidthWhole) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf4bit, 5, 1);
  SetEntry(bitmap, 15, kWhite);
  std::memset(bitmap.ScanLine(0), 0, bitmap.Stride());
  bitmap.ScanLine(0)[2] = 0xF0;
  SetToTransparent(&bitmap, 254);
  EXPECT_EQ(bitmap.ScanLine(0)[2], 0xFF);
  EXPECT_EQ(bitmap.ScanLine(0)[3], 0);
}

TEST(CheckTransColForPDF, Should_EqualTheReference_ForEveryPaletteWidthAndTarget) {
  ForEachPaletteBitmap(2312, [](TBitmap& before, bool isHandled, std::mt19937&) {
    ExpectLikeReference(before, reference::CheckTransColForPDF,
                        [](TBitmap& x) { CheckTransColForPDF(&x); });
    if (isHandled) return;
    CheckTransColForPDF(&before);
    EXPECT_FALSE(before.Modified());
  });
}

TEST(CheckTransColForPDF, Should_EqualTheReference_WithoutAPalette) {
  constexpr unsigned kSeed = 2313;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pfDevice, pf15bit, pf16bit, pf24bit, pf32bit, pfCustom}) {
    for (const int width : {0, 1, 2, 3, 17, 70}) {
      SCOPED_TRACE(testing::Message() << format << ", width " << width << ", seed " << kSeed);
      ExpectLikeReference(AnyBitmap(format, width, 3, random), reference::CheckTransColForPDF,
                          [](TBitmap& x) { CheckTransColForPDF(&x); });
    }
  }
}

TEST(CheckTransColForPDF, Should_WhitenTheBottomLeftPixelOnly_OfTrueColors) {
  std::mt19937 random(9);
  TBitmap bitmap = AnyBitmap(pf32bit, 7, 3, random);
  bitmap.ScanLine(2)[3] = 12;
  std::unique_ptr<TBitmap> expected = bitmap.Clone();
  std::memset(expected->ScanLine(2), 255, 3);
  CheckTransColForPDF(&bitmap);
  EXPECT_TRUE(SameRows(*expected, bitmap));
  EXPECT_EQ(bitmap.ScanLine(2)[3], 12);
  EXPECT_TRUE(bitmap.Modified());
}

TEST(CheckTransColForPDF, Should_SwapWhiteWithTheLastEntry_Of256) {
  TBitmap bitmap = AllBytes(pf8bit);
  SetEntry(bitmap, 17, {255, 255, 255, 7});
  SetEntry(bitmap, 255, {1, 2, 3, 9});
  CheckTransColForPDF(&bitmap);
  EXPECT_EQ(bitmap.Palette().Entry(17), (tagPALETTEENTRY{1, 2, 3, 7}));
  EXPECT_EQ(bitmap.Palette().Entry(255), (tagPALETTEENTRY{255, 255, 255, 9}));
  EXPECT_EQ(ByteOf(bitmap, 17), 255);
  EXPECT_EQ(ByteOf(bitmap, 255), 17);
  EXPECT_EQ(ByteOf(bitmap, 240), 255);  // the bottom-left pixel
  EXPECT_EQ(ByteOf(bitmap, 18), 18);
}

TEST(CheckTransColForPDF, Should_SwapIndex0Too_Of256) {
  TBitmap bitmap = AllBytes(pf8bit);
  SetEntry(bitmap, 0, kWhite);
  CheckTransColForPDF(&bitmap);
  EXPECT_EQ(ByteOf(bitmap, 0), 255);
  EXPECT_EQ(ByteOf(bitmap, 255), 0);
}

TEST(CheckTransColForPDF, Should_SkipBytesOf0_Of16_EvenWhenWhiteIsEntry0) {
  TBitmap bitmap = AllBytes(pf4bit);
  SetEntry(bitmap, 0, kWhite);
  CheckTransColForPDF(&bitmap);
  EXPECT_EQ(bitmap.Palette().Entry(15), kWhite);
  EXPECT_EQ(ByteOf(bitmap, 0x00), 0x00);
  EXPECT_EQ(ByteOf(bitmap, 0x01), 0xFF);
  EXPECT_EQ(ByteOf(bitmap, 0x3C), 0x33);
  EXPECT_EQ(ByteOf(bitmap, 0xE0), 0xEE);
  EXPECT_EQ(ByteOf(bitmap, 0xF0), 0xF0);  // the bottom-left pixel: was 0x00 after the exchange
}

TEST(CheckTransColForPDF, Should_OnlySetTheBottomLeftPixel_When_WhiteIsLast) {
  TBitmap wide = AllBytes(pf8bit);
  SetEntry(wide, 255, kWhite);
  SetEntry(wide, 3, kWhite);
  std::unique_ptr<TBitmap> expected = wide.Clone();
  *expected->ScanLine(15) = 255;
  CheckTransColForPDF(&wide);
  EXPECT_TRUE(SameRows(*expected, wide));
  TBitmap narrow = AllBytes(pf4bit);
  SetEntry(narrow, 15, kWhite);
  *narrow.ScanLine(15) = 0x3C;
  expected = narrow.Clone();
  *expected->ScanLine(15) = 0xF3;  // the low nibble takes the old high one
  CheckTransColForPDF(&narrow);
  EXPECT_TRUE(SameRows(*expected, narrow));
}

TEST(CheckTransColForPDF, Should_OnlySetTheBottomLeftPixel_When_NoEntryIsWhite) {
  TBitmap bitmap = AllBytes(pf8bit);
  const std::unique_ptr<TBitmap> expected = bitmap.Clone();
  *expected->ScanLine(15) = 255;
  CheckTransColForPDF(&bitmap);
  EXPECT_TRUE(SameRows(*expected, bitmap));
}

TEST(TransparentPalette, Should_KeepTransparencyAndResolution) {
  for (const bool forPdf : {false, true}) {
    TBitmap bitmap = AllBytes(pf8bit);
    SetEntry(bitmap, 17, kWhite);
    bitmap.SetTransparent(true);
    bitmap.SetTransparentColor(RGB(1, 2, 3));
    bitmap.SetDpi({300, 200});
    forPdf ? CheckTransColForPDF(&bitmap) : SetToTransparent(&bitmap, 9);
    EXPECT_TRUE(bitmap.Transparent());
    EXPECT_EQ(bitmap.TransparentColor(), RGB(1, 2, 3));
    EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 200}));
    EXPECT_TRUE(bitmap.Modified());
  }
}

TEST(TransparentPalette, Should_DoNothing_When_TheBitmapIsAbsentOrEmpty) {
  SetToTransparent(nullptr, 1);
  CheckTransColForPDF(nullptr);
  for (const TPixelFormat format : kEveryNamedFormat) {
    TBitmap bitmap;
    bitmap.SetPixelFormat(format);
    SetToTransparent(&bitmap, 1);
    CheckTransColForPDF(&bitmap);
    EXPECT_TRUE(bitmap.Empty());
  }
}

}  // namespace
}  // namespace rasterkit
