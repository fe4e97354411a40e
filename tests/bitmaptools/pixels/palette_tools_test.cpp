#include <cstdint>
#include <cstring>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/ports.h>

#include "tests/reference/palettes.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::SamePixels;

TColorTable NumberedTable() {
  TColorTable table;
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i),
                static_cast<uint8_t>(i * 7 + 1), 0};
  }
  return table;
}

TEST(CreateColorPalette, Should_BeEmpty_For_NoEntries) {
  EXPECT_FALSE(CreateColorPalette(NumberedTable(), 0));
  EXPECT_FALSE(CreateColorPalette(NumberedTable(), -1));
  EXPECT_FALSE(CreateColorPalette(NumberedTable(), -2147483647 - 1));
}

TEST(CreateColorPalette, Should_HaveTheCountUpTo16_And256WithBlackBeyondItFrom17) {
  const TColorTable table = NumberedTable();
  for (int count = 1; count <= 256; ++count) {
    const HPALETTE palette = CreateColorPalette(table, count);
    ASSERT_EQ(palette.Count(), count <= 16 ? count : 256);
    for (int i = 0; i < palette.Count(); ++i) {
      const tagPALETTEENTRY black{};
      ASSERT_EQ(palette.Entry(i), i < count ? table[static_cast<size_t>(i)] : black)
          << count << ", " << i;
    }
  }
}

TEST(CreateColorPalette, Should_Take256Entries_For_LargerCounts) {
  EXPECT_EQ(CreateColorPalette(NumberedTable(), 257), CreateColorPalette(NumberedTable(), 256));
  EXPECT_EQ(CreateColorPalette(NumberedTable(), 2147483647),
            CreateColorPalette(NumberedTable(), 256));
}

TEST(GetPaletteColors, Should_LeaveTheTableAlone_When_ThereIsNoPalette) {
  std::unique_ptr<TColorTable> entries;
  EXPECT_EQ(GetPaletteColors(HPALETTE(), entries), 0);
  EXPECT_EQ(entries, nullptr);
  entries = std::make_unique<TColorTable>(NumberedTable());
  const TColorTable* before = entries.get();
  EXPECT_EQ(GetPaletteColors(HPALETTE(), entries), 0);
  EXPECT_EQ(entries.get(), before);
}

TEST(GetPaletteColors, Should_ReadEveryEntry_For_EveryCount) {
  const TColorTable table = NumberedTable();
  for (size_t count = 1; count <= 256; ++count) {
    std::unique_ptr<TColorTable> entries;
    const HPALETTE palette{std::span(table).first(count)};
    ASSERT_EQ(GetPaletteColors(palette, entries), static_cast<int>(count));
    for (size_t i = 0; i < 256; ++i)
      ASSERT_EQ((*entries)[i], i < count ? table[i] : tagPALETTEENTRY{}) << count << ", " << i;
  }
}

TEST(ChangePalColors, Should_EqualTheReference_For_EveryFormatWidthAndCount) {
  constexpr unsigned kSeed = 2203;
  std::mt19937 random(kSeed);
  const TColorTable table = NumberedTable();
  for (const TPixelFormat format : test::kEveryFormat) {
    for (int width = 0; width <= 70; ++width) {
      for (const int count : {-1, 0, 1, 2, 3, 15, 16, 17, 100, 255, 256, 300}) {
        TBitmap bitmap = test::RandomBitmap(format, width, width % 4, random);
        const TBitmap expected = reference::ChangePalColors(bitmap, table, count);
        ChangePalColors(bitmap, table, count);
        ASSERT_TRUE(SamePixels(expected, bitmap)) << "format " << format << ", width " << width
                                                  << ", count " << count << ", seed " << kSeed;
        ASSERT_TRUE(test::PaddingIsZero(bitmap)) << "format " << format << ", width " << width;
        ASSERT_EQ(bitmap.PixelFormat(), format);
      }
    }
  }
}

TEST(ChangePalColors, Should_EqualTheReference_For_DeviceAndCustomBitmaps) {
  for (const TPixelFormat format : {pfDevice, pfCustom}) {
    TBitmap bitmap = test::GradientBitmap(pf32bit, 13, 4);
    bitmap.SetPixelFormat(format);
    const TBitmap expected = reference::ChangePalColors(bitmap, NumberedTable(), 256);
    ChangePalColors(bitmap, NumberedTable(), 256);
    EXPECT_TRUE(SamePixels(expected, bitmap));
    EXPECT_EQ(bitmap.PixelFormat(), format);
  }
}

TEST(ChangePalColors, Should_LeaveThePaddingZero_For_CustomBitmaps) {
  for (const TPixelFormat stored : test::kEveryFormat) {
    for (const int count : {2, 16, 256}) {
      TBitmap bitmap = test::GradientBitmap(stored, 13, 2);
      bitmap.SetPixelFormat(pfCustom);
      ChangePalColors(bitmap, NumberedTable(), count);
      EXPECT_TRUE(test::PaddingIsZero(bitmap)) << "format " << stored << ", count " << count;
    }
  }
}

TEST(ChangePalColors, Should_KeepEveryIndex_When_CountAndFormatFit) {
  struct Fit {
    TPixelFormat format;
    int count;
  };
  std::mt19937 random(5);
  for (const Fit fit : {Fit{pf1bit, 2}, Fit{pf4bit, 16}, Fit{pf8bit, 256}, Fit{pf8bit, 100}}) {
    for (int width = 1; width <= 70; ++width) {
      TBitmap bitmap = test::RandomBitmap(fit.format, width, 3, random);
      const auto before = bitmap.Clone();
      ChangePalColors(bitmap, NumberedTable(), fit.count);
      for (int y = 0; y < 3; ++y)
        ASSERT_EQ(std::memcmp(bitmap.ScanLine(y), before->ScanLine(y), bitmap.Stride()), 0)
            << width;
      EXPECT_EQ(bitmap.Palette(), CreateColorPalette(NumberedTable(), fit.count));
    }
  }
}

TEST(ChangePalColors, Should_LoseTheRightHalf_Of8BitBitmapsThatGet16Entries) {
  TBitmap bitmap = test::GradientBitmap(pf8bit, 10, 2);
  const auto before = bitmap.Clone();
  TBitmap fresh;
  fresh.SetPixelFormat(pf8bit);
  fresh.SetSize(1, 1);
  ChangePalColors(bitmap, NumberedTable(), 16);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 10; ++x) {
      const uint8_t expected = x < 5 ? before->ScanLine(y)[x] : fresh.ScanLine(0)[0];
      EXPECT_EQ(bitmap.ScanLine(y)[x], expected) << x << ", " << y;
    }
  }
}

TEST(ChangePalColors, Should_StayInsideTheRow_When_TheStatedCountIsOneTooMany) {
  for (const int width : {12, 28, 29, 30, 31, 60, 61, 62, 63}) {
    std::mt19937 random(static_cast<unsigned>(width));
    TBitmap bitmap = test::RandomBitmap(pf1bit, width, 3, random);
    const TBitmap expected = reference::ChangePalColors(bitmap, NumberedTable(), 2);
    ChangePalColors(bitmap, NumberedTable(), 2);
    EXPECT_TRUE(SamePixels(expected, bitmap)) << width;
  }
}

TEST(ChangePalColors, Should_KeepTransparencyResolutionAndProfile) {
  TBitmap bitmap = test::GradientBitmap(pf8bit, 4, 4);
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(0x123456);
  bitmap.SetDpi({300, 200});
  bitmap.SetProfile(std::make_shared<const std::vector<uint8_t>>(3, uint8_t{7}));
  ChangePalColors(bitmap, NumberedTable(), 16);
  EXPECT_TRUE(bitmap.Transparent());
  EXPECT_EQ(bitmap.TransparentMode(), tmFixed);
  EXPECT_EQ(bitmap.TransparentColor(), 0x123456);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 200}));
  ASSERT_NE(bitmap.Profile(), nullptr);
  EXPECT_EQ(bitmap.Profile()->size(), 3u);
}

TEST(ChangePalColors, Should_SetModified) {
  TBitmap bitmap = test::GradientBitmap(pf8bit, 4, 4);
  bitmap.SetModified(false);
  ChangePalColors(bitmap, NumberedTable(), 256);
  EXPECT_TRUE(bitmap.Modified());
}

TBitmap Bitmap8WithTopLeft(uint8_t index) {
  TBitmap bitmap = test::GradientBitmap(pf8bit, 5, 3);
  bitmap.SetPalette(CreateColorPalette(NumberedTable(), 256));
  bitmap.ScanLine(0)[0] = index;
  return bitmap;
}

TEST(ChgFirstPixCol, Should_ChangeOnlyTheEntryOfTheTopLeftPixel) {
  TBitmap bitmap = Bitmap8WithTopLeft(7);
  const auto before = bitmap.Clone();
  ChgFirstPixCol(bitmap, 0x332211);
  for (int i = 0; i < 256; ++i) {
    const tagPALETTEENTRY changed{0x11, 0x22, 0x33, 0};
    EXPECT_EQ(bitmap.Palette().Entry(i), i == 7 ? changed : before->Palette().Entry(i)) << i;
  }
  bitmap.SetPalette(before->Palette());
  EXPECT_TRUE(SamePixels(*before, bitmap)) << "indexes stay";
}

TEST(ChgFirstPixCol, Should_LeaveTheFlagsOfTheEntry) {
  TBitmap bitmap = Bitmap8WithTopLeft(7);
  TColorTable table = NumberedTable();
  table[7].peFlags = 4;
  bitmap.SetPalette(HPALETTE(table));
  ChgFirstPixCol(bitmap, 0x332211);
  EXPECT_EQ(bitmap.Palette().Entry(7), (tagPALETTEENTRY{0x11, 0x22, 0x33, 4}));
}

TEST(ChgFirstPixCol, Should_ChangeTheEntryOfAPf4bitBitmap) {
  TBitmap bitmap = test::GradientBitmap(pf4bit, 5, 3);
  bitmap.ScanLine(0)[0] = 0x3C;
  ChgFirstPixCol(bitmap, 0x332211);
  EXPECT_EQ(bitmap.Palette().Count(), 16);
  EXPECT_EQ(bitmap.Palette().Entry(3), (tagPALETTEENTRY{0x11, 0x22, 0x33, 0}));
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x3C);
}

TEST(ChgFirstPixCol, Should_ReplaceThePaletteAsChangePalColors_For_EveryCount) {
  constexpr unsigned kSeed = 2205;
  std::mt19937 random(kSeed);
  const TColorTable table = NumberedTable();
  for (const TPixelFormat format : {pf4bit, pf8bit}) {
    for (int count = 1; count <= 256; ++count) {
      TBitmap bitmap = test::RandomBitmap(format, 1 + count % 40, 3, random);
      bitmap.SetPalette(HPALETTE(std::span(table).first(static_cast<size_t>(count))));
      const int index = GetPalColor(0, 0, bitmap) % count % 16;
      bitmap.ScanLine(0)[0] = static_cast<uint8_t>(format == pf4bit ? index * 17 : index);
      TColorTable changed = table;
      changed[static_cast<size_t>(index)] = {0x11, 0x22, 0x33, 0};
      const TBitmap expected = reference::ChangePalColors(bitmap, changed, count);
      ChgFirstPixCol(bitmap, 0x332211);
      // Entries beyond the count are black in a palette that was rounded up.
      ASSERT_TRUE(SamePixels(expected, bitmap))
          << "format " << format << ", count " << count << ", seed " << kSeed;
      ASSERT_EQ(bitmap.Palette(), CreateColorPalette(changed, count));
    }
  }
}

TEST(ChgFirstPixCol, Should_ChangeNothing_For_OtherFormats) {
  for (const TPixelFormat format : {pf1bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    TBitmap bitmap = test::GradientBitmap(format, 5, 3);
    ChgFirstPixCol(bitmap, 0x332211);
    EXPECT_TRUE(SamePixels(test::GradientBitmap(format, 5, 3), bitmap)) << format;
  }
}

TEST(ChgFirstPixCol, Should_ChangeNothing_When_TheIndexLiesBeyondThePalette) {
  TBitmap bitmap = Bitmap8WithTopLeft(100);
  const TColorTable table = NumberedTable();
  bitmap.SetPalette(HPALETTE(std::span(table).first(100)));
  const auto before = bitmap.Clone();
  ChgFirstPixCol(bitmap, 0x332211);
  EXPECT_TRUE(SamePixels(*before, bitmap));
  bitmap.SetPalette(HPALETTE());
  ChgFirstPixCol(bitmap, 0x332211);
  EXPECT_FALSE(bitmap.Palette());
}

TEST(ChgFirstPixCol, Should_ChangeNothing_For_EmptyBitmaps) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf8bit);
  const HPALETTE before = bitmap.Palette();
  ChgFirstPixCol(bitmap, 0x332211);
  EXPECT_EQ(bitmap.Palette(), before);
}

TEST(ChgFirstPixCol, Should_AskTheHost_For_SystemColors) {
  uint32_t asked = 0;
  HostPorts().systemColor = [&asked](uint32_t index) {
    asked = index;
    return 0x00998877u;
  };
  TBitmap bitmap = Bitmap8WithTopLeft(7);
  ChgFirstPixCol(bitmap, static_cast<TColor>(0x8112340Fu));
  HostPorts().systemColor = nullptr;
  EXPECT_EQ(asked, 0x12340Fu);
  EXPECT_EQ(bitmap.Palette().Entry(7), (tagPALETTEENTRY{0x77, 0x88, 0x99, 0}));
}

TEST(GetPalColor, Should_ClampCoordinates) {
  TBitmap bitmap = test::GradientBitmap(pf8bit, 5, 3);
  for (int x = -7; x < 12; ++x) {
    for (int y = -7; y < 12; ++y) {
      const int column = x < 0 ? 0 : x > 4 ? 4 : x;
      const int row = y < 0 ? 0 : y > 2 ? 2 : y;
      EXPECT_EQ(GetPalColor(x, y, bitmap), bitmap.ScanLine(row)[column]);
    }
  }
  EXPECT_EQ(GetPalColor(-5, 1000000, bitmap), bitmap.ScanLine(2)[0]);
}

TEST(GetPalColor, Should_ReadOddPixelsAsTheirEvenNeighbor_OnPf4bit) {
  TBitmap bitmap = test::GradientBitmap(pf4bit, 5, 3);
  bitmap.ScanLine(0)[0] = 0x3C;
  EXPECT_EQ(GetPalColor(0, 0, bitmap), 3);
  EXPECT_EQ(GetPalColor(1, 0, bitmap), 3);
  bitmap.ScanLine(2)[2] = 0xA0;
  EXPECT_EQ(GetPalColor(4, 2, bitmap), 10);
  EXPECT_EQ(GetPalColor(99, 99, bitmap), 10);
}

TEST(GetPalColor, Should_Give0_For_OtherFormatsAndEmptyBitmaps) {
  std::mt19937 random(1);
  for (const TPixelFormat format : {pf1bit, pf15bit, pf16bit, pf24bit, pf32bit})
    EXPECT_EQ(GetPalColor(1, 1, test::RandomBitmap(format, 5, 3, random)), 0) << format;
  TBitmap empty;
  empty.SetPixelFormat(pf8bit);
  EXPECT_EQ(GetPalColor(0, 0, empty), 0);
}

TEST(SetPalColor, Should_FollowTheNibbleRule_OnPf4bit) {
  TBitmap bitmap = test::GradientBitmap(pf4bit, 4, 2);
  bitmap.ScanLine(0)[0] = 0x3C;
  SetPalColor(0, 0, bitmap, 5);
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x53);
  bitmap.ScanLine(0)[0] = 0x3C;
  SetPalColor(1, 0, bitmap, 5);
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x35);
}

TEST(SetPalColor, Should_SpillUnmaskedIndexes_OnPf4bit) {
  TBitmap bitmap = test::GradientBitmap(pf4bit, 4, 2);
  bitmap.ScanLine(0)[0] = 0x3C;
  SetPalColor(1, 0, bitmap, 0x45);
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x75);
  bitmap.ScanLine(0)[0] = 0x3C;
  SetPalColor(0, 0, bitmap, 0x45);
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x53);
}

TEST(SetPalColor, Should_WriteOneClampedPixel_OnPf8bit) {
  for (int x = -7; x < 12; ++x) {
    for (int y = -7; y < 12; ++y) {
      TBitmap bitmap = test::GradientBitmap(pf8bit, 5, 3);
      const auto expected = bitmap.Clone();
      expected->ScanLine(y < 0 ? 0 : y > 2 ? 2 : y)[x < 0 ? 0 : x > 4 ? 4 : x] = 0xEE;
      SetPalColor(x, y, bitmap, 0xEE);
      EXPECT_TRUE(SamePixels(*expected, bitmap)) << x << ", " << y;
    }
  }
}

TEST(SetPalColor, Should_MarkTheBitmapModified_When_ItWrites) {
  for (const TPixelFormat format : {pf4bit, pf8bit}) {
    TBitmap bitmap = test::GradientBitmap(format, 5, 3);
    bitmap.SetModified(false);
    SetPalColor(2, 1, bitmap, 3);
    EXPECT_TRUE(bitmap.Modified()) << format;
  }
  for (const TPixelFormat format : {pf1bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    TBitmap bitmap = test::GradientBitmap(format, 5, 3);
    bitmap.SetModified(false);
    SetPalColor(2, 1, bitmap, 3);
    EXPECT_FALSE(bitmap.Modified()) << format;
  }
}

TEST(SetPalColor, Should_ChangeNothing_For_OtherFormatsAndEmptyBitmaps) {
  for (const TPixelFormat format : {pf1bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    TBitmap bitmap = test::GradientBitmap(format, 5, 3);
    SetPalColor(2, 1, bitmap, 3);
    EXPECT_TRUE(SamePixels(test::GradientBitmap(format, 5, 3), bitmap)) << format;
  }
  TBitmap empty;
  empty.SetPixelFormat(pf8bit);
  SetPalColor(0, 0, empty, 3);
  EXPECT_TRUE(empty.Empty());
}

}  // namespace
}  // namespace rasterkit
