#include <random>
#include <type_traits>

#include <gtest/gtest.h>

#include <rasterkit/raster/palette.h>

#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

static_assert(std::is_same_v<PColorTable, TColorTable*>);
static_assert(std::is_same_v<PRGBArray, TRGBArray*> && std::is_same_v<PRGBAarray, TRGBAarray*>);
static_assert(std::tuple_size_v<TRGBArray> == 100001 && std::tuple_size_v<TRGBAarray> == 100001);

TEST(RowTypes, Should_ReachThePixelsOfARow) {
  Raster raster(pf24bit, 5, 1), wide(pf32bit, 5, 1);
  (*reinterpret_cast<PRGBArray>(raster.Row(0)))[3] = {1, 2, 3};
  (*reinterpret_cast<PRGBAarray>(wide.Row(0)))[4] = {4, 5, 6, 7};
  EXPECT_EQ(raster.PixelColor(3, 0), RGB(3, 2, 1));
  EXPECT_EQ(wide.PixelColor(4, 0), RGB(6, 5, 4));
}

TEST(Palette, EmptyHandle_Should_HaveNoEntries) {
  const HPALETTE none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.Count(), 0);
  EXPECT_TRUE(none.Entries().empty());
  EXPECT_EQ(none.Entry(0), tagPALETTEENTRY{});
  EXPECT_EQ(HPALETTE(std::span<const tagPALETTEENTRY>()), none);
}

TEST(Palette, Handle_Should_HaveAsManyEntriesAsGiven) {
  std::mt19937 random(1);
  for (int count = 1; count <= 256; ++count)
    EXPECT_EQ(test::RandomPalette(count, random).Count(), count);
  EXPECT_EQ(test::RandomPalette(300, random).Count(), 256);
}

TEST(Palette, Entry_Should_BeBlack_When_BeyondThePalette) {
  const std::vector<tagPALETTEENTRY> entries(5, tagPALETTEENTRY{9, 8, 7, 6});
  const HPALETTE palette(entries);
  EXPECT_EQ(palette.Entry(4), (tagPALETTEENTRY{9, 8, 7, 6}));
  EXPECT_EQ(palette.Entry(5), tagPALETTEENTRY{});
  EXPECT_EQ(palette.Entry(-1), tagPALETTEENTRY{});
}

TEST(Palette, Handles_Should_BeEqual_When_EntriesAre) {
  const std::vector<tagPALETTEENTRY> entries(5, tagPALETTEENTRY{9, 8, 7, 0});
  EXPECT_EQ(HPALETTE(entries), HPALETTE(entries));
  EXPECT_FALSE(HPALETTE(entries) == HPALETTE(std::span(entries).first(4)));
  EXPECT_FALSE(HPALETTE(entries) == HPALETTE());
}

TEST(Palette, Default_Should_BeBlackAndWhiteAt1Bit) {
  const HPALETTE palette = DefaultPalette(pf1bit);
  ASSERT_EQ(palette.Count(), 2);
  EXPECT_EQ(EntryColor(palette.Entry(0)), clBlack);
  EXPECT_EQ(EntryColor(palette.Entry(1)), clWhite);
}

TEST(Palette, Default_Should_BeTheStandardColorsAt4Bits) {
  const HPALETTE palette = DefaultPalette(pf4bit);
  ASSERT_EQ(palette.Count(), 16);
  EXPECT_EQ(EntryColor(palette.Entry(0)), clBlack);
  EXPECT_EQ(EntryColor(palette.Entry(1)), RGB(128, 0, 0));
  EXPECT_EQ(EntryColor(palette.Entry(7)), RGB(192, 192, 192));
  EXPECT_EQ(EntryColor(palette.Entry(8)), RGB(128, 128, 128));
  EXPECT_EQ(EntryColor(palette.Entry(9)), RGB(255, 0, 0));
  EXPECT_EQ(EntryColor(palette.Entry(15)), clWhite);
}

TEST(Palette, Default_Should_Have256EntriesAt8Bits) {
  const HPALETTE palette = DefaultPalette(pf8bit);
  ASSERT_EQ(palette.Count(), 256);
  EXPECT_EQ(EntryColor(palette.Entry(0)), clBlack);
  EXPECT_EQ(EntryColor(palette.Entry(10)), clBlack) << "the cube begins";
  EXPECT_EQ(EntryColor(palette.Entry(225)), clWhite) << "the cube ends";
  EXPECT_EQ(EntryColor(palette.Entry(226)), RGB(10, 10, 10));
  EXPECT_EQ(EntryColor(palette.Entry(246)), RGB(255, 251, 240));
  EXPECT_EQ(EntryColor(palette.Entry(255)), clWhite);
}

TEST(Palette, Default_Should_BeEmpty_When_FormatIsNotIndexed) {
  for (const TPixelFormat format : {pfDevice, pf15bit, pf16bit, pf24bit, pf32bit, pfCustom})
    EXPECT_FALSE(DefaultPalette(format));
}

TEST(Palette, GrayPalette_Should_RunFromBlackToWhite) {
  for (int count = 2; count <= 256; ++count) {
    const HPALETTE palette = GrayPalette(count);
    ASSERT_EQ(palette.Count(), count);
    EXPECT_EQ(EntryColor(palette.Entry(0)), clBlack);
    EXPECT_EQ(EntryColor(palette.Entry(count - 1)), clWhite);
    EXPECT_EQ(IsGrayRamp(palette), count == 256);
  }
  EXPECT_EQ(GrayPalette(16).Entry(3).peGreen, 51);
  EXPECT_EQ(GrayPalette(4).Entry(1).peRed, 85);
}

TEST(Palette, IsGrayRamp_Should_SayNo_When_OneChannelDiffers) {
  TColorTable table = PaletteTable(GrayPalette(256));
  table[200].peBlue = 201;
  EXPECT_FALSE(IsGrayRamp(HPALETTE(table)));
}

TEST(Palette, NearestEntry_Should_TakeLeastSquaresAndLowestIndex) {
  const std::vector<tagPALETTEENTRY> entries = {
      {10, 0, 0, 0}, {0, 10, 0, 0}, {0, 10, 0, 0}, {255, 255, 255, 0}};
  EXPECT_EQ(NearestEntry(entries, RGB(5, 5, 0)), 0) << "equally far: the lowest";
  EXPECT_EQ(NearestEntry(entries, RGB(0, 10, 0)), 1) << "equal entries: the lowest";
  EXPECT_EQ(NearestEntry(entries, RGB(200, 200, 200)), 3);
  EXPECT_EQ(NearestEntry({}, clWhite), 0);
}

}  // namespace
}  // namespace rasterkit
