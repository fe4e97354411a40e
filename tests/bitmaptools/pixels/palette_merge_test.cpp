#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/palette_merge.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/ports.h>

#include "tests/reference/palettes.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

/// Collects the texts of message boxes.
class CombineColorPaletteTest : public testing::Test {
 protected:
  void SetUp() override {
    HostPorts().messageBox = [this](const std::string& text) { messages.push_back(text); };
  }
  void TearDown() override { HostPorts().messageBox = nullptr; }

  std::vector<std::string> messages;
};

tagPALETTEENTRY EntryOf(TColor color) {
  return {static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
          static_cast<uint8_t>(color >> 16), 0};
}

/// An 8-bit bitmap of one row whose pixels are `indexes`, with `colors` as its palette.
TBitmap RowBitmap(const std::vector<uint8_t>& indexes, const std::vector<TColor>& colors) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf8bit, static_cast<int>(indexes.size()), 1);
  std::copy(indexes.begin(), indexes.end(), bitmap.ScanLine(0));
  std::vector<tagPALETTEENTRY> entries;
  for (const TColor color : colors) entries.push_back(EntryOf(color));
  bitmap.SetPalette(HPALETTE(entries));
  return bitmap;
}

std::vector<uint8_t> EveryIndex() {
  std::vector<uint8_t> indexes;
  for (int i = 0; i < 256; ++i) indexes.push_back(static_cast<uint8_t>(i));
  return indexes;
}

std::vector<TColor> CountedColors(TColor first) {
  std::vector<TColor> colors;
  for (TColor i = 0; i < 256; ++i) colors.push_back(first + i);
  return colors;
}

std::unique_ptr<TColorTable> Combine(std::initializer_list<TBitmap*> bitmaps) {
  const std::vector<TBitmap*> list(bitmaps);
  return CombineColorPalette(list);
}

TEST_F(CombineColorPaletteTest, Should_KeepTheColors_When_ThePalettesAgree) {
  TBitmap a = RowBitmap(EveryIndex(), CountedColors(1000));
  TBitmap b = RowBitmap(EveryIndex(), CountedColors(1000));
  const auto table = Combine({&a, &b});
  ASSERT_NE(table, nullptr);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ((*table)[static_cast<size_t>(i)], EntryOf(1000 + i));
    EXPECT_EQ(a.Palette().Entry(i), i < 255 ? EntryOf(1000 + i) : tagPALETTEENTRY{});
    EXPECT_EQ(b.Palette().Entry(i), a.Palette().Entry(i));
  }
  EXPECT_TRUE(messages.empty());
}

TEST_F(CombineColorPaletteTest, Should_MakeEntry255Black_InTheBitmapsOnly) {
  TBitmap a = RowBitmap({255}, CountedColors(0x112200));
  const auto table = Combine({&a});
  ASSERT_NE(table, nullptr);
  EXPECT_EQ((*table)[255], EntryOf(0x1122FF));
  EXPECT_EQ(a.Palette().Count(), 256);
  EXPECT_EQ(a.Palette().Entry(255), tagPALETTEENTRY{});
}

TEST_F(CombineColorPaletteTest, Should_ShareTheFirstEntryOfAColor_ElseTakeTheLowestFreeOne) {
  TBitmap a = RowBitmap({2, 5}, {1, 2, 3, 4, 5, 6});
  TBitmap b = RowBitmap({5, 2, 1}, {7, 8, 9, 10, 11, 3});
  const auto table = Combine({&a, &b});
  ASSERT_NE(table, nullptr);
  EXPECT_EQ((*table)[2], EntryOf(3)) << "index 5 of the second shares it";
  EXPECT_EQ((*table)[5], EntryOf(6));
  EXPECT_EQ((*table)[0], EntryOf(9)) << "index 2 of the second moved to the lowest free entry";
  EXPECT_EQ((*table)[1], EntryOf(8));
  EXPECT_EQ((*table)[3], tagPALETTEENTRY{}) << "unused entries are black";
  EXPECT_EQ(b.ScanLine(0)[0], 5) << "pixel indexes are not rewritten";
  EXPECT_EQ(b.ScanLine(0)[1], 2);
}

TEST_F(CombineColorPaletteTest, Should_ShowAMessageAndKeepThePalettes_For257Colors) {
  TBitmap a = RowBitmap(EveryIndex(), CountedColors(0));
  TBitmap b = RowBitmap({17}, CountedColors(1000));
  const HPALETTE paletteA = a.Palette(), paletteB = b.Palette();
  EXPECT_EQ(Combine({&a, &b}), nullptr);
  EXPECT_EQ(messages, std::vector<std::string>{"Palette \xC3\xBC"
                                               "berschritten. Ben\xC3\xB6tige 24bit Farbtiefe."});
  EXPECT_EQ(a.Palette(), paletteA);
  EXPECT_EQ(b.Palette(), paletteB);
}

TEST_F(CombineColorPaletteTest, Should_SucceedWithExactly256Colors) {
  TBitmap a = RowBitmap(EveryIndex(), CountedColors(0));
  TBitmap b = RowBitmap({17}, CountedColors(100));
  EXPECT_NE(Combine({&a, &b}), nullptr);
  EXPECT_TRUE(messages.empty());
}

TEST_F(CombineColorPaletteTest, Should_TakeIndexesBeyondThePaletteAsBlack) {
  TBitmap a = RowBitmap({200, 1}, {0x111111, 0x222222});
  const auto table = Combine({&a});
  ASSERT_NE(table, nullptr);
  EXPECT_EQ((*table)[200], tagPALETTEENTRY{});
  EXPECT_EQ((*table)[1], EntryOf(0x222222));
}

TEST_F(CombineColorPaletteTest, Should_GiveABlackTable_When_NothingIsInUse) {
  TBitmap empty;
  for (const auto& table : {Combine({}), Combine({&empty}), Combine({nullptr})}) {
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(*table, TColorTable{});
  }
}

/// Expected table, straight from the rule.
TColorTable TableOf(const std::vector<TColor>& slots) {
  TColorTable table{};
  for (size_t i = 0; i < 256; ++i)
    if (slots[i] >= 0) table[i] = EntryOf(slots[i]);
  return table;
}

TEST_F(CombineColorPaletteTest, Should_AllocateAsTheReference_For_RandomBitmaps) {
  constexpr unsigned kSeed = 2208;
  std::mt19937 random(kSeed);
  int failures = 0;
  for (int round = 0; round < 600; ++round) {
    std::vector<std::unique_ptr<TBitmap>> owned;
    std::vector<TBitmap*> bitmaps;
    const TColor distinct = 1 + static_cast<TColor>(random() % 400);
    const int number = 1 + static_cast<int>(random() % 4);
    for (int i = 0; i < number; ++i) {
      const TPixelFormat format = random() % 8 != 0 ? pf8bit : test::kEveryFormat[random() % 7];
      const int width = static_cast<int>(random() % 40), height = static_cast<int>(random() % 12);
      owned.push_back(std::make_unique<TBitmap>(test::RandomBitmap(format, width, height, random)));
      std::vector<tagPALETTEENTRY> entries(random() % 257);
      for (tagPALETTEENTRY& entry : entries)
        entry = EntryOf(static_cast<TColor>(random() >> 1) % distinct);
      owned.back()->SetPalette(HPALETTE(entries));
      bitmaps.push_back(owned.back().get());
    }
    const auto before = owned[0]->Clone();
    const auto expected = reference::CombineColorPalette(bitmaps);
    const auto table = CombineColorPalette(bitmaps);
    ASSERT_EQ(table != nullptr, expected.has_value()) << "seed " << kSeed << ", round " << round;
    if (!expected) {
      ++failures;
      ASSERT_TRUE(test::SamePixels(*before, *owned[0]));
      continue;
    }
    ASSERT_EQ(*table, TableOf(*expected)) << "seed " << kSeed << ", round " << round;
    if (owned[0]->PixelFormat() == pf8bit) {
      ASSERT_EQ(owned[0]->Palette(), CreateColorPalette(*table, 255));
      owned[0]->SetPalette(before->Palette());
      ASSERT_TRUE(test::SamePixels(*before, *owned[0])) << "indexes stay";
    }
  }
  EXPECT_GT(failures, 20) << "the random cases should reach the message too";
  EXPECT_LT(failures, 400);
}

}  // namespace
}  // namespace rasterkit
