#include <algorithm>
#include <cstdlib>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/palette_entries.h>

namespace rasterkit::detail {
namespace {

TColorTable RandomTable(std::mt19937& random) {
  TColorTable table;
  for (tagPALETTEENTRY& entry : table) {
    entry = {static_cast<uint8_t>(random()), static_cast<uint8_t>(random()),
             static_cast<uint8_t>(random()), 0};
  }
  return table;
}

TEST(CreatePaletteWithColor, Should_AppendTheColor_WithoutRoundingUp) {
  std::mt19937 random(22);
  const TColorTable table = RandomTable(random);
  for (const int count : {0, 1, 9, 15, 16, 17, 200, 255}) {
    const HPALETTE palette = CreatePaletteWithColor(table, count, 254, 255, 255);
    ASSERT_EQ(palette.Count(), count + 1);
    for (int i = 0; i < count; ++i) EXPECT_EQ(palette.Entry(i), table[static_cast<size_t>(i)]);
    EXPECT_EQ(palette.Entry(count), (tagPALETTEENTRY{254, 255, 255, 0}));
  }
}

TEST(CreatePaletteWithColor, Should_StayWithin256Entries_For_AbsurdCounts) {
  EXPECT_EQ(CreatePaletteWithColor({}, 256, 1, 2, 3).Count(), 256);
  EXPECT_EQ(CreatePaletteWithColor({}, 2000000000, 1, 2, 3).Count(), 256);
  EXPECT_EQ(CreatePaletteWithColor({}, -5, 1, 2, 3).Count(), 1);
}

TEST(FindBlackEntry, Should_FindTheFirst_AmongTheCountedEntries) {
  TColorTable table;
  table.fill({1, 2, 3, 0});
  EXPECT_EQ(FindBlackEntry(256, table), -1);
  table[200] = {0, 0, 0, 0};
  table[40] = {0, 0, 0, 4};
  EXPECT_EQ(FindBlackEntry(256, table), 40);
  EXPECT_EQ(FindBlackEntry(41, table), 40);
  EXPECT_EQ(FindBlackEntry(40, table), -1);
  EXPECT_EQ(FindBlackEntry(0, table), -1);
  EXPECT_EQ(FindBlackEntry(-3, table), -1);
  EXPECT_EQ(FindBlackEntry(100000, table), 40);
}

TEST(FindWhiteEntry, Should_FindTheFirst_And_WantAllChannelsFull) {
  TColorTable table;
  table.fill({255, 255, 254, 0});
  table[3] = {254, 255, 255, 0};
  table[4] = {255, 254, 255, 0};
  EXPECT_EQ(FindWhiteEntry(256, table), -1);
  table[9] = table[12] = {255, 255, 255, 0};
  EXPECT_EQ(FindWhiteEntry(256, table), 9);
  EXPECT_EQ(FindWhiteEntry(9, table), -1);
}

TEST(NearestPaletteEntry, Should_CompareRedWithGreen_And_IgnoreGreen) {
  TColorTable table{};
  table[0] = {10, 10, 10, 0};
  table[1] = {10, 200, 10, 0};
  EXPECT_EQ(NearestPaletteEntry(2, table, 10, 200, 10), 0);
  std::swap(table[0], table[1]);
  EXPECT_EQ(NearestPaletteEntry(2, table, 10, 200, 10), 1);
}

TEST(NearestPaletteEntry, Should_TakeTheLowestIndex_AmongEquals) {
  TColorTable table;
  table.fill({7, 7, 7, 0});
  EXPECT_EQ(NearestPaletteEntry(256, table, 0, 0, 0), 0);
}

TEST(NearestPaletteEntry, Should_NeverReturnAnEntryAtDistance255) {
  TColorTable table;
  table.fill({255, 255, 255, 0});
  EXPECT_EQ(NearestPaletteEntry(256, table, 0, 0, 0), -1);
  EXPECT_EQ(NearestPaletteEntry(0, table, 255, 255, 255), -1);
  table[77] = {254, 254, 254, 0};
  EXPECT_EQ(NearestPaletteEntry(256, table, 0, 0, 0), 77);
}

TEST(NearestPaletteEntry, Should_EqualTheRule_For_RandomTables) {
  constexpr unsigned kSeed = 23;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 2000; ++round) {
    const TColorTable table = RandomTable(random);
    const int count = static_cast<int>(random() % 257);
    const int red = static_cast<int>(random() % 256), blue = static_cast<int>(random() % 256);
    int expected = -1, best = 255;
    for (int i = 0; i < count; ++i) {
      const tagPALETTEENTRY& e = table[static_cast<size_t>(i)];
      int distance = std::abs(red - e.peRed);
      distance = std::max(distance, std::abs(red - e.peGreen));
      distance = std::max(distance, std::abs(blue - e.peBlue));
      if (distance < best) best = distance, expected = i;
    }
    ASSERT_EQ(NearestPaletteEntry(count, table, static_cast<uint8_t>(red),
                                  static_cast<uint8_t>(random()), static_cast<uint8_t>(blue)),
              expected)
        << "seed " << kSeed << ", round " << round;
  }
}

}  // namespace
}  // namespace rasterkit::detail
