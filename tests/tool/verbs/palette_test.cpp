#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

HPALETTE PaletteOf(int count) {
  std::vector<tagPALETTEENTRY> entries;
  for (int i = 0; i < count; ++i)
    entries.push_back({static_cast<uint8_t>(i * 7), static_cast<uint8_t>(i * 3), 5, 0});
  return HPALETTE(entries);
}

/// Indexes increase by column and row, below `count`.
Raster IndexedRaster(TPixelFormat format, int count) {
  Raster raster = GradientRaster(format, 19, 6);
  if (format == pf8bit)
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 19; ++x) raster.Row(y)[x] = static_cast<uint8_t>((x + y) % count);
  raster.palette = PaletteOf(count);
  return raster;
}

class CliPalette : public VerbTest {
 protected:
  nlohmann::json Listed(const Raster& raster) {
    SavePngFile(folder_ / "a.png", raster);
    const ToolResult result = RunTool({"palette", folder_ / "a.png", "--json"});
    EXPECT_EQ(result.code, 0) << result.err;
    return JsonLines(result.out).at(0);
  }
};

TEST_F(CliPalette, OneFile_Should_ListEntriesAndHowManyPixelsUseThem) {
  for (const auto& [format, count] : {std::pair{pf1bit, 2}, {pf4bit, 16}, {pf8bit, 256}}) {
    const Raster raster = IndexedRaster(format, count);
    const auto line = Listed(raster);
    ASSERT_EQ(line["entries"].size(), static_cast<size_t>(count));
    uint64_t pixels = 0;
    for (int i = 0; i < count; ++i) {
      const auto& entry = line["entries"][static_cast<size_t>(i)];
      EXPECT_EQ(entry["index"], i);
      uint64_t expected = 0;
      for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 19; ++x)
          expected += raster.PixelColor(x, y) == EntryColor(raster.palette.Entry(i));
      EXPECT_EQ(entry["pixels"], expected) << i;
      pixels += entry["pixels"].get<uint64_t>();
    }
    EXPECT_EQ(pixels, 19u * 6u);
  }
}

TEST_F(CliPalette, Text_Should_NameColorsAsDigits) {
  Raster raster = IndexedRaster(pf8bit, 4);
  raster.transparentColor = EntryColor(raster.palette.Entry(2));
  SavePngFile(folder_ / "a.png", raster);
  const ToolResult result = RunTool({"palette", folder_ / "a.png"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.out, HasSubstr("8-bit, 4 palette entries, 4 of them used\n"));
  EXPECT_THAT(result.out, HasSubstr("    1  070305  "));
  EXPECT_THAT(result.out, testing::ContainsRegex("\n    2  0E0605  [0-9]+ pixels, transparent\n"));
}

TEST_F(CliPalette, TrueColor_Should_BeTheAnswerNo) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 3, 3));
  const ToolResult result = RunTool({"palette", folder_ / "a.png"});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.out, HasSubstr("24-bit, no palette"));
}

TEST_F(CliPalette, UnreadableFile_Should_Exit3) {
  const ToolResult result = RunTool({"palette", folder_ / "missing.png", "--json"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(JsonLines(result.out).at(0)["ok"], false);
}

/// Includes palette sizes for which the library's own routine would drop or pad entries.
TEST_F(CliPalette, Set_Should_ChangeThatEntryAndNothingElse) {
  for (const auto& [format, count] : {std::pair{pf1bit, 2},
                                      {pf4bit, 16},
                                      {pf4bit, 11},
                                      {pf8bit, 16},
                                      {pf8bit, 100},
                                      {pf8bit, 256}}) {
    Raster raster = IndexedRaster(format, count);
    if (format == pf4bit && count < 16)
      for (int y = 0; y < 6; ++y)
        for (size_t i = 0; i < raster.RowBytes(); ++i) raster.Row(y)[i] &= 0x77;
    const Raster changed = Changed("palette", raster, {"--set", "1=102030"});
    auto entries = PaletteTable(raster.palette);
    entries[1] = {0x10, 0x20, 0x30, 0};
    raster.palette = HPALETTE(std::span(entries).first(static_cast<size_t>(count)));
    EXPECT_TRUE(SamePixels(raster, changed)) << count;
  }
}

TEST_F(CliPalette, Set_Should_BeRepeatable) {
  const Raster changed =
      Changed("palette", IndexedRaster(pf8bit, 9), {"--set", "1=102030", "--set", "8=FFFFFF"});
  EXPECT_EQ(EntryColor(changed.palette.Entry(1)), RGB(0x10, 0x20, 0x30));
  EXPECT_EQ(EntryColor(changed.palette.Entry(8)), RGB(0xFF, 0xFF, 0xFF));
  EXPECT_EQ(EntryColor(changed.palette.Entry(2)), RGB(14, 6, 5));
}

TEST_F(CliPalette, First_Should_ChangeTheEntryOfTheTopLeftPixel) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster raster = IndexedRaster(format, format == pf1bit ? 2 : 16);
    raster.Row(0)[0] = format == pf8bit ? 7 : 0x9C;
    const int index = format == pf1bit ? 1 : format == pf4bit ? 9 : 7;
    const Raster changed = Changed("palette", raster, {"--first", "FFEEDD"});
    for (int i = 0; i < raster.palette.Count(); ++i)
      EXPECT_EQ(EntryColor(changed.palette.Entry(i)),
                i == index ? RGB(0xFF, 0xEE, 0xDD) : EntryColor(raster.palette.Entry(i)));
  }
}

TEST_F(CliPalette, TransparentEntry_Should_BecomeVisibleAndBeReported_When_ItGetsAColor) {
  Raster raster = IndexedRaster(pf8bit, 9);
  raster.transparentColor = EntryColor(raster.palette.Entry(3));
  EXPECT_EQ(Changed("palette", raster, {"--set", "4=010203"}).transparentColor,
            raster.transparentColor);
  const ToolResult result = RunVerb("palette", raster, {"--set", "3=010203", "--strict"});
  EXPECT_EQ(result.code, 5);
  EXPECT_THAT(result.err, HasSubstr("transparent"));
  EXPECT_FALSE(LoadFile(folder_ / "out.png").transparentColor.has_value());
}

TEST_F(CliPalette, EntryThatIsNotThereAndTrueColor_Should_BeRefused) {
  const ToolResult result = RunVerb("palette", IndexedRaster(pf8bit, 9), {"--set", "9=010203"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("the palette has 9"));
  EXPECT_EQ(RunVerb("palette", GradientRaster(pf24bit, 3, 3), {"--first", "010203"}).code, 4);
}

TEST_F(CliPalette, WrongEntries_Should_BeWrongUsage) {
  for (const char* text : {"", "=FFFFFF", "1", "1=", "1=FFFFF", "256=FFFFFF", "-1=FFFFFF",
                           "1000=FFFFFF", "1=auto", "x=FFFFFF"})
    EXPECT_EQ(RunVerb("palette", IndexedRaster(pf8bit, 9), {"--set", text}).code, 2) << text;
  EXPECT_EQ(RunVerb("palette", IndexedRaster(pf8bit, 9), {}).code, 2);
}

}  // namespace
}  // namespace rasterkit::test
