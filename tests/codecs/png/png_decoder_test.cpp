#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/png/png_files.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

constexpr int kGray = 0, kRgb = 2, kPalette = 3, kGrayAlpha = 4, kRgbAlpha = 6;

ByteList Palette(const ByteList& colors) {
  return PngChunk("PLTE", colors);
}

TEST(PngDecoder, Should_RoundSixteenBitsToEight_When_AnyValue) {
  ByteList rows;
  for (int value = 0; value < 65536; value++) {
    rows.push_back(static_cast<uint8_t>(value >> 8));
    rows.push_back(static_cast<uint8_t>(value));
  }
  const Raster raster = DecodePng(PngFile(256, 256, 16, kGray, rows));
  ASSERT_EQ(raster.Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(raster.palette));
  for (int value = 0; value < 65536; value++) {
    ASSERT_EQ(raster.Row(value / 256)[value % 256], (value * 255 + 32767) / 65535) << value;
  }
}

TEST(PngDecoder, Should_RoundSixteenBitsToEight_When_ColorWithAlpha) {
  const ByteList rows = {0x00, 0x80, 0x00, 0x81, 0xFF, 0x7F, 0x12, 0x34};
  const Raster raster = DecodePng(PngFile(1, 1, 16, kRgbAlpha, rows));
  ASSERT_EQ(raster.Format(), pf32bit);
  const uint8_t expected[] = {255, 1, 0,
                              0x12};  // B G R A; 0x0080 / 257 is below a half, 0x0081 above
  EXPECT_TRUE(std::equal(expected, expected + 4, raster.Row(0)));
}

TEST(PngDecoder, Should_KeepIndexes_When_PaletteOfAnyDepth) {
  const ByteList colors = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
  const ByteList two = {10, 20, 30, 40, 50, 60};
  const Raster one = DecodePng(PngFile(3, 1, 1, kPalette, {0b10100000}, Palette(two)));
  EXPECT_EQ(one.Format(), pf1bit);
  EXPECT_EQ(one.palette.Count(), 2);
  EXPECT_EQ(one.Row(0)[0], 0b10100000);
  const Raster four = DecodePng(PngFile(3, 1, 4, kPalette, {0x21, 0x30}, Palette(colors)));
  EXPECT_EQ(four.Format(), pf4bit);
  EXPECT_EQ(four.palette.Count(), 4);
  EXPECT_EQ(four.Row(0)[0], 0x21);
  EXPECT_EQ(four.Row(0)[1], 0x30);
  const Raster eight = DecodePng(PngFile(3, 1, 8, kPalette, {3, 0, 2}, Palette(colors)));
  EXPECT_EQ(eight.Format(), pf8bit);
  EXPECT_EQ(eight.palette.Count(), 4);
  EXPECT_EQ(eight.palette.Entry(3), (tagPALETTEENTRY{100, 110, 120, 0}));
}

TEST(PngDecoder, Should_BecomeFourBit_When_TwoBitOfAnyWidth) {
  const ByteList colors = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
  for (uint32_t width = 1; width <= 40; width++) {
    for (const int type : {kGray, kPalette}) {
      ByteList rows((width + 3) / 4 * 3);
      for (size_t i = 0; i < rows.size(); i++) rows[i] = static_cast<uint8_t>(i * 73 + 27);
      const ByteList file =
          PngFile(width, 3, 2, type, rows, type == kPalette ? Palette(colors) : ByteList());
      const Raster raster = DecodePng(file);
      ASSERT_EQ(raster.Format(), pf4bit);
      ASSERT_EQ(raster.palette.Count(), 4);
      EXPECT_EQ(raster.palette.Entry(2).peRed, type == kGray ? 170 : 70);
      EXPECT_TRUE(PaddingIsZero(raster));
      for (uint32_t y = 0; y < 3; y++) {
        for (uint32_t x = 0; x < width; x++) {
          const int expected = rows[y * ((width + 3) / 4) + x / 4] >> (6 - 2 * (x % 4)) & 3;
          const int found = raster.Row(static_cast<int>(y))[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15;
          ASSERT_EQ(found, expected) << x << ", " << y << " of " << width;
        }
      }
    }
  }
}

TEST(PngDecoder, Should_HaveAGrayRamp_When_Gray) {
  EXPECT_EQ(DecodePng(PngFile(8, 1, 1, kGray, {0xA5})).palette, GrayPalette(2));
  EXPECT_EQ(DecodePng(PngFile(2, 1, 4, kGray, {0xA5})).palette, GrayPalette(16));
  EXPECT_EQ(DecodePng(PngFile(1, 1, 8, kGray, {0xA5})).palette, GrayPalette(256));
  EXPECT_EQ(GrayPalette(16).Entry(7).peGreen, 7 * 17);
}

TEST(PngDecoder, Should_BecomeColorWithAlpha_When_GrayWithAlpha) {
  const Raster raster = DecodePng(PngFile(2, 1, 8, kGrayAlpha, {10, 20, 30, 0}));
  ASSERT_EQ(raster.Format(), pf32bit);
  EXPECT_EQ(raster.alphaFormat, afDefined);
  EXPECT_EQ(raster.transparentColor, clWhite);
  const uint8_t expected[] = {10, 10, 10, 20, 30, 30, 30, 0};
  EXPECT_TRUE(std::equal(expected, expected + 8, raster.Row(0)));
}

TEST(PngDecoder, Should_ExchangeRedAndBlue_When_TrueColor) {
  const Raster raster = DecodePng(PngFile(1, 1, 8, kRgb, {1, 2, 3}));
  ASSERT_EQ(raster.Format(), pf24bit);
  EXPECT_EQ(raster.alphaFormat, afIgnored);
  const uint8_t expected[] = {3, 2, 1, 0};
  EXPECT_TRUE(std::equal(expected, expected + 4, raster.Row(0)));
}

TEST(PngDecoder, Should_IgnoreGamma_When_Stated) {
  const ByteList gamma = PngChunk("gAMA", Word32(220000));
  const Raster raster = DecodePng(PngFile(3, 1, 8, kGray, {10, 100, 200}, gamma));
  const uint8_t expected[] = {10, 100, 200};
  EXPECT_TRUE(std::equal(expected, expected + 3, raster.Row(0)));
}

TEST(PngTransparency, Should_BeTheFirstFullyTransparentEntry_When_Palette) {
  const ByteList colors = Palette({10, 20, 30, 40, 50, 60, 70, 80, 90, 1, 2, 3});
  const auto decode = [&](const ByteList& alphas, CodecReport* report = nullptr) {
    return DecodePng(PngFile(1, 1, 8, kPalette, {0}, colors + PngChunk("tRNS", alphas)), report)
        .transparentColor;
  };
  EXPECT_EQ(decode({0}), RGB(10, 20, 30));
  EXPECT_EQ(decode({255, 0}), RGB(40, 50, 60));
  CodecReport report;
  EXPECT_EQ(decode({128, 255, 0, 0}, &report), RGB(70, 80, 90));
  EXPECT_THAT(report.warnings, testing::ElementsAre(HasSubstr("stays transparent")));
  CodecReport partly;
  EXPECT_EQ(decode({128, 1}, &partly), std::nullopt);  // none is fully transparent
  EXPECT_THAT(partly.warnings, testing::ElementsAre(HasSubstr("partly transparent")));
  EXPECT_EQ(decode({255, 255}), std::nullopt);
}

TEST(PngTransparency, Should_BeTheKeyColorIn8Bits_When_GrayOrColor) {
  const auto decode = [&](int bits, int type, const ByteList& rows, const ByteList& key) {
    return DecodePng(PngFile(1, 1, bits, type, rows, PngChunk("tRNS", key))).transparentColor;
  };
  EXPECT_EQ(decode(1, kGray, {0}, {0, 1}), RGB(255, 255, 255));
  EXPECT_EQ(decode(2, kGray, {0}, {0, 2}), RGB(170, 170, 170));
  EXPECT_EQ(decode(4, kGray, {0}, {0, 3}), RGB(51, 51, 51));
  EXPECT_EQ(decode(8, kGray, {0}, {0, 77}), RGB(77, 77, 77));
  EXPECT_EQ(decode(16, kGray, {0, 0}, {0x00, 0x81}), RGB(1, 1, 1));
  EXPECT_EQ(decode(8, kRgb, {0, 0, 0}, {0, 9, 0, 8, 0, 7}), RGB(9, 8, 7));
  EXPECT_EQ(decode(16, kRgb, {0, 0, 0, 0, 0, 0}, {0xFF, 0xFF, 0x80, 0x80, 0x00, 0x80}),
            RGB(255, 128, 0));
}

TEST(PngTransparency, Should_GiveThePicture_When_TheChunkIsTooLong) {
  const ByteList two = Palette({10, 20, 30, 40, 50, 60});
  const Raster raster =
      DecodePng(PngFile(1, 1, 8, kPalette, {1}, two + PngChunk("tRNS", ByteList(300, 0))));
  EXPECT_EQ(raster.Row(0)[0], 1);
  EXPECT_EQ(DecodePng(PngFile(1, 1, 8, kGray, {1}, PngChunk("tRNS", ByteList(5, 0)))).Row(0)[0], 1);
}

TEST(PngResolution, Should_BeKnown_When_StatedInMeters) {
  const ByteList meters = PngChunk("pHYs", Word32(11811) + Word32(2835) + ByteList{1});
  EXPECT_EQ(DecodePng(PngFile(1, 1, 8, kGray, {0}, meters)).resolution,
            (Resolution{11811 * 0.0254, 2835 * 0.0254}));
  const ByteList ratio = PngChunk("pHYs", Word32(3) + Word32(2) + ByteList{0});
  EXPECT_FALSE(DecodePng(PngFile(1, 1, 8, kGray, {0}, ratio)).resolution.IsKnown());
}

TEST(PngInterlaced, Should_EqualThePlainPicture_When_AnyFormatAndSize) {
  std::mt19937 random(3);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    for (int width = 1; width <= 18; width += 1 + width / 6) {
      for (int height = 1; height <= 18; height += 1 + height / 5) {
        Raster source = RandomRaster(format, width, height, random);
        const Raster decoded = DecodePng(InterlacedPng(source));
        ASSERT_TRUE(SamePixels(source, decoded)) << format << " " << width << " x " << height;
        ASSERT_TRUE(PaddingIsZero(decoded));
      }
    }
  }
}

TEST(PngAnimated, Should_BeTheFirstPicture_When_FramesFollow) {
  const ByteList control = PngChunk("acTL", Word32(2) + Word32(0));
  const ByteList frame = PngChunk("fcTL", Word32(1) + Word32(1) + Word32(1) + Word32(0) +
                                              Word32(0) + ByteList{0, 1, 0, 1, 0, 0});
  const ByteList rows = {0, 42};
  const ByteList file = PngSignature() + PngHeader(1, 1, 8, kGray) + control + PngData(rows) +
                        frame + PngChunk("fdAT", Word32(2) + ByteList(20, 1)) + PngEnd();
  EXPECT_EQ(DecodePng(file).Row(0)[0], 42);
}

}  // namespace
}  // namespace rasterkit::test
