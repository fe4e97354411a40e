// Kinds of headers, depths and row orders.

#include <gmock/gmock.h>

#include "tests/codecs/bmp/bmp_test_support.h"
#include "tests/support/pipe_stream.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;

/// 2 x 2: red, green over blue, white.
BmpFile FourColors24() {
  return {.width = 2,
          .height = 2,
          .pixels = {255, 0, 0, 255, 255, 255, 0, 0,  //
                     0, 0, 255, 0, 255, 0, 0, 0}};
}

void ExpectFourColors(const Raster& raster) {
  ASSERT_EQ(raster.Format(), pf24bit);
  ASSERT_EQ(raster.Width(), 2);
  ASSERT_EQ(raster.Height(), 2);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF0000u);
  EXPECT_EQ(PixelAt(raster, 1, 0), 0x00FF00u);
  EXPECT_EQ(PixelAt(raster, 0, 1), 0x0000FFu);
  EXPECT_EQ(PixelAt(raster, 1, 1), 0xFFFFFFu);
}

TEST(DecodeBmp, Should_GiveTopRowFirst_When_FileIsBottomUp) {
  ExpectFourColors(DecodeBytes(FourColors24()));
}

TEST(DecodeBmp, Should_GiveTopRowFirst_When_HeightIsNegative) {
  BmpFile file = FourColors24();
  file.height = -2;
  file.pixels = {0, 0, 255, 0, 255, 0, 9, 9, 255, 0, 0, 255, 255, 255, 9, 9};
  const Raster raster = DecodeBytes(file);
  ExpectFourColors(raster);
  EXPECT_TRUE(PaddingIsZero(raster));
}

TEST(DecodeBmp, Should_ReadEveryHeader_When_PixelsHave24Bits) {
  for (const uint32_t headerBytes :
       {12u, 16u, 20u, 24u, 36u, 40u, 48u, 52u, 56u, 60u, 64u, 108u, 124u}) {
    SCOPED_TRACE(headerBytes);
    BmpFile file = FourColors24();
    file.headerBytes = headerBytes;
    CodecReport report;
    ExpectFourColors(DecodeBytes(file, &report));
    EXPECT_THAT(report.warnings, ElementsAre());
  }
}

TEST(DecodeBmp, Should_StartAtPosition_When_StreamHoldsMoreBefore) {
  std::vector<uint8_t> bytes = {1, 2, 3, 4, 5};
  const std::vector<uint8_t> file = FourColors24().Bytes();
  bytes.insert(bytes.end(), file.begin(), file.end());
  TMemoryStream stream(bytes);
  stream.SetPosition(5);
  ExpectFourColors(DecodeBmp(stream));
}

TEST(DecodeBmp, Should_ReadToTheEnd_When_StreamIsAPipe) {
  PipeStream pipe(FourColors24().Bytes());
  ExpectFourColors(DecodeBmp(pipe));
}

TEST(DecodeBmp, Should_Read1Bit_When_WidthIsOdd) {
  const Raster raster = DecodeBytes(BmpFile{.width = 11,
                                            .height = 1,
                                            .bits = 1,
                                            .palette = {0x112233, 0xAABBCC},
                                            .pixels = {0b10110001, 0b01011111, 0xFF, 0xFF}});
  ASSERT_EQ(raster.Format(), pf1bit);
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 0, 1, 1, 0, 0, 0, 1, 0, 1, 0));
  EXPECT_EQ(raster.palette.Count(), 2);
  EXPECT_EQ(PaletteColor(raster, 0), 0x112233u);
  EXPECT_EQ(PaletteColor(raster, 1), 0xAABBCCu);
  EXPECT_TRUE(PaddingIsZero(raster));
}

TEST(DecodeBmp, Should_Become4Bit_When_FileHas2Bits) {
  for (int width = 1; width <= 9; ++width) {
    SCOPED_TRACE(width);
    const Raster raster = DecodeBytes(BmpFile{.width = width,
                                              .height = 1,
                                              .bits = 2,
                                              .palette = {0x000000, 0x555555, 0xAAAAAA, 0xFFFFFF},
                                              .pixels = {0b00011011, 0b11100100, 0b01111111, 0}});
    ASSERT_EQ(raster.Format(), pf4bit);
    std::vector<int> expected = {0, 1, 2, 3, 3, 2, 1, 0, 1};
    expected.resize(static_cast<size_t>(width));
    EXPECT_EQ(Indexes(raster, 0), expected);
    EXPECT_EQ(raster.palette.Count(), 4);
    EXPECT_TRUE(PaddingIsZero(raster));
  }
}

TEST(DecodeBmp, Should_Read4Bit_When_WidthIsOdd) {
  const Raster raster = DecodeBytes(BmpFile{.width = 3,
                                            .height = 1,
                                            .bits = 4,
                                            .palette = std::vector<uint32_t>(16, 7),
                                            .pixels = {0x1F, 0xA5, 1, 1}});
  ASSERT_EQ(raster.Format(), pf4bit);
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 15, 10));
  EXPECT_TRUE(PaddingIsZero(raster));
}

TEST(DecodeBmp, Should_KeepPaletteCount_When_FileStatesFewerEntries) {
  const Raster raster = DecodeBytes(BmpFile{.width = 4,
                                            .height = 1,
                                            .bits = 8,
                                            .colorsUsed = 3,
                                            .palette = {0x010203, 0x040506, 0x070809},
                                            .pixels = {2, 1, 0, 200}});
  ASSERT_EQ(raster.Format(), pf8bit);
  EXPECT_EQ(raster.palette.Count(), 3);
  EXPECT_EQ(PaletteColor(raster, 2), 0x070809u);
  EXPECT_EQ(PaletteColor(raster, 200), 0u) << "an index beyond the palette is black";
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(2, 1, 0, 200));
}

TEST(DecodeBmp, Should_Read3ByteEntries_When_HeaderIsCore) {
  const Raster raster = DecodeBytes(BmpFile{.headerBytes = 12,
                                            .width = 1,
                                            .height = 1,
                                            .bits = 1,
                                            .palette = {0x010203, 0xFFEEDD},
                                            .pixels = {0x80, 0, 0, 0}});
  EXPECT_EQ(PaletteColor(raster, 0), 0x010203u);
  EXPECT_EQ(PaletteColor(raster, 1), 0xFFEEDDu);
  EXPECT_EQ(raster.resolution, Resolution{});
}

TEST(DecodeBmp, Should_Be15Bit_When_16BitHasNoMasks) {
  const Raster raster =
      DecodeBytes(BmpFile{.width = 2, .height = 1, .bits = 16, .pixels = {0x34, 0x92, 0xFF, 0xFF}});
  ASSERT_EQ(raster.Format(), pf15bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x1234u) << "the bit above 5-5-5 means nothing";
  EXPECT_EQ(PixelAt(raster, 1, 0), 0x7FFFu);
}

TEST(DecodeBmp, Should_BeOpaque_When_32BitHasNoAlphaMask) {
  const Raster raster =
      DecodeBytes(BmpFile{.width = 2, .height = 1, .bits = 32, .pixels = {1, 2, 3, 4, 5, 6, 7, 0}});
  ASSERT_EQ(raster.Format(), pf32bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF030201u);
  EXPECT_EQ(PixelAt(raster, 1, 0), 0xFF070605u);
  EXPECT_EQ(raster.alphaFormat, afIgnored);
}

TEST(DecodeBmp, Should_HaveAlpha_When_PlainV4HeaderStatesItsMask) {
  BmpFile file{.headerBytes = 108,
               .width = 2,
               .height = 1,
               .bits = 32,
               .masks = {0, 0, 0, 0xFF000000},
               .pixels = {1, 2, 3, 4, 5, 6, 7, 0}};
  const Raster raster = DecodeBytes(file);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x04030201u);
  EXPECT_EQ(PixelAt(raster, 1, 0), 0x00070605u);
  EXPECT_EQ(raster.alphaFormat, afDefined);

  file.masks[3] = 0x00FF0000;  // no alpha channel of plain pixels
  EXPECT_EQ(DecodeBytes(file).alphaFormat, afIgnored);
}

TEST(DecodeBmp, Should_GiveDotsPerInch_When_FileStatesPixelsPerMeter) {
  BmpFile file = FourColors24();
  file.pixelsPerMeterX = 11811;
  file.pixelsPerMeterY = 2835;
  const Raster raster = DecodeBytes(file);
  EXPECT_DOUBLE_EQ(raster.resolution.x, 11811 * 0.0254);
  EXPECT_DOUBLE_EQ(raster.resolution.y, 2835 * 0.0254);
}

TEST(DecodeBmp, Should_BeWithoutResolution_When_PixelsPerMeterAreNegative) {
  BmpFile file = FourColors24();
  file.pixelsPerMeterX = -11811;
  file.pixelsPerMeterY = INT32_MIN;
  EXPECT_EQ(DecodeBytes(file).resolution, Resolution{});
}

TEST(DecodeBmp, Should_KeepProfile_When_V5HeaderEmbedsOne) {
  BmpFile file = FourColors24();
  file.headerBytes = 124;
  file.profile = {1, 2, 3, 4, 5};
  const Raster raster = DecodeBytes(file);
  ASSERT_TRUE(raster.profile);
  EXPECT_EQ(*raster.profile, file.profile);
}

TEST(DecodeBmp, Should_IgnoreProfile_When_ItIsLinked) {
  BmpFile file = FourColors24();
  file.headerBytes = 124;
  file.profile = {'a', '.', 'i', 'c', 'c', 0};
  file.colorSpace = 0x4C494E4B;
  EXPECT_FALSE(DecodeBytes(file).profile);
}

TEST(DecodeBmp, Should_SkipPalette_When_TrueColorFileHasOne) {
  BmpFile file = FourColors24();
  file.colorsUsed = 3;
  file.palette = {1, 2, 3};
  const Raster raster = DecodeBytes(file);
  ExpectFourColors(raster);
  EXPECT_FALSE(raster.palette);
}

TEST(DecodeBmp, Should_ReadAllRows_When_ThereAreManyBatches) {
  // More rows than one scattered read takes, and more bytes than one batch.
  for (const bool topDown : {false, true}) {
    const int width = 257, height = 5003;
    const size_t stride = StrideBytes(width, 24);
    BmpFile file{.width = width, .height = topDown ? -height : height};
    file.pixels.resize(stride * height);
    for (int y = 0; y < height; ++y) {
      const size_t row = static_cast<size_t>(topDown ? y : height - 1 - y) * stride;
      for (size_t i = 0; i < stride; ++i) {
        file.pixels[row + i] = static_cast<uint8_t>(i * 7 + static_cast<size_t>(y) * 13 + 1);
      }
    }
    const Raster raster = DecodeBytes(file);
    for (int y = 0; y < height; ++y) {
      for (size_t i = 0; i < stride; ++i) {
        const int expected = i < size_t{width} * 3
                                 ? static_cast<uint8_t>(i * 7 + static_cast<size_t>(y) * 13 + 1)
                                 : 0;
        ASSERT_EQ(raster.Row(y)[i], expected) << "row " << y << ", byte " << i;
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
