#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/reference/convert_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::kEveryFormat;

void ExpectAsReference(const Raster& source, TPixelFormat format) {
  const Raster actual = ConvertRaster(source, format);
  EXPECT_TRUE(test::PaddingIsZero(actual));
  ASSERT_EQ(actual.Format(), format);
  if (format == source.Format()) {
    EXPECT_TRUE(test::SamePixels(source, actual));
  } else if (const std::optional<Raster> expected = reference::Convert(source, format)) {
    EXPECT_TRUE(test::SamePixels(*expected, actual)) << source.Format() << " to " << format;
  }
}

// Sets the raster's palette to `count` random entries.
Raster WithPalette(Raster raster, int count, std::mt19937& random) {
  raster.palette = test::RandomPalette(count, random);
  return raster;
}

// All 65,536 words, one row per high byte.
Raster EveryWord(TPixelFormat format) {
  Raster raster(format, 256, 256);
  for (int y = 0; y < 256; ++y) {
    for (int x = 0; x < 256; ++x) {
      raster.Row(y)[2 * x] = static_cast<uint8_t>(x);
      raster.Row(y)[2 * x + 1] = static_cast<uint8_t>(y);
    }
  }
  return raster;
}

TEST(Convert, Should_EqualTheReference_When_PicturesAreRandom) {
  const auto seed = 4711u;
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  for (const TPixelFormat from : kEveryFormat) {
    for (const TPixelFormat to : kEveryFormat) {
      for (int i = 0; i < 12; ++i) {
        const int width = 1 + static_cast<int>(random() % 70),
                  height = 1 + static_cast<int>(random() % 9);
        SCOPED_TRACE(testing::Message()
                     << from << " to " << to << ", " << width << " x " << height);
        ExpectAsReference(test::RandomRaster(from, width, height, random), to);
      }
    }
  }
}

TEST(Convert, Should_EqualTheReference_When_ColorsAreFewOrPalettesShort) {
  const auto seed = 815u;
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  for (const TPixelFormat to : kEveryFormat) {
    for (const int colors : {1, 2, 3, 16, 17, 200}) {
      ExpectAsReference(test::FewColorsRaster(pf24bit, 43, 21, colors, random), to);
      ExpectAsReference(test::FewColorsRaster(pf32bit, 42, 21, colors, random), to);
      for (const TPixelFormat from : {pf1bit, pf4bit, pf8bit})
        ExpectAsReference(WithPalette(test::RandomRaster(from, 37, 11, random), colors, random),
                          to);
    }
  }
}

TEST(Convert, Should_WalkAllWords) {
  for (const TPixelFormat from : {pf15bit, pf16bit})
    for (const TPixelFormat to : {pf1bit, pf15bit, pf16bit, pf24bit, pf32bit})
      ExpectAsReference(EveryWord(from), to);
}

TEST(Convert, Channels_Should_ReachFullScale_When_15Or16Bits) {
  const Raster words16 = EveryWord(pf16bit), words15 = EveryWord(pf15bit);
  EXPECT_EQ(words16.PixelColor(0xFF, 0xFF), clWhite);
  EXPECT_EQ(words16.PixelColor(0xFE, 0xFF), RGB(255, 255, 247));
  EXPECT_EQ(words16.PixelColor(0x00, 0xF8), RGB(255, 0, 0));
  EXPECT_EQ(words16.PixelColor(0xE0, 0x07), RGB(0, 255, 0));
  EXPECT_EQ(words16.PixelColor(0x1F, 0x00), RGB(0, 0, 255));
  EXPECT_EQ(words15.PixelColor(0xFF, 0x7F), clWhite);
  EXPECT_EQ(words15.PixelColor(0xFE, 0x7F), RGB(255, 255, 247));
  EXPECT_EQ(words15.PixelColor(0x00, 0xFC), RGB(255, 0, 0));
  EXPECT_EQ(words15.PixelColor(0xE0, 0x03), RGB(0, 255, 0));
}

TEST(Convert, Words_Should_SurviveTrueColor) {
  for (const TPixelFormat format : {pf15bit, pf16bit}) {
    Raster words = EveryWord(format);
    if (format == pf15bit) {
      for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) words.Row(y)[2 * x + 1] &= 0x7F;
    }
    for (const TPixelFormat via : {pf24bit, pf32bit})
      EXPECT_TRUE(test::SamePixels(words, ConvertRaster(ConvertRaster(words, via), format)));
  }
}

TEST(Convert, Alpha_Should_BeOpaque_When_24BecomesBits32) {
  const Raster result = ConvertRaster(test::GradientRaster(pf24bit, 13, 7), pf32bit);
  for (int y = 0; y < 7; ++y)
    for (int x = 0; x < 13; ++x) EXPECT_EQ(result.Row(y)[4 * x + 3], 255);
  EXPECT_EQ(result.alphaFormat, afIgnored);
}

TEST(Convert, Alpha_Should_BeDropped_When_32BitsBecome24) {
  Raster source = test::GradientRaster(pf32bit, 13, 7);
  source.alphaFormat = afDefined;
  const Raster result = ConvertRaster(source, pf24bit);
  EXPECT_TRUE(test::SameColors(source, result));
  EXPECT_EQ(result.alphaFormat, afIgnored);
}

TEST(Convert, Alpha_Should_Stay_When_FormatStays) {
  Raster source = test::GradientRaster(pf32bit, 13, 7);
  source.alphaFormat = afDefined;
  const Raster result = ConvertRaster(source, pf32bit);
  EXPECT_TRUE(test::SamePixels(source, result));
  EXPECT_EQ(result.alphaFormat, afDefined);
}

TEST(Convert, Indexes_Should_BeKept_When_FormatGrows) {
  std::mt19937 random(5);
  const Raster one = test::RandomRaster(pf1bit, 29, 5, random);
  const Raster four = ConvertRaster(one, pf4bit);
  const Raster eight = ConvertRaster(four, pf8bit);
  ASSERT_EQ(four.palette.Count(), 16);
  ASSERT_EQ(eight.palette.Count(), 256);
  for (int x = 0; x < 29; ++x) {
    EXPECT_EQ(eight.Row(4)[x], one.Row(4)[x / 8] >> (7 - x % 8) & 1);
    EXPECT_EQ(four.Row(4)[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15, eight.Row(4)[x]);
  }
  EXPECT_EQ(eight.palette.Entry(1), one.palette.Entry(1));
  EXPECT_EQ(EntryColor(four.palette.Entry(2)), clBlack) << "filled up with black";
}

TEST(Convert, Indexes_Should_BeKept_When_8BitsUseOnlyTheFirst16) {
  std::mt19937 random(6);
  Raster source = test::RandomRaster(pf8bit, 31, 9, random);
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 31; ++x) source.Row(y)[x] &= 15;
  const Raster back = ConvertRaster(ConvertRaster(source, pf4bit), pf8bit);
  for (int y = 0; y < 9; ++y)
    EXPECT_TRUE(std::equal(source.Row(y), source.Row(y) + 31, back.Row(y)));
}

TEST(Convert, Colors_Should_BeKept_When_8BitsUse16HighIndexes) {
  std::mt19937 random(8);
  Raster source = test::RandomRaster(pf8bit, 31, 9, random);
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 31; ++x) source.Row(y)[x] |= 0xF0;
  EXPECT_TRUE(test::SameColors(source, ConvertRaster(source, pf4bit)));
}

TEST(Convert, TwoColors_Should_BeKept_When_IndexedBecomes1Bit) {
  Raster source(pf8bit, 3, 1);
  source.Row(0)[0] = 70;
  source.Row(0)[1] = 69;
  source.Row(0)[2] = 70;
  source.ClearPadding();
  TColorTable table{};
  table[70] = {200, 0, 0, 0};
  table[69] = {0, 0, 200, 0};
  source.palette = HPALETTE(table);
  const Raster result = ConvertRaster(source, pf1bit);
  EXPECT_TRUE(test::SameColors(source, result));
  EXPECT_EQ(result.Row(0)[0], 0xA0) << "the darker color is 0";
}

TEST(Convert, Gray_Should_BeWhiteAbove127_When_1Bit) {
  Raster source(pf24bit, 256, 1);
  for (int x = 0; x < 256; ++x)
    for (int c = 0; c < 3; ++c) source.Row(0)[3 * x + c] = static_cast<uint8_t>(x);
  const Raster result = ConvertRaster(source, pf1bit);
  for (int x = 0; x < 256; ++x) {
    const int gray = static_cast<int>(x * 0.297L + x * 0.589L + x * 0.114L);
    EXPECT_EQ(result.PixelColor(x, 0), gray > 127 ? clWhite : clBlack) << x;
  }
}

TEST(Convert, Gray_Should_BeCutInExtendedPrecision_When_SumIsExactly128) {
  // Every color whose thousandths are exactly 128000: rounding of the weights decides.
  int cases = 0;
  Raster source(pf24bit, 1, 1);
  source.ClearPadding();
  for (int red = 0; red < 256; ++red) {
    for (int green = 0; green < 256; ++green) {
      const int rest = 128000 - 297 * red - 589 * green;
      if (rest < 0 || rest % 114 != 0 || rest / 114 > 255) continue;
      ++cases;
      source.Row(0)[0] = static_cast<uint8_t>(rest / 114);
      source.Row(0)[1] = static_cast<uint8_t>(green);
      source.Row(0)[2] = static_cast<uint8_t>(red);
      ExpectAsReference(source, pf1bit);
    }
  }
  EXPECT_GT(cases, 100);
}

TEST(Convert, Index_Should_BeBlack_When_BeyondThePalette) {
  Raster source(pf8bit, 2, 1);
  source.palette = HPALETTE(GrayPalette(256).Entries().subspan(100, 50));
  source.Row(0)[0] = 49;
  source.Row(0)[1] = 50;
  source.ClearPadding();
  for (const TPixelFormat format : {pf8bit, pf15bit, pf24bit, pf32bit}) {
    const Raster result = ConvertRaster(source, format);
    EXPECT_EQ(result.PixelColor(1, 0), clBlack);
    EXPECT_NE(result.PixelColor(0, 0), clBlack);
  }
}

TEST(Convert, Properties_Should_TravelAlong) {
  Raster source = test::GradientRaster(pf8bit, 5, 4);
  source.resolution = {300, 150};
  source.profile = std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3});
  source.transparentColor = RGB(1, 2, 3);
  for (const TPixelFormat format : kEveryFormat) {
    const Raster result = ConvertRaster(source, format);
    EXPECT_EQ(result.resolution, source.resolution);
    EXPECT_EQ(result.profile, source.profile);
    EXPECT_EQ(result.transparentColor, source.transparentColor);
  }
}

TEST(Convert, Palette_Should_BeTheDefault_When_ThereAreNoPixels) {
  for (const TPixelFormat from : kEveryFormat) {
    for (const TPixelFormat to : kEveryFormat) {
      if (from == to) continue;
      const Raster result = ConvertRaster(Raster(from, 0, 7), to);
      EXPECT_EQ(result.palette, DefaultPalette(to));
      EXPECT_EQ(result.Height(), 7);
      EXPECT_EQ(ConvertRaster(Raster(from, 7, 0), to).Width(), 7);
    }
  }
}

TEST(Convert, Should_Raise_When_ResultIsBeyondTheBudget) {
  const uint64_t before = PictureMemoryLimit();
  const Raster source = test::GradientRaster(pf8bit, 100, 100);
  SetPictureMemoryLimit(20000);
  EXPECT_THROW(ConvertRaster(source, pf24bit), LimitError);
  SetPictureMemoryLimit(before);
}

TEST(RasterSize, Should_Raise_When_SizeIsAbsurd) {
  EXPECT_THROW(Raster(pf32bit, -1, 5), RangeError);
  EXPECT_THROW(Raster(pf32bit, 5, -1), RangeError);
  EXPECT_THROW(Raster(pf32bit, INT32_MAX, INT32_MAX), LimitError) << "2 to the 64 bytes and more";
  EXPECT_THROW(Raster(pf1bit, INT32_MAX, INT32_MAX), LimitError);
  EXPECT_THROW(Raster(pfDevice, 5, 5), RangeError);
  EXPECT_THROW(Raster(pfCustom, 5, 5), RangeError);
}

TEST(RasterMove, MovedFrom_Should_BeEmpty) {
  Raster source = test::GradientRaster(pf24bit, 5, 4);
  const uint8_t* rows = source.Row(0);
  const Raster target = std::move(source);
  EXPECT_EQ(target.Row(0), rows) << "moving is free";
  EXPECT_EQ(source.Width(), 0);  // NOLINT(bugprone-use-after-move): the promise is tested
  EXPECT_EQ(source.Height(), 0);
}

}  // namespace
}  // namespace rasterkit
