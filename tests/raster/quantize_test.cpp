#include <random>
#include <set>

#include <gtest/gtest.h>

#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/nearest_color.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

double MeanSquaredError(const Raster& a, const Raster& b) {
  double sum = 0;
  for (int y = 0; y < a.Height(); ++y) {
    for (int x = 0; x < a.Width(); ++x) {
      const TColor p = a.PixelColor(x, y), q = b.PixelColor(x, y);
      for (int shift = 0; shift < 24; shift += 8) {
        const int difference = (p >> shift & 255) - (q >> shift & 255);
        sum += difference * difference;
      }
    }
  }
  return sum / (double{1} * a.Width() * a.Height());
}

// Error of the nearest colors of a fixed cube: 8 x 8 x 4 entries at 8 bits, 2 x 4 x 2 at 4 bits.
double CubeError(const Raster& source, TPixelFormat format) {
  std::vector<tagPALETTEENTRY> cube;
  const int reds = format == pf8bit ? 8 : 2, greens = format == pf8bit ? 8 : 4;
  const int blues = format == pf8bit ? 4 : 2;
  for (int r = 0; r < reds; ++r)
    for (int g = 0; g < greens; ++g)
      for (int b = 0; b < blues; ++b)
        cube.push_back({static_cast<uint8_t>(r * 255 / (reds - 1)),
                        static_cast<uint8_t>(g * 255 / (greens - 1)),
                        static_cast<uint8_t>(b * 255 / (blues - 1)), 0});
  Raster mapped(pf24bit, source.Width(), source.Height());
  for (int y = 0; y < source.Height(); ++y) {
    for (int x = 0; x < source.Width(); ++x) {
      const tagPALETTEENTRY entry =
          cube[static_cast<size_t>(NearestEntry(cube, source.PixelColor(x, y)))];
      uint8_t* pixel = mapped.Row(y) + 3 * x;
      pixel[0] = entry.peBlue;
      pixel[1] = entry.peGreen;
      pixel[2] = entry.peRed;
    }
  }
  return MeanSquaredError(source, mapped);
}

TEST(Quantize, Should_BeExact_When_ColorsAreAsManyAsEntries) {
  std::mt19937 random(7);
  for (const TPixelFormat from : {pf24bit, pf32bit}) {
    for (const int colors : {1, 2, 15, 16, 17, 255, 256}) {
      const Raster source = test::FewColorsRaster(from, 67, 45, colors, random);
      for (const TPixelFormat to : {pf8bit, pf4bit}) {
        const Raster result = ConvertRaster(source, to);
        EXPECT_EQ(result.palette.Count(), to == pf8bit ? 256 : 16);
        EXPECT_TRUE(test::PaddingIsZero(result));
        if (colors <= result.palette.Count()) {
          EXPECT_TRUE(test::SameColors(source, result)) << colors << " colors";
        }
      }
    }
  }
}

TEST(Quantize, Should_NumberColorsInOrderOfAppearance_When_Exact) {
  Raster source(pf24bit, 3, 1);
  const uint8_t row[] = {3, 2, 1, 30, 20, 10, 3, 2, 1};
  std::copy(std::begin(row), std::end(row), source.Row(0));
  const Raster result = ConvertRaster(source, pf8bit);
  EXPECT_EQ(result.Row(0)[0], 0);
  EXPECT_EQ(result.Row(0)[1], 1);
  EXPECT_EQ(result.Row(0)[2], 0);
  EXPECT_EQ(EntryColor(result.palette.Entry(1)), RGB(10, 20, 30));
  EXPECT_EQ(EntryColor(result.palette.Entry(2)), clBlack) << "unused entries are black";
}

TEST(Quantize, Should_GiveTheGrayRamp_When_PictureIsGray) {
  const Raster gray = test::GrayRaster(71, 33);
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    const Raster result = ConvertRaster(ConvertRaster(gray, format), pf8bit);
    EXPECT_TRUE(test::SamePixels(gray, result));
    EXPECT_TRUE(IsGrayRamp(result.palette));
  }
}

TEST(Quantize, Should_HaveAllEntriesAndTheNearestOne_When_ColorsAreMore) {
  std::mt19937 random(11);
  for (const TPixelFormat format : {pf8bit, pf4bit}) {
    for (const Raster& source :
         {test::RandomRaster(pf24bit, 61, 47, random), test::GradientRaster(pf32bit, 83, 51)}) {
      const Raster result = ConvertRaster(source, format);
      ASSERT_EQ(result.palette.Count(), format == pf8bit ? 256 : 16);
      for (int y = 0; y < source.Height(); ++y) {
        for (int x = 0; x < source.Width(); ++x) {
          const int nearest = NearestEntry(result.palette.Entries(), source.PixelColor(x, y));
          ASSERT_EQ(result.PixelColor(x, y), EntryColor(result.palette.Entry(nearest)));
        }
      }
      EXPECT_TRUE(test::PaddingIsZero(result));
    }
  }
}

TEST(Quantize, Should_UseEveryEntry_When_ColorsAreJustTooMany) {
  std::mt19937 random(12);
  const Raster source = test::FewColorsRaster(pf24bit, 200, 100, 300, random);
  const Raster result = ConvertRaster(source, pf8bit);
  std::set<TColor> used;
  for (int y = 0; y < result.Height(); ++y)
    for (int x = 0; x < result.Width(); ++x) used.insert(result.PixelColor(x, y));
  EXPECT_GE(used.size(), 250u);
}

TEST(Quantize, Should_StaySmooth_When_PictureIsAGradientOfCloseColors) {
  // 512 colors that differ by single steps: coarse boxes alone would make bands of eight.
  Raster source(pf24bit, 512, 3);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 512; ++x) {
      uint8_t* pixel = source.Row(y) + 3 * x;
      pixel[0] = static_cast<uint8_t>(100 + x / 16);
      pixel[1] = static_cast<uint8_t>(100 + x / 4 % 4 + x / 16);
      pixel[2] = static_cast<uint8_t>(80 + x / 16 + x % 4);
    }
  }
  EXPECT_LT(MeanSquaredError(source, ConvertRaster(source, pf8bit)), 0.6);
}

TEST(Quantize, Should_BeMuchBetterThanACube) {
  std::mt19937 random(13);
  const Raster gradient = test::GradientRaster(pf24bit, 255, 199);
  for (const TPixelFormat format : {pf8bit, pf4bit}) {
    const double adaptive = MeanSquaredError(gradient, ConvertRaster(gradient, format));
    const double cube = CubeError(gradient, format);
    std::printf("squared error a pixel: adaptive %.2f, cube %.2f\n", adaptive, cube);
    EXPECT_LT(adaptive, 0.75 * cube);
  }
}

// Larger than the grid of sampled pixels, with a pattern of the same width as its cells.
TEST(Quantize, Should_SeeAllColors_When_ALargePictureHasAPattern) {
  Raster source(pf24bit, 1300, 1000);
  std::mt19937 random(15);
  for (int y = 0; y < source.Height(); ++y) {
    uint8_t* row = source.Row(y);
    for (int x = 0; x < source.Width(); ++x, row += 3) {
      const bool isLine = x % 3 == 0;
      row[0] = static_cast<uint8_t>((isLine ? 220 : 0) + random() % 16);
      row[1] = static_cast<uint8_t>(random() % 16);
      row[2] = static_cast<uint8_t>((isLine ? 0 : 220) + random() % 16);
    }
  }
  EXPECT_LT(MeanSquaredError(source, ConvertRaster(source, pf8bit)), 20);
}

// So wide that the cells of the grid are higher than the picture, or so high that they are wider.
TEST(Quantize, Should_SeeColors_When_ALargePictureIsALine) {
  std::mt19937 random(16);
  for (const bool isWide : {true, false}) {
    Raster source(pf24bit, isWide ? 600000 : 1, isWide ? 1 : 600000);
    for (int i = 0; i < 600000; ++i) {
      uint8_t* pixel = isWide ? source.Row(0) + 3 * i : source.Row(i);
      for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(200 + random() % 16);
    }
    EXPECT_LT(MeanSquaredError(source, ConvertRaster(source, pf8bit)), 20) << isWide;
  }
}

TEST(Quantize, Should_BeTheSameEveryTime) {
  std::mt19937 random(14);
  const Raster source = test::RandomRaster(pf32bit, 149, 151, random);
  EXPECT_TRUE(test::SamePixels(ConvertRaster(source, pf8bit), ConvertRaster(source, pf8bit)));
}

TEST(NearestColor, Should_EqualTheFullSearch_When_PaletteIsAnything) {
  const auto seed = 20u;
  std::mt19937 random(seed);
  std::vector<HPALETTE> palettes = {test::RandomPalette(256, random),
                                    test::RandomPalette(3, random),
                                    DefaultPalette(pf8bit),
                                    DefaultPalette(pf4bit),
                                    GrayPalette(256),
                                    HPALETTE()};
  for (const HPALETTE& palette : palettes) {
    NearestColor nearest(palette.Entries());
    for (int i = 0; i < 60000; ++i) {
      const RGBArec pixel{static_cast<uint8_t>(random()), static_cast<uint8_t>(random()),
                          static_cast<uint8_t>(random()), 0};
      const int expected = NearestEntry(palette.Entries(), RGB(pixel.r, pixel.g, pixel.b));
      ASSERT_EQ(nearest.Of(pixel), expected) << "seed " << seed;
      uint8_t ofRow = 0;
      nearest.OfRow(&pixel, 1, &ofRow);
      ASSERT_EQ(ofRow, expected) << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace rasterkit
