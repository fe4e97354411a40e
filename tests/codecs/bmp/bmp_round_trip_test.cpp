// A written file is read back unchanged and has the layout that other programs expect.

#include <limits>
#include <memory>
#include <random>

#include <gmock/gmock.h>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/bmp/bmp_test_support.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using detail::BmpLong;
using detail::BmpWord;

Raster RandomPicture(TPixelFormat format, int width, int height, uint32_t seed) {
  std::mt19937 random(seed);
  Raster raster = RandomRaster(format, width, height, random);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (format == pf15bit) raster.Row(y)[2 * x + 1] &= 0x7F;
      // What an ignored alpha byte holds is not kept.
      if (format == pf32bit) raster.Row(y)[4 * x + 3] = 255;
    }
  }
  return raster;
}

TEST(BmpRoundTrip, Should_KeepEverything_When_FormatAndSizeAreAny) {
  uint32_t seed = 1;
  for (const TPixelFormat format : kEveryFormat) {
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{{1, 1},
                                                                        {47, 33},
                                                                        {33, 47},
                                                                        {2, 5},
                                                                        {3, 1},
                                                                        {7, 2},
                                                                        {8, 3},
                                                                        {9, 9},
                                                                        {31, 1},
                                                                        {32, 2},
                                                                        {70, 3}}) {
      SCOPED_TRACE(testing::Message()
                   << "format " << format << ", " << width << " x " << height << ", seed " << seed);
      Raster raster = RandomPicture(format, width, height, seed++);
      raster.resolution = {300 * 0.0254, 11811 * 0.0254};
      CodecReport report;
      const Raster again = DecodeBytes(EncodeToBytes(raster), &report);
      EXPECT_TRUE(SamePicture(raster, again));
      EXPECT_TRUE(PaddingIsZero(again));
      EXPECT_THAT(report.warnings, testing::ElementsAre());
    }
  }
}

TEST(BmpRoundTrip, Should_KeepProfile_When_ItIsEmbedded) {
  for (const TPixelFormat format : kEveryFormat) {
    SCOPED_TRACE(format);
    Raster raster = RandomPicture(format, 47, 33, 7);
    raster.profile =
        std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{9, 8, 7, 6, 5});
    EXPECT_TRUE(SamePicture(raster, DecodeBytes(EncodeToBytes(raster, BmpProfile::embed))));
    EXPECT_FALSE(DecodeBytes(EncodeToBytes(raster, BmpProfile::omit)).profile);
  }
}

TEST(BmpRoundTrip, Should_KeepAlpha_When_ItIsDefined) {
  for (const bool hasProfile : {false, true}) {
    Raster raster = RandomPicture(pf32bit, 47, 33, 8);
    for (int x = 0; x < 47; ++x) raster.Row(5)[4 * x + 3] = static_cast<uint8_t>(5 * x);
    raster.alphaFormat = afDefined;
    if (hasProfile) raster.profile = std::make_shared<const std::vector<uint8_t>>(300, uint8_t{1});
    EXPECT_TRUE(SamePicture(raster, DecodeBytes(EncodeToBytes(raster))));
  }
}

TEST(BmpRoundTrip, Should_WriteOpaque_When_AlphaIsIgnored) {
  Raster raster = RandomPicture(pf32bit, 3, 2, 9);
  raster.Row(1)[3] = 17;
  const Raster again = DecodeBytes(EncodeToBytes(raster));
  EXPECT_EQ(again.Row(1)[3], 255);
  EXPECT_EQ(again.alphaFormat, afIgnored);
  const std::vector<uint8_t> bytes = EncodeToBytes(raster);
  EXPECT_EQ(bytes[54 + 3], 255) << "readers that look at the unused byte must not see holes";
}

/// Random indexes below `count`.
Raster IndexesBelow(int count, TPixelFormat format, unsigned seed) {
  std::mt19937 random(seed);
  Raster raster(format, 5, 3);
  std::vector<uint8_t> indexes(5);
  for (int y = 0; y < 3; ++y) {
    for (uint8_t& index : indexes) {
      index = static_cast<uint8_t>(random() % static_cast<unsigned>(count));
    }
    PackIndexes(indexes.data(), format, 5, raster.Row(y));
  }
  return raster;
}

TEST(BmpRoundTrip, Should_KeepEntryCount_When_PaletteIsShort) {
  for (const auto& [format, most] :
       std::vector<std::pair<TPixelFormat, int>>{{pf1bit, 2}, {pf4bit, 16}, {pf8bit, 256}}) {
    for (const int count : {1, 2, most - 1, most}) {
      std::mt19937 random(10);
      Raster raster = IndexesBelow(count, format, 10);
      raster.palette = RandomPalette(std::max(count, 1), random);
      const std::vector<uint8_t> bytes = EncodeToBytes(raster);
      EXPECT_EQ(DecodeBytes(bytes).palette.Count(), std::max(count, 1));
      EXPECT_EQ(BmpLong(bytes, 14 + 32), static_cast<uint32_t>(std::max(count, 1)));
    }
  }
}

TEST(BmpRoundTrip, Should_WriteOneBlackEntry_When_PaletteIsMissing) {
  Raster raster = IndexesBelow(1, pf8bit, 11);
  raster.palette = {};
  const Raster again = DecodeBytes(EncodeToBytes(raster));
  EXPECT_EQ(again.palette.Count(), 1);
  EXPECT_EQ(PaletteColor(again, 0), 0u);
}

TEST(BmpRoundTrip, Should_CutPalette_When_ItHasMoreThanTheBitsCanSay) {
  std::mt19937 random(12);
  Raster raster = RandomPicture(pf4bit, 5, 3, 12);
  raster.palette = RandomPalette(256, random);
  EXPECT_EQ(DecodeBytes(EncodeToBytes(raster)).palette.Count(), 16);
}

TEST(EncodeBmp, Should_ZeroPadding_When_RasterHasRubbishThere) {
  Raster raster = RandomPicture(pf24bit, 3, 2, 13);
  raster.Row(0)[9] = raster.Row(1)[11] = 0xEE;
  const std::vector<uint8_t> bytes = EncodeToBytes(raster);
  EXPECT_EQ(bytes[54 + 11], 0);
  EXPECT_EQ(bytes[54 + 12 + 9], 0);
}

TEST(EncodeBmp, Should_WriteTheOldestHeader_When_ItSaysAll) {
  for (const TPixelFormat format : kEveryFormat) {
    const std::vector<uint8_t> bytes = EncodeToBytes(RandomPicture(format, 47, 33, 14));
    EXPECT_EQ(BmpLong(bytes, 2), bytes.size());
    EXPECT_EQ(BmpLong(bytes, 14), 40u);
    EXPECT_EQ(BmpLong(bytes, 18), 47u);
    EXPECT_EQ(BmpLong(bytes, 22), 33u) << "bottom-up";
    EXPECT_EQ(BmpWord(bytes, 26), 1u);
    EXPECT_EQ(BmpWord(bytes, 28), static_cast<uint32_t>(StoredBitsPerPixel(format)));
    EXPECT_EQ(BmpLong(bytes, 30), format == pf16bit ? 3u : 0u);
    EXPECT_EQ(BmpLong(bytes, 34), StrideBytes(47, StoredBitsPerPixel(format)) * 33);
    EXPECT_EQ(BmpLong(bytes, 10) + BmpLong(bytes, 34), bytes.size());
  }
}

TEST(EncodeBmp, Should_WriteV4Header_When_AlphaIsDefined) {
  Raster raster = RandomPicture(pf32bit, 3, 2, 15);
  raster.alphaFormat = afDefined;
  const std::vector<uint8_t> bytes = EncodeToBytes(raster);
  EXPECT_EQ(BmpLong(bytes, 14), 108u);
  EXPECT_EQ(BmpLong(bytes, 30), 3u);
  EXPECT_EQ(BmpLong(bytes, 54), 0x00FF0000u);
  EXPECT_EQ(BmpLong(bytes, 66), 0xFF000000u);
}

TEST(EncodeBmp, Should_RoundPixelsPerMeter_When_ResolutionIsAny) {
  Raster raster = RandomPicture(pf24bit, 1, 1, 16);
  const auto perMeter = [&](double dpi) {
    raster.resolution = {dpi, 1};
    return BmpLong(EncodeToBytes(raster), 14 + 24);
  };
  EXPECT_EQ(perMeter(96), 3780u);
  EXPECT_EQ(perMeter(300), 11811u);
  EXPECT_EQ(perMeter(72), 2835u);
  EXPECT_EQ(perMeter(0), 0u);
  EXPECT_EQ(perMeter(-5), 0u);
  EXPECT_EQ(perMeter(1e300), 2147483647u);
  EXPECT_EQ(perMeter(std::numeric_limits<double>::quiet_NaN()), 0u);
}

TEST(EncodeBmp, Should_FillThePaletteUp_When_AnIndexLiesBeyondIt) {
  for (const auto& [format, largest] :
       {std::pair{pf1bit, 1}, std::pair{pf4bit, 13}, std::pair{pf8bit, 200}}) {
    Raster raster(format, 16, 2);
    raster.palette = HPALETTE(std::vector<tagPALETTEENTRY>{{1, 2, 3, 0}});
    std::vector<uint8_t> indexes(16);
    indexes[5] = static_cast<uint8_t>(largest);
    for (int y = 0; y < 2; ++y) PackIndexes(indexes.data(), format, 16, raster.Row(y));
    const Raster again = DecodeBytes(EncodeToBytes(raster));
    EXPECT_EQ(again.palette.Count(), largest + 1);
    EXPECT_EQ(again.palette.Entry(0), (tagPALETTEENTRY{1, 2, 3, 0}));
    EXPECT_EQ(again.palette.Entry(largest), tagPALETTEENTRY{});
    EXPECT_EQ(again.PixelColor(5, 1), clBlack);
    // Without such an index, the palette keeps its length.
    std::fill(indexes.begin(), indexes.end(), uint8_t{0});
    for (int y = 0; y < 2; ++y) PackIndexes(indexes.data(), format, 16, raster.Row(y));
    EXPECT_EQ(DecodeBytes(EncodeToBytes(raster)).palette.Count(), 1);
  }
}

TEST(EncodeBmp, Should_Refuse_When_ThereAreNoPixels) {
  for (const auto& [width, height] : std::vector<std::pair<int, int>>{{0, 0}, {5, 0}, {0, 5}}) {
    const Raster raster(pf24bit, width, height);
    TMemoryStream stream;
    EXPECT_THROW(EncodeBmp(raster, stream, BmpProfile::embed), FormatError);
    EXPECT_EQ(stream.Size(), 0u);
  }
}

TEST(IsEmptyBmp, Should_BeTrue_ForAPlainHeaderOfNoPixels) {
  const std::vector<uint8_t> head = detail::BmpHead(Raster(pf32bit, 0, 0), BmpProfile::omit);
  const auto isEmpty = [](const std::vector<uint8_t>& bytes) {
    TSpanStream stream(bytes);
    const bool result = detail::IsEmptyBmp(stream);
    EXPECT_EQ(stream.Position(), 0u);
    return result;
  };
  EXPECT_TRUE(isEmpty(head));
  // The header of an embedded picture may leave the size to that picture.
  constexpr size_t kWidth = 14 + 4, kHeight = 14 + 8, kCompression = 14 + 16;
  for (const size_t place : {size_t{0}, kWidth, kHeight, kCompression}) {
    std::vector<uint8_t> other = head;
    other[place] ^= 5;
    EXPECT_FALSE(isEmpty(other)) << place;
  }
  EXPECT_FALSE(isEmpty({head.begin(), head.begin() + 30}));
  EXPECT_FALSE(isEmpty({}));
}

TEST(EncodeBmp, Should_WriteAtPosition_When_StreamHoldsMoreBefore) {
  TMemoryStream stream(std::vector<uint8_t>{1, 2, 3});
  stream.SetPosition(3);
  const Raster raster = RandomPicture(pf8bit, 47, 33, 17);
  EncodeBmp(raster, stream, BmpProfile::embed);
  EXPECT_EQ(stream.Position(), stream.Size());
  stream.SetPosition(3);
  EXPECT_TRUE(SamePicture(raster, DecodeBmp(stream)));
}

TEST(EncodeBmp, Should_WriteAllRows_When_ThereAreManyBatches) {
  const Raster raster = RandomPicture(pf24bit, 1001, 1203, 18);
  EXPECT_TRUE(SamePicture(raster, DecodeBytes(EncodeToBytes(raster))));
}

}  // namespace
}  // namespace rasterkit::test
